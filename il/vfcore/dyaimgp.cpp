/// \file
/// The frame of two inputs.

#include "il/loops/frame/imageview.h"

#include <vfil/frame.h>

using namespace vfil;

const wchar_t* const vfILDyadicImgProc::m_ClassName = L"vfILDyadicImgProc";

vfILDyadicImgProc::vfILDyadicImgProc()
{
    Init();
}

vfILDyadicImgProc::vfILDyadicImgProc(const vfILDyadicImgProc& other) = default;

vfILDyadicImgProc::~vfILDyadicImgProc() = default;

void vfILDyadicImgProc::Init()
{
    m_inputImgA = nullptr;
    m_inputImgB = nullptr;
    m_dominantInput = nullptr;
    m_inputOffset = vfILVector2l(0, 0);
}

const wchar_t* vfILDyadicImgProc::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILDyadicImgProc::Verify()
{
    if (vfILImgProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_inputImgA == nullptr) return Fail(0x10013, GetClassNameW());
    if (m_inputImgB == nullptr) return Fail(0x10014, GetClassNameW());
    if (!ImageView(m_inputImgA).HasPixels()) return Fail(0x10015, GetClassNameW());
    if (!ImageView(m_inputImgB).HasPixels()) return Fail(0x10016, GetClassNameW());
    if (m_dominantInput == nullptr || (m_dominantInput != m_inputImgA && m_dominantInput != m_inputImgB)) {
        return Fail(0x10017, GetClassNameW());
    }
    if (GetOutputImg() == GetMaskImg() && VerifyOwnMask() != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifyTopDownInputs();
}

vfILStatus vfILDyadicImgProc::VerifyOwnMask()
{
    // A picture may mask itself by a channel that isn't written, as long as none of its pixels moves.
    const bool dominantB = m_dominantInput != m_inputImgA;
    long channels = 0;
    GetMaskImg()->GetChannelCount(&channels);
    PXImageChannel channel{};
    GetMask(nullptr, &channel);
    const bool written = (GetProcessingMode() & static_cast<unsigned long>(channel)) != 0;
    bool inPlace = true;
    for (int i = 0; i < 2; ++i) {
        const std::int64_t moved = dominantB ? m_inputOffset[i] : 0;
        inPlace = inPlace && GetROI().GetOffset()[i] == GetOutputOffset()[i] + moved;
    }
    if (m_dominantInput != GetMaskImg() || channels <= 1 || written || !inPlace) {
        return Fail(0x1006C, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILDyadicImgProc::VerifyTopDownInputs()
{
    const ImageView output(GetOutputImg());
    if (!output.format->topDown) return VFIL_SUCCESS;
    if (!(ImageView(m_inputImgA).Box() == output.Box()) || !(ImageView(m_inputImgB).Box() == output.Box())) {
        return Fail(0x10062, GetClassNameW());
    }
    if (m_inputOffset[0] != 0 || m_inputOffset[1] != 0) return Fail(0x10061, GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILDyadicImgProc::SetInputImgA(IPXImage* image)
{
    m_inputImgA = image;
}

IPXImage* vfILDyadicImgProc::GetInputImgA() const
{
    return m_inputImgA;
}

void vfILDyadicImgProc::SetInputImgB(IPXImage* image)
{
    m_inputImgB = image;
}

IPXImage* vfILDyadicImgProc::GetInputImgB() const
{
    return m_inputImgB;
}

void vfILDyadicImgProc::SetDominantInput(IPXImage* image)
{
    m_dominantInput = image;
}

IPXImage* vfILDyadicImgProc::GetDominantInput() const
{
    return m_dominantInput;
}

void vfILDyadicImgProc::SetInputOffset(const vfILVector2l& offset)
{
    m_inputOffset = offset;
}

const vfILVector2l& vfILDyadicImgProc::GetInputOffset() const
{
    return m_inputOffset;
}

/// \file
/// The frame of one input.

#include "il/loops/frame/imageview.h"

#include <vfil/frame.h>

using namespace vfil;

const wchar_t* const vfILMonadicImgProc::m_ClassName = L"vfILMonadicImgProc";

vfILMonadicImgProc::vfILMonadicImgProc()
{
    Init();
}

vfILMonadicImgProc::vfILMonadicImgProc(const vfILMonadicImgProc& other) = default;

vfILMonadicImgProc::~vfILMonadicImgProc() = default;

void vfILMonadicImgProc::Init()
{
    m_inputImg = nullptr;
}

const wchar_t* vfILMonadicImgProc::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMonadicImgProc::Verify()
{
    if (vfILImgProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_inputImg == nullptr) return Fail(0x1000B, GetClassNameW());
    const ImageView input(m_inputImg);
    if (!input.HasPixels()) return Fail(0x1000C, GetClassNameW());
    if (GetOutputImg() == GetMaskImg()) {
        // A picture may mask itself by a channel that isn't written, as long as no pixel moves.
        long channels = 0;
        GetMaskImg()->GetChannelCount(&channels);
        PXImageChannel channel{};
        GetMask(nullptr, &channel);
        const bool inPlace =
            GetROI().GetOffsetX() == GetOutputOffset()[0] && GetROI().GetOffsetY() == GetOutputOffset()[1];
        const bool written = (GetProcessingMode() & static_cast<unsigned long>(channel)) != 0;
        if (m_inputImg != GetMaskImg() || channels <= 1 || written || !inPlace) {
            return Fail(0x1006C, GetClassNameW());
        }
    }
    const ImageView output(GetOutputImg());
    if (output.format->topDown && !(input.Box() == output.Box())) return Fail(0x10062, GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILMonadicImgProc::SetInputImg(IPXImage* image)
{
    m_inputImg = image;
}

IPXImage* vfILMonadicImgProc::GetInputImg() const
{
    return m_inputImg;
}

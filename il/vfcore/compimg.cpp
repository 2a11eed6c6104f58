/// \file
/// The frame of the layer operators.

#include "il/loops/frame/rowloop.h"

#include <vfil/composite.h>

using namespace vfil;

namespace {

/// A picture's own statement whether its colour is premultiplied; 0 when there is none.
int PremultipliedStateOf(IPXImage* image)
{
    long value = 0;
    if (image == nullptr || FAILED(image->GetImageState(PXImageState_PREMULTIPLIED, &value))) return 0;
    return value != 0 ? 1 : 0;
}

} // namespace

vfILCompImg::vfILCompImg()
{
    vfILCompImg::Init();
}

vfILCompImg::vfILCompImg(const vfILCompImg& other) = default;

vfILCompImg::~vfILCompImg()
{
    vfILCompImg::Trash();
}

void vfILCompImg::Init()
{
    m_extraTransparency = 1.0;
    m_alphaMode = VFIL_ALPHA_COMPUTED;
    m_outputPremultiplied = 1;
    m_neverPremultiplyBack = 0;
    m_imgAPremultiplied = 0;
    m_imgBPremultiplied = 0;
    m_fullScale16 = 0;
}

void vfILCompImg::Trash()
{
    SetInputImgA(nullptr);
    SetInputImgB(nullptr);
    SetDominantInput(nullptr);
}

vfILStatus vfILCompImg::Verify()
{
    if (vfILDyadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!RgbaFormats::Contains(OutputFormat())) return Fail(0x1000D, GetClassNameW());
    if (!(m_extraTransparency >= 0.0 && m_extraTransparency <= 1.0)) return Fail(0x10012, GetClassNameW());
    if (m_alphaMode != VFIL_ALPHA_ZERO && m_alphaMode != VFIL_ALPHA_FULL &&
        m_alphaMode != VFIL_ALPHA_COMPUTED) {
        return Fail(0x1005A, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILCompImg::DoEffect()
{
    return RgbaFormats::RunByDepth(
        FormatOf(Run()), [this] { return Process8(); }, [this] { return Process16(); });
}

void vfILCompImg::SetInputImgA(IPXImage* image)
{
    vfILDyadicPixelProc::SetInputImgA(image);
    m_imgAPremultiplied = PremultipliedStateOf(image);
}

void vfILCompImg::SetInputImgB(IPXImage* image)
{
    vfILDyadicPixelProc::SetInputImgB(image);
    m_imgBPremultiplied = PremultipliedStateOf(image);
}

void vfILCompImg::SetOutputImg(IPXImage* image)
{
    vfILDyadicPixelProc::SetOutputImg(image);
    m_outputPremultiplied = PremultipliedStateOf(image);
}

vfILAlphaMode vfILCompImg::GetAlphaMode() const
{
    return m_alphaMode;
}

void vfILCompImg::SetAlphaMode(vfILAlphaMode mode)
{
    m_alphaMode = mode;
}

void vfILCompImg::SetImgAPremultiplied(int premultiplied)
{
    if (GetInputImgA() != nullptr) m_imgAPremultiplied = premultiplied;
}

int vfILCompImg::GetImgAPremultiplied() const
{
    return m_imgAPremultiplied;
}

void vfILCompImg::SetImgBPremultiplied(int premultiplied)
{
    if (GetInputImgB() != nullptr) m_imgBPremultiplied = premultiplied;
}

int vfILCompImg::GetImgBPremultiplied() const
{
    return m_imgBPremultiplied;
}

void vfILCompImg::SetOutputPremultiplied(int premultiplied)
{
    if (GetOutputImg() == nullptr) return;
    if (FAILED(GetOutputImg()->SetImageState(PXImageState_PREMULTIPLIED, premultiplied))) return;
    m_outputPremultiplied = premultiplied;
}

int vfILCompImg::GetOutputImgPremultiplied() const
{
    return m_outputPremultiplied;
}

void vfILCompImg::NeverPremultiplyBackImage(int never)
{
    m_neverPremultiplyBack = never;
}

int vfILCompImg::IsNeverPremultiplyBackImage() const
{
    return m_neverPremultiplyBack;
}

double vfILCompImg::GetExtraTransparency() const
{
    return m_extraTransparency;
}

void vfILCompImg::SetExtraTransparency(double strength)
{
    m_extraTransparency = strength;
}

int vfILCompImg::GetFullScale16() const
{
    return m_fullScale16;
}

void vfILCompImg::SetFullScale16(int fullScale)
{
    m_fullScale16 = fullScale;
}

/// \file
/// The frame of the keyers with two inputs.

#include "il/loops/frame/imageview.h"
#include "il/loops/keyer/crop.h"

#include <vfil/keyer.h>

using namespace vfil;

const wchar_t* const vfILKeyerBase::m_ClassName = L"vfILKeyerBase";

vfILKeyerBase::~vfILKeyerBase() = default;

const wchar_t* vfILKeyerBase::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILKeyerBase::Verify()
{
    if (vfILDyadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    const ImageView image(GetInputImgA());
    // The box's height is open: a box that hangs over the top is cut where the rows are walked.
    if (m_cropBox.GetOffsetX() < 0 || m_cropBox.GetSizeX() > image.width || m_cropBox.GetOffsetY() < 0 ||
        m_cropBox.GetOffsetY() > image.height) {
        return Fail(0x1000A, "%s ERROR Verify: Crop box does not fit into input image\n", GetClassNameW());
    }
    if (m_keyColor.Verify() == 0) return Fail(0x10048, "%s:Invalid Key Color!!!\n", GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILKeyerBase::SetCropBox(const vfILBbox2l& box)
{
    m_cropBox = box;
}

const vfILBbox2l& vfILKeyerBase::GetCropBox() const
{
    return m_cropBox;
}

void vfILKeyerBase::SetKeyColor(const vfILColor& color)
{
    m_keyColor = color;
}

const vfILColor& vfILKeyerBase::GetKeyColor() const
{
    return m_keyColor;
}

vfILStatus vfILKeyerBase::AdjustJumps()
{
    const vfILStatus status = AdjustCrop();
    return status == VFIL_SUCCESS ? vfILDyadicPixelProc::AdjustJumps() : status;
}

vfILStatus vfILKeyerBase::AdjustCrop()
{
    const vfILPixelRun& run = Run();
    m_crop = CropOf(m_cropBox, run.processBox.GetSizeX(), run.processBox.GetSizeY(), *run.picture.format,
                    GetProcessingMode());
    return VFIL_SUCCESS;
}

/// \file
/// The key by the difference of the screen's channel to the others.

#include "il/loops/frame/imageview.h"
#include "il/loops/keyer/keyloop.h"

#include <vfil/keyer.h>

using namespace vfil;

const wchar_t* const vfILBlueGreenKeyer::m_ClassName = L"vfILBlueGreenKeyer";

/// Of the channels, and what the screen's one is limited to.
struct vfILBlueGreenKeyer::Weights : BlueGreenKeyParams {};

const wchar_t* vfILBlueGreenKeyer::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILBlueGreenKeyer::Verify()
{
    if (vfILKeyerBase::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (FormatOf(GetInputImgA()) != PXFormat_RGBA32) return Fail(0x10034, GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILBlueGreenKeyer::SetC0(double c0)
{
    m_c0 = c0;
}

double vfILBlueGreenKeyer::GetC0() const
{
    return m_c0;
}

void vfILBlueGreenKeyer::SetC1(double c1)
{
    m_c1 = c1;
}

double vfILBlueGreenKeyer::GetC1() const
{
    return m_c1;
}

void vfILBlueGreenKeyer::SetC2(double c2)
{
    m_c2 = c2;
}

double vfILBlueGreenKeyer::GetC2() const
{
    return m_c2;
}

void vfILBlueGreenKeyer::SetKeepOrigAlphaFlag(int keep)
{
    m_keepOrigAlpha = keep != 0;
}

int vfILBlueGreenKeyer::GetKeepOrigAlphaFlag() const
{
    return m_keepOrigAlpha;
}

namespace {

std::int32_t Fixed(double coefficient)
{
    return RoundHalfAway(coefficient * 65536);
}

/// No limit but that of one channel, by its place in the pixel.
std::uint32_t LimitOf(double key, int channel)
{
    const std::uint32_t limit = RoundToSample<std::uint8_t>(key * 255);
    return ~(0xFFU << (8 * channel)) | limit << (8 * channel);
}

} // namespace

vfILBlueGreenKeyer::Weights vfILBlueGreenKeyer::GreenScreenKey() const
{
    return {{.weights = {Fixed(m_c0 * m_c1), Fixed(-m_c0), Fixed(m_c2)},
             .limits = LimitOf(GetKeyColor().GetGreen(), 1),
             .keepAlpha = m_keepOrigAlpha}};
}

vfILBlueGreenKeyer::Weights vfILBlueGreenKeyer::BlueScreenKey() const
{
    return {{.weights = {Fixed(m_c2), Fixed(m_c0 * m_c1), Fixed(-m_c0)},
             .limits = LimitOf(GetKeyColor().GetBlue(), 2),
             .keepAlpha = m_keepOrigAlpha}};
}

vfILStatus vfILBlueGreenKeyer::DoEffect()
{
    if (FormatOf(GetInputImgA()) != PXFormat_RGBA32) return Fail(0x10034, GetClassNameW());
    return Process8();
}

vfILStatus vfILBlueGreenKeyer::Process8()
{
    const bool blueScreen = GetKeyColor().GetGreen() <= GetKeyColor().GetBlue();
    const BlueGreenKeyParams& params = blueScreen ? BlueScreenKey() : GreenScreenKey();
    return RunKey(*this, Layers(), params);
}

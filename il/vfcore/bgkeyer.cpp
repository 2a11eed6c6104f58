/// \file
/// The key by the difference of the screen's channel to the others.

#include "il/loops/frame/imageview.h"
#include "il/loops/keyer/differencekey.h"
#include "il/loops/keyer/keyloop.h"
#include "il/rows/pixarith.h"

#include <vfil/keyer.h>

using namespace vfil;

const wchar_t* const vfILBlueGreenKeyer::m_ClassName = L"vfILBlueGreenKeyer";

/// Of the channels.
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

vfILBlueGreenKeyer::Weights vfILBlueGreenKeyer::GreenScreenKey() const
{
    const std::int32_t limit = RoundHalfAway(GetKeyColor().GetGreen() * 255);
    return {{DifferenceKeyOf(kGreenScreen, m_c0, m_c1, m_c2, limit), m_keepOrigAlpha}};
}

vfILBlueGreenKeyer::Weights vfILBlueGreenKeyer::BlueScreenKey() const
{
    const std::int32_t limit = RoundHalfAway(GetKeyColor().GetBlue() * 255);
    return {{DifferenceKeyOf(kBlueScreen, m_c0, m_c1, m_c2, limit), m_keepOrigAlpha}};
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

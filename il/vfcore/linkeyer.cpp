/// \file
/// The key by how far the screen's channel rises above the others.

#include "il/loops/keyer/keyloop.h"

#include <vfil/keyer.h>

using namespace vfil;

const wchar_t* const vfILLinearKeyer::m_ClassName = L"vfILLinearKeyer";

const wchar_t* vfILLinearKeyer::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILLinearKeyer::Verify()
{
    if (vfILKeyerBase::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (OutputFormat() != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    if ((GetProcessingMode() & VFIL_MODE_RGBA) != VFIL_MODE_RGBA) return Fail(0x20002, GetClassNameW());
    if (!(m_threshold >= -1 && m_threshold <= 1))
        return Fail(0x20002, "%s WARNING Verify: Threshold Invalid\n", GetClassNameW());
    if (!(m_softness >= 0 && m_softness <= 1))
        return Fail(0x20002, "%s WARNING Verify: Softness Invalid\n", GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILLinearKeyer::SetThreshold(double threshold)
{
    m_threshold = threshold;
}

double vfILLinearKeyer::GetThreshold() const
{
    return m_threshold;
}

void vfILLinearKeyer::SetSoftness(double softness)
{
    m_softness = softness;
}

double vfILLinearKeyer::GetSoftness() const
{
    return m_softness;
}

vfILStatus vfILLinearKeyer::DoEffect()
{
    if (OutputFormat() != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    return Key8();
}

vfILStatus vfILLinearKeyer::Key8()
{
    const vfILColor& key = GetKeyColor();
    const bool greenScreen = key.GetBlue() <= key.GetRed() || key.GetBlue() <= key.GetGreen();
    return RunKey(*this, Layers(),
                  LinearKeyParams{.blueScreen = !greenScreen,
                                  .threshold = RoundHalfAway(255 * m_threshold),
                                  .softness = RoundHalfAway(255 * m_softness)});
}

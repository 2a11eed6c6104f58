/// \file
/// The key by brightness, of RGBA pictures.

#include "il/loops/keyer/keyloop.h"

#include <vfil/keyer.h>

using namespace vfil;

const wchar_t* const vfILLumaKeyer::m_ClassName = L"vfILLumaKeyer";

const wchar_t* vfILLumaKeyer::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILLumaKeyer::Verify()
{
    if (vfILDyadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (OutputFormat() != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    if ((GetProcessingMode() & VFIL_MODE_RGB) != VFIL_MODE_RGB) return Fail(0x20002, GetClassNameW());
    if (!(m_brightness >= -1 && m_brightness <= 1 && m_gain >= 0 && m_gain <= 2))
        return Fail(0x20002, "%s WARNING Verify: Clip and/or Gain Invalid\n", GetClassNameW());
    if (!IsKeyModel(m_colorModel)) return Fail(0x1006A, GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILLumaKeyer::SetBrightness(double brightness)
{
    m_brightness = brightness;
}

double vfILLumaKeyer::GetBrightness() const
{
    return m_brightness;
}

void vfILLumaKeyer::SetGain(double gain)
{
    m_gain = gain;
}

double vfILLumaKeyer::GetGain() const
{
    return m_gain;
}

void vfILLumaKeyer::SetKeepOrigAlphaFlag(int keep)
{
    m_keepOrigAlpha = keep != 0;
}

int vfILLumaKeyer::GetKeepOrigAlphaFlag() const
{
    return m_keepOrigAlpha;
}

void vfILLumaKeyer::SetReverseFlag(int reverse)
{
    m_reverse = reverse != 0;
}

int vfILLumaKeyer::GetReverseFlag() const
{
    return m_reverse;
}

void vfILLumaKeyer::SetColorModel(PXColorModel model)
{
    m_colorModel = model;
}

PXColorModel vfILLumaKeyer::GetColorModel() const
{
    return m_colorModel;
}

vfILStatus vfILLumaKeyer::DoEffect()
{
    if (OutputFormat() != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    return LumaKeyRGBA8();
}

vfILStatus vfILLumaKeyer::LumaKeyRGBA8()
{
    // Full range, truncated to 65536ths.
    constexpr KeyWeights kLuma601{0x4C8B, 0x9645, 0x1D2F};
    constexpr KeyWeights kLuma709{0x366C, 0xB717, 0x127B};
    return RunKey(*this, Layers(),
                  LumaKeyParams{.weights = m_colorModel == PXColorModel_YCC709 ? kLuma709 : kLuma601,
                                .gain = RoundHalfAway(m_gain * 65536),
                                .offset = RoundHalfAway(m_brightness * 255),
                                .reverse = m_reverse,
                                .keepAlpha = m_keepOrigAlpha});
}

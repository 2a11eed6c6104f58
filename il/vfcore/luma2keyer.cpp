/// \file
/// The keyer of 4:2:2 video by luma.

#include "il/loops/keyer/videokey.h"
#include "il/rows/pixarith.h"

#include <vfil/videokeyer.h>

using namespace vfil;

const wchar_t* const vfIL2InputLumaKeyer::m_ClassName = L"vfIL2InputLumaKeyer";

vfIL2InputLumaKeyer::~vfIL2InputLumaKeyer() = default;

const wchar_t* vfIL2InputLumaKeyer::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfIL2InputLumaKeyer::Verify()
{
    if (vfILKeyerBase::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!IsKeyableVideo(OutputFormat())) return Fail(0x1000D, GetClassNameW());
    if (!(m_lumaClip >= 0 && m_lumaGain <= 1 && m_lumaClip <= m_lumaGain))
        return Fail(0x20002, "%s WARNING Verify: Luma clip and/or Gain Invalid\n", GetClassNameW());
    if (!(m_brightness >= -1 && m_brightness <= 1 && m_gain >= 0 && m_gain <= 2))
        return Fail(0x20002, "%s WARNING Verify: Clip and/or Gain Invalid\n", GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfIL2InputLumaKeyer::DoEffect()
{
    const vfILFormatInfo* format = VideoFormatOf(GetInputImgA());
    if (format == nullptr) return Fail(0x1000D, GetClassNameW());
    return LumaKeyYCC422_8(IsFormatAlternateYUV(format->id));
}

vfILStatus vfIL2InputLumaKeyer::LumaKeyYCC422_8(int isAlternate)
{
    const std::int32_t low = RoundHalfAway(219 * m_lumaClip + 16);
    const std::int32_t high = RoundHalfAway(219 * m_lumaGain + 16);
    // No value lies between equal levels: the line is of no account then.
    const double d = high == low ? 0 : 1 / (static_cast<double>(high) - low);
    VideoLumaKeyParams params{65536, 0, 0, 255, m_reverse != 0, {}};
    params.window = {low, high, RoundHalfAway(16711680 * d), RoundHalfAway(16711680.0 * low * d)};
    if (m_gain != 1 || m_brightness != 0) {
        params.gain = RoundHalfAway(65536 * m_gain);
        params.offset = RoundHalfAway(219 * m_brightness);
        params.least = 16;
        params.most = 235;
    }
    RunWholeVideoKey(*this, Layers(), Crop(), params,
                     m_outputMatte != 0 ? KeyResult::Matte : KeyResult::Composite, isAlternate != 0,
                     KeyPoll::EachRow);
    return VFIL_SUCCESS;
}

void vfIL2InputLumaKeyer::SetLumaClip(double level)
{
    m_lumaClip = level;
}

double vfIL2InputLumaKeyer::GetLumaClip() const
{
    return m_lumaClip;
}

void vfIL2InputLumaKeyer::SetLumaGain(double level)
{
    m_lumaGain = level;
}

double vfIL2InputLumaKeyer::GetLumaGain() const
{
    return m_lumaGain;
}

void vfIL2InputLumaKeyer::SetBrightness(double brightness)
{
    m_brightness = brightness;
}

double vfIL2InputLumaKeyer::GetBrightness() const
{
    return m_brightness;
}

void vfIL2InputLumaKeyer::SetGain(double gain)
{
    m_gain = gain;
}

double vfIL2InputLumaKeyer::GetGain() const
{
    return m_gain;
}

void vfIL2InputLumaKeyer::SetOutputMatteFlag(int output)
{
    m_outputMatte = output;
}

int vfIL2InputLumaKeyer::GetOutputMatteFlag() const
{
    return m_outputMatte;
}

void vfIL2InputLumaKeyer::SetReverseFlag(int reverse)
{
    m_reverse = reverse;
}

int vfIL2InputLumaKeyer::GetReverseFlag() const
{
    return m_reverse;
}

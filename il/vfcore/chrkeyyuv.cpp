/// \file
/// The keyer of 4:2:2 video by a sector of hues.

#include "il/loops/keyer/videokey.h"
#include "il/rows/pixarith.h"

#include <vfil/videokeyer.h>

#include <cmath>

using namespace vfil;

namespace {

const double kPi = std::atan2(0.0, -1.0);

bool IsShare(double v)
{
    return v >= 0 && v <= 1;
}

bool IsAngle(double degrees)
{
    return degrees >= 0 && degrees <= 360;
}

bool IsWindow(double low, double high)
{
    return low >= 0 && low <= 100 && high >= 0 && high <= 100 && high > low;
}

double ComputeTanAngleTolOver2(double tolerance)
{
    return std::tan((tolerance + 1) * kPi * (1.0 / 180) * 0.5);
}

void RemapLiftAndGain(double& lift, double& gain)
{
    lift = lift * 0.4;
    gain = gain * 8 + 1;
}

/// A sector in 8-bit arithmetic. Windows and tolerances that Verify would have refused give any numbers.
template <class Sector>
KeySector SectorOf(const Sector& sector)
{
    double lift = sector.lift;
    double gain = sector.gain;
    RemapLiftAndGain(lift, gain);
    return {RoundHalfAway(256 / ComputeTanAngleTolOver2(sector.tolerance)), RoundHalfAway(lift * 256),
            RoundHalfAway(gain * 256), RoundHalfAway(255 * sector.matteLow * 0.01),
            RoundHalfAway(256 / ((sector.matteHigh - sector.matteLow) * 0.01))};
}

struct Chroma {
    double cb = 0;
    double cr = 0;
};

Chroma ChromaOf(const vfILColor& color, bool is709)
{
    Chroma chroma;
    if (is709) {
        color.GetColorAsYCCA709(nullptr, &chroma.cb, &chroma.cr, nullptr);
    } else {
        color.GetColorAsYCCA(nullptr, &chroma.cb, &chroma.cr, nullptr);
    }
    return chroma;
}

} // namespace

const wchar_t* const vfILChromaKeyerYUV::m_ClassName = L"vfILChromaKeyerYUV";

vfILChromaKeyerYUV::~vfILChromaKeyerYUV() = default;

const wchar_t* vfILChromaKeyerYUV::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILChromaKeyerYUV::Verify()
{
    if (vfILKeyerBase::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!IsKeyableVideo(OutputFormat())) return Fail(0x1000D, GetClassNameW());
    if (!IsAngle(m_key.tolerance))
        return Fail(0x10023, "%s:Invalid Key angle tolerance!!!\n", GetClassNameW());
    if (m_applySpill != 0 && !IsAngle(m_spill.tolerance))
        return Fail(0x10023, "%s:Invalid spillangle tolerance!!!\n", GetClassNameW());
    if (!IsShare(m_key.lift) || !IsShare(m_key.gain))
        return Fail(0x10023, "%s:Invalid lift and/or gain values!!!\n", GetClassNameW());
    if (!IsWindow(m_key.matteLow, m_key.matteHigh))
        return Fail(0x10023, "%s:Invalid matte map values!!!\n", GetClassNameW());
    return m_applySpill != 0 ? VerifySpill() : VFIL_SUCCESS;
}

vfILStatus vfILChromaKeyerYUV::VerifySpill()
{
    if (!IsWindow(m_spill.matteLow, m_spill.matteHigh))
        return Fail(0x10023, "%s:Invalid spill matte map values!!!\n", GetClassNameW());
    if (!IsShare(m_spill.lift) || !IsShare(m_spill.gain))
        return Fail(0x10023, "%s:Invalid spill lift and/or gain values!!!\n", GetClassNameW());
    if (m_spillReplaceColor.Verify() == 0)
        return Fail(0x10048, "%s:Invalid Spill Replace Color!!!\n", GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILChromaKeyerYUV::DoEffect()
{
    const vfILFormatInfo* format = VideoFormatOf(GetInputImgA());
    if (format == nullptr) return Fail(0x1000D, GetClassNameW());
    return ChromaKeyYCC422(IsFormat709(format->id), IsFormatAlternateYUV(format->id));
}

vfILStatus vfILChromaKeyerYUV::ChromaKeyYCC422(int is709, int isAlternate)
{
    const Chroma key = ChromaOf(GetKeyColor(), is709 != 0);
    const Chroma replaced = ChromaOf(m_spillReplaceColor, is709 != 0);
    const double turn = 2 * kPi - std::atan2(key.cr - 0.5, key.cb - 0.5);
    const ChromaKeyParams params{
        RoundHalfAway(256 * std::cos(turn)),
        RoundHalfAway(256 * std::sin(turn)),
        SectorOf(m_key),
        SectorOf(m_spill),
        {RoundHalfAway(m_spillLumaGain * 256), RoundHalfAway(255 * m_spillLumaOffset)},
        RoundToSample<std::uint8_t>(255 * replaced.cb),
        RoundToSample<std::uint8_t>(255 * replaced.cr)};

    const vfILLayerRun layers = Layers();
    const vfILPixelRun& run = layers.run;
    const KeptRows rows(Crop(), run.rows, *run.picture.format, GetProcessingMode());
    const KeyedColumns columns = HalvedMacropixels(Crop(), run.processBox.GetSizeX());
    const KeyResult result = m_outputMatte != 0  ? KeyResult::Matte
                             : m_applySpill != 0 ? KeyResult::SpillCorrected
                                                 : KeyResult::Composite;
    const VideoKeyCase which{result, isAlternate != 0, layers.fast, run.streaming};
    RunVideoKey(*this, {layers, rows, columns, which}, params, KeyPoll::EachRow,
                [&](KeptHalf half, const unsigned char* a, const unsigned char* b, unsigned char* out) {
                    KeyHalf(which, half, a, b, out, params);
                });
    return VFIL_SUCCESS;
}

void vfILChromaKeyerYUV::SetKeyAngleTolerance(double degrees)
{
    m_key.tolerance = degrees;
}

double vfILChromaKeyerYUV::GetKeyAngleTolerance() const
{
    return m_key.tolerance;
}

void vfILChromaKeyerYUV::SetKeyLiftAndGain(double lift, double gain)
{
    m_key.lift = lift;
    m_key.gain = gain;
}

void vfILChromaKeyerYUV::GetKeyLiftAndGain(double* lift, double* gain) const
{
    if (lift != nullptr) *lift = m_key.lift;
    if (gain != nullptr) *gain = m_key.gain;
}

void vfILChromaKeyerYUV::SetKeyMatteMap(double low, double high)
{
    m_key.matteLow = low;
    m_key.matteHigh = high;
}

void vfILChromaKeyerYUV::GetKeyMatteMap(double* low, double* high) const
{
    if (low != nullptr) *low = m_key.matteLow;
    if (high != nullptr) *high = m_key.matteHigh;
}

void vfILChromaKeyerYUV::SetSpillAngleTolerance(double degrees)
{
    m_spill.tolerance = degrees;
}

double vfILChromaKeyerYUV::GetSpillAngleTolerance() const
{
    return m_spill.tolerance;
}

void vfILChromaKeyerYUV::SetSpillLiftAndGain(double lift, double gain)
{
    m_spill.lift = lift;
    m_spill.gain = gain;
}

void vfILChromaKeyerYUV::GetSpillLiftAndGain(double* lift, double* gain) const
{
    if (lift != nullptr) *lift = m_spill.lift;
    if (gain != nullptr) *gain = m_spill.gain;
}

void vfILChromaKeyerYUV::SetSpillMatteMap(double low, double high)
{
    m_spill.matteLow = low;
    m_spill.matteHigh = high;
}

void vfILChromaKeyerYUV::GetSpillMatteMap(double* low, double* high) const
{
    if (low != nullptr) *low = m_spill.matteLow;
    if (high != nullptr) *high = m_spill.matteHigh;
}

void vfILChromaKeyerYUV::SetSpillLumaGainAndOffset(double gain, double offset)
{
    m_spillLumaGain = gain;
    m_spillLumaOffset = offset;
}

void vfILChromaKeyerYUV::GetSpillLumaGainAndOffset(double* gain, double* offset) const
{
    if (gain != nullptr) *gain = m_spillLumaGain;
    if (offset != nullptr) *offset = m_spillLumaOffset;
}

void vfILChromaKeyerYUV::SetSpillReplaceColor(const vfILColor& color)
{
    m_spillReplaceColor = color;
}

const vfILColor& vfILChromaKeyerYUV::GetSpillReplaceColor() const
{
    return m_spillReplaceColor;
}

void vfILChromaKeyerYUV::SetApplySpill(int apply)
{
    m_applySpill = apply;
}

int vfILChromaKeyerYUV::GetApplySpill() const
{
    return m_applySpill;
}

void vfILChromaKeyerYUV::SetOutputMatte(int output)
{
    m_outputMatte = output;
}

int vfILChromaKeyerYUV::GetOutputMatte() const
{
    return m_outputMatte;
}

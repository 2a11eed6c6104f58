/// \file
/// The plain forms of the kernels that fill missing rows, and the table of their levels.
#include "il/rows/field/deinterlacerows.h"

#include "il/rows/pixarith.h"

namespace vfil {

namespace {

template <class Sample>
Sample Mean(Sample a, Sample b)
{
    return static_cast<Sample>((a + b + 1) >> 1);
}

template <class Sample>
void Interpolate(const Sample* a, const Sample* b, Sample* out, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i)
        out[i] = Mean(a[i], b[i]);
}

template <class Sample>
void AdaptiveInterpolate(const RowsAround<Sample>& rows, Sample* out, std::size_t samples,
                         const MotionRamp& ramp)
{
    for (std::size_t i = 0; i < samples; ++i) {
        const Sample inTime = Mean(rows.here[i], rows.compared[i]);
        const Sample inSpace = Mean(rows.above[i], rows.below[i]);
        const std::int32_t motion = rows.here[i] > rows.compared[i] ? rows.here[i] - rows.compared[i]
                                                                    : rows.compared[i] - rows.here[i];
        if (motion <= ramp.still) {
            out[i] = inTime;
        } else if (motion >= ramp.moving) {
            out[i] = inSpace;
        } else {
            const double w = (motion - ramp.still) * ramp.reciprocal;
            out[i] = RoundToSample<Sample>(w * inSpace + (1.0 - w) * inTime);
        }
    }
}

const LevelTables<DeinterlaceRows>& Tables()
{
    static const LevelTables<DeinterlaceRows> tables(
        {
            .mean8 = {Interpolate<std::uint8_t>, Interpolate<std::uint8_t>},
            .mean16 = {Interpolate<std::uint16_t>, Interpolate<std::uint16_t>},
            .adaptive8 = {AdaptiveInterpolate<std::uint8_t>, AdaptiveInterpolate<std::uint8_t>},
            .adaptive16 = {AdaptiveInterpolate<std::uint16_t>, AdaptiveInterpolate<std::uint16_t>},
        },
        VFIL_FILLS);
    return tables;
}

const DeinterlaceRows& Rows(bool useVectors)
{
    return DeinterlaceRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace

const DeinterlaceRows& DeinterlaceRowsAt(Level level)
{
    return Tables().At(level);
}

template <>
MeanRow<std::uint8_t> FindMeanRow(bool useVectors, bool streaming)
{
    return Rows(useVectors).mean8[streaming];
}

template <>
MeanRow<std::uint16_t> FindMeanRow(bool useVectors, bool streaming)
{
    return Rows(useVectors).mean16[streaming];
}

template <>
AdaptiveRow<std::uint8_t> FindAdaptiveRow(bool useVectors, bool streaming)
{
    return Rows(useVectors).adaptive8[streaming];
}

template <>
AdaptiveRow<std::uint16_t> FindAdaptiveRow(bool useVectors, bool streaming)
{
    return Rows(useVectors).adaptive16[streaming];
}

template <class Sample>
MotionRamp MotionRampOf(double minThreshold, double maxThreshold)
{
    constexpr double kFull = FullScale<Sample>::kFull;
    const std::int32_t still = RoundToSample<Sample>(minThreshold * kFull);
    const std::int32_t moving = std::max<std::int32_t>(still, RoundToSample<Sample>(maxThreshold * kFull));
    return {still, moving, moving == still ? 0.0 : 1.0 / (moving - still)};
}

template MotionRamp MotionRampOf<std::uint8_t>(double, double);
template MotionRamp MotionRampOf<std::uint16_t>(double, double);

} // namespace vfil

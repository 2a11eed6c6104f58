/// \file
/// The plain forms of the kernels of runs between two colours, and the table of their levels.
#include "il/rows/treat/ramprows.h"

#include "il/rows/pixarith.h"

#include <cmath>

namespace vfil {

namespace {

template <class Sample>
void PlainRamp(const RampSpan& span, Sample* out)
{
    for (std::size_t i = 0; i < span.pixels; ++i)
        for (std::size_t c = 0; c < span.channels; ++c) {
            const double value = static_cast<double>(i) * span.difference[c] * span.inverse + span.first[c];
            *out++ = static_cast<Sample>(std::nearbyint(value * Arith<Sample>::kFull));
        }
}

const RampRows& Rows(bool useVectors)
{
    return RampRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace

const RampRows& RampRowsAt(Level level)
{
    static const LevelTables<RampRows> tables(
        {
            .ramp8 = {PlainRamp<std::uint8_t>, PlainRamp<std::uint8_t>},
            .ramp16 = {PlainRamp<std::uint16_t>, PlainRamp<std::uint16_t>},
        },
        VFIL_FILLS);
    return tables.At(level);
}

template <>
RampRow<std::uint8_t> FindRampRow(bool useVectors, bool streaming)
{
    return Rows(useVectors).ramp8[streaming];
}

template <>
RampRow<std::uint16_t> FindRampRow(bool useVectors, bool streaming)
{
    return Rows(useVectors).ramp16[streaming];
}

} // namespace vfil

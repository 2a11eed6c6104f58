/// \file
/// The plain forms of the kernels of the colour ramps, and the table of their levels.
#include "il/rows/treat/ramprows.h"

#include "il/rows/pixarith.h"

#include <algorithm>
#include <bit>
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

void PlainLinear(const LinearPlaces& places, std::int32_t* indices, std::size_t pixels)
{
    for (std::size_t i = 0; i < pixels; ++i) {
        const double distance = places.start + static_cast<double>(i) * places.step;
        double index = std::nearbyint(distance * places.inverse);
        if (distance < index * places.length) index -= 1;
        indices[i] = static_cast<std::int32_t>(std::clamp(index, 0.0, places.last));
    }
}

void PlainRadial(const RadialPlaces& places, std::int32_t* indices, std::size_t pixels)
{
    for (std::size_t i = 0; i < pixels; ++i) {
        const double x = places.x + static_cast<double>(i);
        indices[i] = static_cast<std::int32_t>(std::min(std::sqrt(x * x + places.square), places.last));
    }
}

template <class Entry>
void PlainLookUp(const void* table, const std::int32_t* indices, void* out, std::size_t pixels)
{
    for (std::size_t i = 0; i < pixels; ++i)
        static_cast<Entry*>(out)[i] = static_cast<const Entry*>(table)[indices[i]];
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
            .linear = PlainLinear,
            .radial = PlainRadial,
            .lookUp = {{PlainLookUp<std::uint8_t>, PlainLookUp<std::uint8_t>},
                       {PlainLookUp<std::uint16_t>, PlainLookUp<std::uint16_t>},
                       {PlainLookUp<std::uint32_t>, PlainLookUp<std::uint32_t>},
                       {PlainLookUp<std::uint64_t>, PlainLookUp<std::uint64_t>}},
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

PlaceRow<LinearPlaces> FindLinearRow(bool useVectors)
{
    return Rows(useVectors).linear;
}

PlaceRow<RadialPlaces> FindRadialRow(bool useVectors)
{
    return Rows(useVectors).radial;
}

LookUpRow FindLookUpRow(bool useVectors, bool streaming, std::size_t entryBytes)
{
    return Rows(useVectors).lookUp[std::countr_zero(entryBytes)][streaming];
}

} // namespace vfil

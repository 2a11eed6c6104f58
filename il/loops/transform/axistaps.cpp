/// \file
/// The tables of the two-pass resampler.

#include "il/loops/transform/axistaps.h"

#include "il/rows/pixarith.h"

#include <algorithm>
#include <cmath>

namespace vfil {

namespace {

/// Outputs and pixels beyond this don't exist.
constexpr double kFar = 4e9;

double Position(const AxisMap& map, std::int64_t output)
{
    return map.scale * static_cast<double>(output) + map.offset;
}

bool IsShrinking(const AxisMap& map)
{
    return std::abs(map.scale) > 1;
}

std::int64_t ToWhole(double v)
{
    return static_cast<std::int64_t>(std::clamp(v, -kFar, kFar));
}

Span Cut(const Span& span, double first, double last)
{
    return {std::max(span.first, ToWhole(std::floor(first))), std::min(span.last, ToWhole(std::ceil(last)))};
}

/// What a shrinking axis makes of an output: the length of the source that it covers.
struct Covered {
    double begin, length;

    /// The share of what lies below the pixel's lower edge.
    int Below(std::int64_t pixel) const
    {
        const double share = (static_cast<double>(pixel) - 0.5 - begin) / length;
        return RoundHalfAway(std::clamp(share, 0.0, 1.0) * kWholeWeight);
    }
};

Covered CoveredBy(const AxisMap& map, std::int64_t output)
{
    const double length = std::abs(map.scale);
    return {Position(map, output) - length / 2, length};
}

/// The pixels that an output needs.
Span PixelsOf(const AxisMap& map, const Span& source, std::int64_t output)
{
    const double at = Position(map, output);
    if (IsShrinking(map)) {
        const Covered covered = CoveredBy(map, output);
        return Cut(source, covered.begin + 0.5, covered.begin + covered.length - 0.5);
    }
    if (std::abs(map.scale) == 1) return Cut(source, RoundHalfAway(at), RoundHalfAway(at));
    return Cut(source, std::floor(at), std::floor(at) + 1);
}

} // namespace

/// An estimate that may be too wide is cut from both ends.
void AxisTaps::FindOutputs(const AxisMap& map, const Span& source, const Span& wanted)
{
    const double reach = std::max(1.0, std::abs(map.scale) / 2 + 0.5);
    const double low = (static_cast<double>(source.first) - reach - map.offset) / map.scale;
    const double high = (static_cast<double>(source.last) + reach - map.offset) / map.scale;
    outputs = wanted;
    if (map.scale != 0) outputs = Cut(wanted, std::min(low, high) - 1, std::max(low, high) + 1);
    while (!outputs.IsEmpty() && PixelsOf(map, source, outputs.first).IsEmpty())
        ++outputs.first;
    while (!outputs.IsEmpty() && PixelsOf(map, source, outputs.last).IsEmpty())
        --outputs.last;
    if (outputs.IsEmpty()) return;
    const Span first = PixelsOf(map, source, outputs.first);
    const Span last = PixelsOf(map, source, outputs.last);
    needed = {std::min(first.first, last.first), std::max(first.last, last.last)};
}

bool AxisTaps::Allocate()
{
    pitch = outputs.Count() + kTapSlack;
    if (!starts.Allocate(pitch) || !sums.Allocate(pitch) ||
        !weights.Allocate(2 * pitch * std::max<std::size_t>(pairs, 1)))
        return false;
    std::fill_n(starts.Data(), pitch, 0);
    std::fill_n(sums.Data(), pitch, 0);
    std::fill_n(weights.Data(), 2 * pitch * pairs, static_cast<std::int16_t>(0));
    return true;
}

std::int16_t& AxisTaps::Weight(std::size_t output, std::int64_t tap)
{
    const auto at = static_cast<std::size_t>(tap);
    return weights[2 * (at / 2 * pitch + output) + at % 2];
}

void AxisTaps::Weigh(const AxisMap& map, const Span& source, std::int64_t output)
{
    const auto at = static_cast<std::size_t>(output - outputs.first);
    const Span pixels = PixelsOf(map, source, output);
    if (pixels.IsEmpty()) return;
    starts[at] = static_cast<std::int32_t>(pixels.first - needed.first);
    const auto give = [&](std::int64_t pixel, int weight) {
        if (pixel < pixels.first || pixel > pixels.last) return;
        if (!IsList()) Weight(at, pixel - pixels.first) = static_cast<std::int16_t>(weight);
        sums[at] += weight;
    };
    if (IsList()) return give(pixels.first, kWholeWeight);
    if (IsShrinking(map)) {
        const Covered covered = CoveredBy(map, output);
        for (std::int64_t pixel = pixels.first; pixel <= pixels.last; ++pixel)
            give(pixel, covered.Below(pixel + 1) - covered.Below(pixel));
        return;
    }
    const double position = Position(map, output);
    const int upper = RoundHalfAway((position - std::floor(position)) * kWholeWeight);
    give(ToWhole(std::floor(position)), kWholeWeight - upper);
    give(ToWhole(std::floor(position)) + 1, upper);
}

bool AxisTaps::CreateRowWeightLookup(const AxisMap& map, const Span& source, const Span& wanted)
{
    outputs = needed = {};
    pairs = pitch = 0;
    if (source.IsEmpty() || wanted.IsEmpty() || !std::isfinite(map.scale) || !std::isfinite(map.offset))
        return true;
    FindOutputs(map, source, wanted);
    if (outputs.IsEmpty()) return true;
    if (IsShrinking(map)) {
        std::size_t most = 0;
        for (std::int64_t output = outputs.first; output <= outputs.last; ++output)
            most = std::max(most, PixelsOf(map, source, output).Count());
        pairs = most <= 2 ? 1 : (most + 3) / 4 * 2;
    } else {
        pairs = std::abs(map.scale) == 1 ? 0 : 1;
    }
    if (!Allocate()) return false;
    for (std::int64_t output = outputs.first; output <= outputs.last; ++output)
        Weigh(map, source, output);
    return true;
}

} // namespace vfil

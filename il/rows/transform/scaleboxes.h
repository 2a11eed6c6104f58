/// \file
/// Means over boxes of samples of 8 and 16 bits, boxes side by side. Included by scalerows_simd.cpp alone,
/// once for each level.
#pragma once

#include "il/rows/transform/scaleparams.h"
#include "il/rows/vecfloat.h"
#include "il/rows/vecsum.h"
#include "il/rows/vectaps.h"

namespace vfil {
namespace {

#if !defined(__AVX512BW__)

/// Vectors of a pixel of four samples.
constexpr std::size_t kParts = 4 / kLanes64;

/// kLanes64 boxes beside each other.
struct BoxSums {
    F64 sums[kLanes64][kParts] = {};
    F64 weights = SplatDouble(0);

    template <std::size_t box, class Sample>
    void Add(const Sample* const* pixels, std::size_t tap, F64 areas)
    {
        if constexpr (box < kLanes64) {
            const F64 area = SplatDoubleOf<static_cast<int>(box)>(areas);
            for (std::size_t part = 0; part < kParts; ++part) {
                const F64 samples = LoadAsDoubles(pixels[box] + 4 * tap + part * kLanes64);
                sums[box][part] = sums[box][part] + samples * area;
            }
            Add<box + 1>(pixels, tap, areas);
        }
    }
    /// The means, limited, of 32 bits each.
    void Store(std::int32_t* out, double full) const
    {
        double shares[kLanes64];
        StoreDoubles(shares, SplatDouble(1) / weights);
        for (std::size_t box = 0; box < kLanes64; ++box)
            for (std::size_t part = 0; part < kParts; ++part) {
                const F64 mean = Min(sums[box][part] * SplatDouble(shares[box]), SplatDouble(full));
                const S32 whole{HalvesToInt32(mean, mean)};
                std::memcpy(out + 4 * box + part * kLanes64, &whole, kLanes64 * sizeof *out);
            }
    }
};

template <class Sample>
void SumBoxesOf(const Sample* const* rows, const double* heights, std::size_t rowCount, const BoxTaps& taps,
                Sample* out, std::size_t pixels)
{
    constexpr double kFull = sizeof(Sample) == 1 ? 255 : 65535;
    for (std::size_t k = 0; k < pixels; k += kLanes64) {
        BoxSums boxes;
        for (std::size_t row = 0; row < rowCount; ++row) {
            const F64 height = SplatDouble(heights[row]);
            const Sample* places[kLanes64];
            for (std::size_t box = 0; box < kLanes64; ++box)
                places[box] = rows[row] + 4 * std::ptrdiff_t{taps.starts[k + box]};
            for (std::size_t tap = 0; tap < taps.taps; ++tap) {
                const F64 areas = LoadDoubles(taps.widths + tap * taps.pitch + k) * height;
                boxes.weights = boxes.weights + areas;
                boxes.Add<0>(places, tap, areas);
            }
        }
        std::int32_t means[4 * kLanes64];
        boxes.Store(means, kFull);
        const std::size_t count = pixels - k < kLanes64 ? pixels - k : kLanes64;
        for (std::size_t i = 0; i < 4 * count; ++i)
            out[4 * k + i] = static_cast<Sample>(means[i]);
    }
}

/// The samples at so many places, a step of `tap` on: in the lower bits of 32 each.
template <class Sample>
S32 GatherSamples(const Sample* row, std::size_t tap, const std::int32_t* places)
{
    constexpr int kUnit = sizeof(Sample);
    return GatherFours<kUnit>(row + tap, places) & Splat32(kUnit == 1 ? 0xFF : 0xFFFF);
}

/// Boxes of samples alone, kLanes32 beside each other.
template <class Sample>
void SumSampleBoxes(const Sample* const* rows, const double* heights, std::size_t rowCount,
                    const BoxTaps& tables, Sample* out, std::size_t pixels)
{
    const BoxTaps taps = tables;
    const F64 full = SplatDouble(sizeof(Sample) == 1 ? 255 : 65535);
    for (std::size_t k = 0; k < pixels; k += kLanes32) {
        F64 sums[2] = {SplatDouble(0), SplatDouble(0)};
        F64 weights[2] = {sums[0], sums[0]};
        for (std::size_t row = 0; row < rowCount; ++row) {
            const F64 height = SplatDouble(heights[row]);
            for (std::size_t tap = 0; tap < taps.taps; ++tap) {
                const S32 samples = GatherSamples(rows[row], tap, taps.starts + k);
                const double* const widths = taps.widths + tap * taps.pitch + k;
                const F64 areas[2] = {LoadDoubles(widths) * height, LoadDoubles(widths + kLanes64) * height};
                weights[0] = weights[0] + areas[0];
                weights[1] = weights[1] + areas[1];
                sums[0] = sums[0] + HalfToDouble<0>(samples.bits) * areas[0];
                sums[1] = sums[1] + HalfToDouble<1>(samples.bits) * areas[1];
            }
        }
        const F64 one = SplatDouble(1);
        const S32 means{
            HalvesToInt32(Min(sums[0] * (one / weights[0]), full), Min(sums[1] * (one / weights[1]), full))};
        std::int32_t values[kLanes32];
        StoreLanes(values, means);
        const std::size_t count = pixels - k < kLanes32 ? pixels - k : kLanes32;
        for (std::size_t i = 0; i < count; ++i)
            out[k + i] = static_cast<Sample>(values[i]);
    }
}

#endif

} // namespace
} // namespace vfil

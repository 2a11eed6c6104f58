/// \file
/// Sampling of 16-bit pixels by vectors of doubles. Included by samplerows_simd.cpp alone.
#pragma once

#include "il/rows/transform/sampleplaces.h"

namespace vfil {
namespace {

#if defined(__AVX2__) && !defined(__AVX512BW__)

inline F64 Between(F64 a, F64 b, F64 fraction)
{
    return a + (b - a) * fraction;
}

inline void WriteBilinear(PixelOf<std::uint16_t, 4>, const SampleSource& source, const ExactPlaces& places,
                          std::size_t count, std::uint8_t* out)
{
    for (std::size_t at = 0; at < count; ++at) {
        const std::uint8_t* const low = source.pixels + places.offset[at];
        const std::uint8_t* const high = low + source.rowBytes;
        const F64 fu = SplatDouble(places.fu[at]);
        const F64 top = Between(WidenWords(low), WidenWords(low + 8), fu);
        const F64 bottom = Between(WidenWords(high), WidenWords(high + 8), fu);
        StoreQuarter(out + 8 * at, RoundWords(Between(top, bottom, SplatDouble(places.fv[at]))));
    }
}

inline void WriteBilinear(PixelOf<std::uint16_t, 1>, const SampleSource& source, const ExactPlaces& places,
                          std::size_t count, std::uint8_t* out)
{
    for (std::size_t at = 0; at < count; at += 4) {
        const Half low = LoadFour32(source.pixels, places.offset + at);
        const Half high = LoadFour32(source.pixels + source.rowBytes, places.offset + at);
        const F64 fu = LoadDoubles(places.fu + at);
        const F64 top = Between(LowerWords(low), UpperWords(low), fu);
        const F64 bottom = Between(LowerWords(high), UpperWords(high), fu);
        StoreQuarter(out + 2 * at, RoundWords(Between(top, bottom, LoadDoubles(places.fv + at))));
    }
}

/// The weights of four rows or columns.
struct DoubleWeights {
    alignas(64) double weight[4][kBlock];
};

inline void FindWeights(const double* fractions, std::size_t count, DoubleWeights& weights)
{
    const F64 half = SplatDouble(0.5);
    const F64 threeHalves = SplatDouble(1.5);
    for (std::size_t at = 0; at < count; at += 4) {
        const F64 t = LoadDoubles(fractions + at);
        const F64 t2 = t * t;
        const F64 t3 = t2 * t;
        StoreDoubles(weights.weight[0] + at, t2 - half * t - half * t3);
        StoreDoubles(weights.weight[1] + at, SplatDouble(1) - SplatDouble(2.5) * t2 + threeHalves * t3);
        StoreDoubles(weights.weight[2] + at, half * t + SplatDouble(2) * t2 - threeHalves * t3);
        StoreDoubles(weights.weight[3] + at, half * t3 - half * t2);
    }
}

/// The sum of four times their weights, from the first on.
template <class Value, class Weight>
F64 WeighFour(Value value, Weight weight)
{
    return ((value(0) * weight(0) + value(1) * weight(1)) + value(2) * weight(2)) + value(3) * weight(3);
}

/// Four words of each of four rows, from the first byte on, times the rows' weights.
inline F64 WeighRows(const SampleSource& source, const std::uint8_t* first, const DoubleWeights& cy,
                     std::size_t at)
{
    return WeighFour([&](int j) { return WidenWords(first + j * source.rowBytes); },
                     [&](int j) { return SplatDouble(cy.weight[j][at]); });
}

inline void WriteBicubic(PixelOf<std::uint16_t, 4>, const SampleSource& source, const ExactPlaces& places,
                         std::size_t count, std::uint8_t* out)
{
    DoubleWeights cx;
    DoubleWeights cy;
    FindWeights(places.fu, count, cx);
    FindWeights(places.fv, count, cy);
    for (std::size_t at = 0; at < count; ++at) {
        const std::uint8_t* const first = source.pixels + places.offset[at];
        const F64 sum = WeighFour([&](int i) { return WeighRows(source, first + 8 * i, cy, at); },
                                  [&](int i) { return SplatDouble(cx.weight[i][at]); });
        StoreQuarter(out + 8 * at, RoundWords(sum));
    }
}

inline void WriteBicubic(PixelOf<std::uint16_t, 1>, const SampleSource& source, const ExactPlaces& places,
                         std::size_t count, std::uint8_t* out)
{
    DoubleWeights cx;
    DoubleWeights cy;
    FindWeights(places.fu, count, cx);
    FindWeights(places.fv, count, cy);
    for (std::size_t at = 0; at < count; at += 4) {
        F64 columns[4];
        for (std::size_t i = 0; i < 4; ++i)
            columns[i] = WeighRows(source, source.pixels + places.offset[at + i], cy, at + i);
        Turn(columns);
        const F64 sum = WeighFour([&](int i) { return columns[i]; },
                                  [&](int i) { return LoadDoubles(cx.weight[i] + at); });
        StoreQuarter(out + 2 * at, RoundWords(sum));
    }
}

#endif

} // namespace
} // namespace vfil

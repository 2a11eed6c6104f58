/// \file
/// Sampling of 8-bit pixels by vectors. Included by samplerows_simd.cpp alone.
#pragma once

#include "il/rows/transform/sampleplaces.h"

namespace vfil {
namespace {

#if defined(__AVX2__) && !defined(__AVX512BW__)

/// a + (b - a) * fraction / 65536, rounded, of samples and fractions of 16 bits. The product of 25 bits is
/// made of its halves, of which the upper one takes the fraction for signed.
inline U16 Between(U16 a, U16 b, U16 fraction, U16 upperFractions)
{
    const U16 way = b - a;
    const U16 carry = ShiftRight<15>(way * fraction);
    return a + MulHighSigned(way, fraction) + (way & upperFractions) + carry;
}

inline U16 Between(U16 a, U16 b, U16 fraction)
{
    return Between(a, b, fraction, SignMask(fraction));
}

/// Four pixels of four bytes, as 16-bit lanes.
inline U16 BiLinearyInterpolatePoint_MMX(const SampleSource& source, const FixedPlaces& places,
                                         std::size_t at)
{
    const U8 low = LoadFour64(source.pixels, places.offset + at);
    const U8 high = LoadFour64(source.pixels + source.rowBytes, places.offset + at);
    const U16 fu = SplatEach16(places.fu + at);
    const U16 fuUpper = SignMask(fu);
    const U16 top = Between(LowerPixels(low), UpperPixels(low), fu, fuUpper);
    const U16 bottom = Between(LowerPixels(high), UpperPixels(high), fu, fuUpper);
    return Between(top, bottom, SplatEach16(places.fv + at));
}

inline void WriteBilinear(PixelOf<std::uint8_t, 4>, const SampleSource& source, const FixedPlaces& places,
                          std::size_t count, std::uint8_t* out)
{
    for (std::size_t at = 0; at < count; at += 8)
        Store(out + 4 * at, OrderNarrowed(Narrow({BiLinearyInterpolatePoint_MMX(source, places, at),
                                                  BiLinearyInterpolatePoint_MMX(source, places, at + 4)})));
}

inline void WriteBilinear(PixelOf<std::uint8_t, 1>, const SampleSource& source, const FixedPlaces& places,
                          std::size_t count, std::uint8_t* out)
{
    const auto load = [&](std::ptrdiff_t row, std::size_t at) {
        const std::uint8_t* const base = source.pixels + row * source.rowBytes;
        return U16{
            Join(LoadEight16(base, places.offset + at), LoadEight16(base, places.offset + at + 8)).bits};
    };
    const auto words = [](const std::uint16_t* p) {
        return U16{Load(reinterpret_cast<const std::uint8_t*>(p)).bits};
    };
    const U16 bytes = Splat(0xFF);
    for (std::size_t at = 0; at < count; at += 16) {
        const U16 low = load(0, at);
        const U16 high = load(1, at);
        const U16 fu = words(places.fu + at);
        const U16 fuUpper = SignMask(fu);
        const U16 top = Between(low & bytes, ShiftRight<8>(low), fu, fuUpper);
        const U16 bottom = Between(high & bytes, ShiftRight<8>(high), fu, fuUpper);
        const U16 mixed = Between(top, bottom, words(places.fv + at));
        StoreHalf(out + at, LowHalf(OrderNarrowed(Narrow({mixed, mixed}))));
    }
}

/// The weights of the four rows or columns of each place, side by side.
struct FixedWeights {
    alignas(64) std::int32_t weight[kBlock][4];
};

/// As CubicWeightsOf. The first product of c0 needs all of 32 bits, without a sign.
inline void FindWeights(const std::uint16_t* fractions, std::size_t count, FixedWeights& weights)
{
    for (std::size_t at = 0; at < count; at += kLanes32) {
        const S32 u = WidenWords32(fractions + at);
        const S32 h = ShiftDown<1>(u + Splat32(1));
        const S32 round16 = Splat32(0x8000);
        const S32 round14 = Splat32(0x2000);
        const S32 rise = ShiftDownBits<16>((Splat32(0x10000) - h) * u + round16);
        const S32 c0 = ShiftDown<16>((rise - Splat32(0x8000)) * u + round16);
        const S32 bend = ShiftDown<14>(ShiftDown<4>(u - Splat32(0x27ff8) + h) * u + round14);
        const S32 c1 = ShiftDown<14>(bend * u + round14) + Splat32(0x10000);
        const S32 lift = ShiftDown<14>(ShiftDown<2>(Splat32(0x20002) - (u + h)) * u + round14);
        const S32 c2 = ShiftDown<14>(ShiftDown<2>(lift + Splat32(0x8002)) * u + round14);
        const S32 fall = ShiftDown<16>((h - Splat32(0x8000)) * u + round16);
        const S32 c3 = ShiftDown<16>(fall * u + round16);
        StoreTurned32(weights.weight[at], c0, c1, c2, c3);
    }
}

/// Columns of 26 bits to 16.
inline S32 ShortenColumns(S32 sum)
{
    return ShiftDown<10>(sum + Splat32(0x200));
}

inline Half ShortenSum(Half sum)
{
    return ShiftDown32<22>(Add32(sum, SplatHalf32(0x200000)));
}

/// One pixel of four bytes, as 32-bit lanes.
inline Half BicubicOne(const SampleSource& source, std::uint32_t offset, const std::int32_t (&cx)[4],
                       const std::int32_t (&cy)[4])
{
    const std::uint8_t* p = source.pixels + offset;
    S32 left = Splat32(0);
    S32 right = left;
    for (int row = 0; row < 4; ++row, p += source.rowBytes) {
        const S32Pair pixels = WidenBytesPair32(p);
        left = left + pixels.lo * Splat32(cy[row]);
        right = right + pixels.hi * Splat32(cy[row]);
    }
    const S32 sum = ShortenColumns(left) * SplatTwo32<0>(cx) + ShortenColumns(right) * SplatTwo32<1>(cx);
    return ShortenSum(AddHalves32(sum));
}

inline void WriteBicubic(PixelOf<std::uint8_t, 4>, const SampleSource& source, const FixedPlaces& places,
                         std::size_t count, std::uint8_t* out)
{
    FixedWeights cx;
    FixedWeights cy;
    FindWeights(places.fu, count, cx);
    FindWeights(places.fv, count, cy);
    for (std::size_t at = 0; at < count; at += 4) {
        const auto one = [&](std::size_t i) {
            return BicubicOne(source, places.offset[i], cx.weight[i], cy.weight[i]);
        };
        StoreHalf(out + 4 * at, NarrowFour(one(at), one(at + 1), one(at + 2), one(at + 3)));
    }
}

/// The columns of two pixels of a byte, times their weights.
inline S32 BicubicTwo(const SampleSource& source, const std::uint32_t* offset, const std::int32_t (*cx)[4],
                      const std::int32_t (*cy)[4])
{
    const auto two = [](const std::int32_t(*weights)[4]) {
        return S32{Join(LoadHalf(weights[0]), LoadHalf(weights[1])).bits};
    };
    const auto row = [&](int j) {
        const std::uint8_t* const base = source.pixels + j * source.rowBytes;
        return WidenTwo32(base + offset[0], base + offset[1]);
    };
    const S32 weights = two(cy);
    const S32 sum = row(0) * Shuffle32<0x00>(weights) + row(1) * Shuffle32<0x55>(weights) +
                    row(2) * Shuffle32<0xAA>(weights) + row(3) * Shuffle32<0xFF>(weights);
    return ShortenColumns(sum) * two(cx);
}

inline void WriteBicubic(PixelOf<std::uint8_t, 1>, const SampleSource& source, const FixedPlaces& places,
                         std::size_t count, std::uint8_t* out)
{
    FixedWeights cx;
    FixedWeights cy;
    FindWeights(places.fu, count, cx);
    FindWeights(places.fv, count, cy);
    for (std::size_t at = 0; at < count; at += 8) {
        const auto two = [&](std::size_t i) {
            return BicubicTwo(source, places.offset + i, cx.weight + i, cy.weight + i);
        };
        const S32 sums = SumFours(two(at), two(at + 2), two(at + 4), two(at + 6)); // [0 2 4 6 1 3 5 7]
        const U8 lanes{sums.bits};
        StoreQuarter(out + at, InterleaveToBytes(ShortenSum(LowHalf(lanes)), ShortenSum(HighHalf(lanes))));
    }
}

#endif

} // namespace
} // namespace vfil

/// \file
/// What the vector forms of the RGBA keyers have in common: weighted sums of channels, blends, and the way to
/// YCC and back. Included by the *_simd.cpp sources beside it alone, as vec.h is.
#pragma once

#include "il/rows/convert/yccparams.h"
#include "il/rows/keyer/keyparams.h"
#include "il/rows/vecplanes.h"

namespace vfil {
namespace {

/// Pixels as pairs of 16 bits.
struct ChannelPairs {
    S32 redBlue, greenAlpha;
};

inline ChannelPairs PairsOf(U8 pixels)
{
    const S32 evenBytes = Splat32(0x00FF00FF);
    const S32 p{pixels.bits};
    return {p & evenBytes, ShiftDownBits<8>(p) & evenBytes};
}

/// Weights of 16 bits.
struct NarrowWeights {
    S32 redBlue, greenAlpha;

    explicit NarrowWeights(const KeyWeights& w)
        : redBlue(SplatPair16(w.red, w.blue)), greenAlpha(SplatPair16(w.green, 0))
    {}
    S32 Sum(const ChannelPairs& pixels) const
    {
        return DotPairs(pixels.redBlue, redBlue) + DotPairs(pixels.greenAlpha, greenAlpha);
    }
};

/// Weights of 30 bits: 32768 times a high part of 16 bits, and a low one of 15.
struct WideWeights {
    NarrowWeights high, low;

    explicit WideWeights(const KeyWeights& w)
        : high({w.red >> 15, w.green >> 15, w.blue >> 15}),
          low({w.red & 0x7FFF, w.green & 0x7FFF, w.blue & 0x7FFF})
    {}
    /// Wraps to 32 bits.
    S32 Sum(const ChannelPairs& pixels) const { return ShiftUp<15>(high.Sum(pixels)) + low.Sum(pixels); }
};

/// See DifferenceKey; wraps to 32 bits.
struct DifferenceLanes {
    WideWeights weights;
    U8 limits;
    S32 constant;

    explicit DifferenceLanes(const DifferenceKey& key)
        : weights(key.weights), limits(SplatU32(key.limits)),
          constant(Splat32(static_cast<std::int32_t>(key.constant)))
    {}
    S32 operator()(U8 pixels) const { return weights.Sum(PairsOf(Min(pixels, limits))) + constant; }
};

/// A number as what is added to and taken from bytes, both limited: from the lowest of each 32 bits, or with
/// `ones` of 0x01010101 from all.
struct Shift {
    U8 up, down;

    explicit Shift(std::int32_t by, std::uint32_t ones = 1)
        : up(SplatU32(ones * static_cast<std::uint32_t>(by < 0 ? 0 : (by > 255 ? 255 : by)))),
          down(SplatU32(ones * static_cast<std::uint32_t>(by > 0 ? 0 : (by < -255 ? 255 : -by))))
    {}
    U8 Add(U8 v) const { return SubClip(AddClip(v, up), down); }
    U8 Take(U8 v) const { return SubClip(AddClip(v, down), up); }
};

/// a by the weight, b by the rest.
inline U8 Blend(U8 a, U8 b, U8 weight)
{
    const U16Pair w = Widen(weight);
    const U16Pair rest = Widen(weight ^ SplatU32(0xFFFFFFFF));
    const U16Pair as = Widen(a);
    const U16Pair bs = Widen(b);
    return Narrow(
        {NormMult(w.lo, as.lo) + NormMult(rest.lo, bs.lo), NormMult(w.hi, as.hi) + NormMult(rest.hi, bs.hi)});
}

#if defined(__AVX2__)

constexpr int kExact = static_cast<int>(YccArithmetic::Exact);

/// A byte x of each 32 bits as the pair (8 x, x), whose product with a pair of weights is one with a weight
/// of up to 19 bits.
inline S32 Scaled(S32 x)
{
    return ShiftUp<3>(x) | ShiftUp<16>(x);
}

inline S32 WeightOfScaled(std::int32_t weight)
{
    return SplatPair16(weight >> 3, weight & 7);
}

/// Planes of YCC.
struct YccPlanes {
    U8 y, cb, cr;
};

/// Lanes of three samples of YCC, or of RGB.
struct Lanes {
    S32 a, b, c;
};

struct Encoder {
    struct Row {
        Row(const EncodeWeights& w, int offset)
            : redBlue(SplatPair16(w.red, w.blue)), green(WeightOfScaled(w.green)),
              constant(Splat32(0x8000 + (offset << 16)))
        {}
        S32 operator()(S32 redBlues, S32 greens) const
        {
            return ShiftDown<16>(DotPairs(redBlues, redBlue) + DotPairs(greens, green) + constant);
        }

        S32 redBlue, green, constant;
    };

    explicit Encoder(YccWeights weights) : Encoder(kEncode[kExact][static_cast<int>(weights)]) {}
    explicit Encoder(const EncodeTable& table) : y(table.y, 16), cb(table.cb, 128), cr(table.cr, 128) {}

    YccPlanes operator()(const Block& planes) const
    {
        const Lanes l[] = {At<0>(planes), At<1>(planes), At<2>(planes), At<3>(planes)};
        return {JoinBytes(l[0].a, l[1].a, l[2].a, l[3].a), JoinBytes(l[0].b, l[1].b, l[2].b, l[3].b),
                JoinBytes(l[0].c, l[1].c, l[2].c, l[3].c)};
    }

    /// Of one byte of each 32 bits of the planes.
    template <int byte>
    Lanes At(const Block& planes) const
    {
        const S32 redBlues = ByteLanes<byte>(planes.v[0]) | ShiftUp<16>(ByteLanes<byte>(planes.v[2]));
        const S32 greens = Scaled(ByteLanes<byte>(planes.v[1]));
        return {y(redBlues, greens), cb(redBlues, greens), cr(redBlues, greens)};
    }

    Row y, cb, cr;
};

struct Decoder {
    explicit Decoder(YccWeights weights) : Decoder(kDecode[kExact][static_cast<int>(weights)]) {}
    explicit Decoder(const DecodeTable& table)
        : luma(WeightOfScaled(table.red.y)), redCr(WeightOfScaled(table.red.cr)),
          greenCb(WeightOfScaled(table.green.cb)), greenCr(WeightOfScaled(table.green.cr)),
          blueCb(WeightOfScaled(table.blue.cb)), red(Splat32(table.red.constant)),
          green(Splat32(table.green.constant)), blue(Splat32(table.blue.constant))
    {}

    /// The fourth plane is full.
    Block operator()(const YccPlanes& ycc) const
    {
        const Lanes l[] = {At<0>(ycc), At<1>(ycc), At<2>(ycc), At<3>(ycc)};
        return {{JoinLimited(l[0].a, l[1].a, l[2].a, l[3].a), JoinLimited(l[0].b, l[1].b, l[2].b, l[3].b),
                 JoinLimited(l[0].c, l[1].c, l[2].c, l[3].c), SplatByte(255)}};
    }

    template <int byte>
    Lanes At(const YccPlanes& ycc) const
    {
        const S32 y = DotPairs(Scaled(ByteLanes<byte>(ycc.y)), luma); // the same in all three channels
        const S32 cb = Scaled(ByteLanes<byte>(ycc.cb));
        const S32 cr = Scaled(ByteLanes<byte>(ycc.cr));
        return {ShiftDown<16>(y + DotPairs(cr, redCr) + red),
                ShiftDown<16>(y + DotPairs(cb, greenCb) + DotPairs(cr, greenCr) + green),
                ShiftDown<16>(y + DotPairs(cb, blueCb) + blue)};
    }

    S32 luma, redCr, greenCb, greenCr, blueCb, red, green, blue;
};

/// kBytes pixels at a time: operation(a, b) makes a block of pixels of their memory. So much is computed that
/// stores around the cache gain nothing.
template <class Operation>
void MapBlocks(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
               const Operation& operation)
{
    const auto store = [](std::uint8_t* to, const Block& block) {
        for (std::size_t i = 0; i < 4; ++i)
            Store(to + i * kBytes, block.v[i]);
    };
    std::size_t at = 0;
    for (; pixels - at >= kBytes; at += kBytes)
        store(out + 4 * at, operation(a + 4 * at, b + 4 * at));
    if (at == pixels) return;
    std::uint8_t as[4 * kBytes] = {};
    std::uint8_t bs[4 * kBytes] = {};
    std::memcpy(as, a + 4 * at, 4 * (pixels - at));
    std::memcpy(bs, b + 4 * at, 4 * (pixels - at));
    store(as, operation(as, bs));
    std::memcpy(out + 4 * at, as, 4 * (pixels - at));
}

#endif

} // namespace
} // namespace vfil

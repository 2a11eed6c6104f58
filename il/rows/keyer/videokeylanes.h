/// \file
/// Macropixels in vectors, and what the vector forms of the 4:2:2 keyers have in common. Included by
/// videokeyrows_simd.cpp alone, as vec.h is.
#pragma once

#include "il/rows/keyer/videokeyparams.h"
#include "il/rows/vecfloat.h"
#include "il/rows/vecselect.h"

namespace vfil {
namespace {

using Byte = std::uint8_t;

/// A vector of macropixels: (Y0, Y1) and (Cb, Cr) as the 16-bit lanes of each 32 bits, of 0 .. 255.
struct Macropixels {
    U16 luma, chroma;
};

template <bool chromaFirst>
Macropixels Split(U8 v)
{
    const U16 lanes{v.bits};
    const U16 even = lanes & Splat(255);
    const U16 odd = ShiftRight<8>(lanes);
    return chromaFirst ? Macropixels{odd, even} : Macropixels{even, odd};
}

template <bool chromaFirst>
U8 Merge(Macropixels m)
{
    return {(chromaFirst ? ShiftLeft<8>(m.luma) | m.chroma : m.luma | ShiftLeft<8>(m.chroma)).bits};
}

U16 ClampToByte(U16 v)
{
    return MinSigned(MaxSigned(v, Splat(0)), Splat(255));
}

U16 Blend(U16 a, U16 b, U16 matte)
{
    return NormMult(matte, a) + NormMult(Splat(255) - matte, b);
}

/// a matte + (255 - matte) b fits 16 bits, and is as well (a - b) matte + 255 b.
U16 BlendDown(U16 a, U16 b, U16 matte)
{
    return ShiftRight<8>((a - b) * matte + ShiftLeft<8>(b) - b);
}

/// The product with a number of 16 bits, divided by 256.
U16 MulBy256th(U16 v, U16 factor)
{
    return MulHigh(ShiftLeft<8>(v), factor);
}

/// Lanes of one number.
class LumaOfSpill {
public:
    explicit LumaOfSpill(const SpillLuma& luma)
        : m_gain(Splat(luma.gain)),
          m_offset(Splat(luma.offset < -32768 ? -32768
                                              : (luma.offset > 255 ? 255 : luma.offset))) // more is the same
    {}
    U16 operator()(U16 y) const { return ClampToByte(MulBy256th(y, m_gain) + m_offset); }

private:
    U16 m_gain, m_offset;
};

/// The matte of a value: see MatteWindow. What lies between the ends is positive.
class Window {
public:
    explicit Window(const MatteWindow& window)
        : m_low(Splat(window.low)), m_top(Splat(window.high - 1)), m_gainHigh(Splat(window.gain >> 16)),
          m_gainLow(Splat(window.gain)), m_minusOffsetLow(Splat(~window.offset)),
          m_offsetHigh(Splat((window.offset >> 16) + 1))
    {}

    /// The lower half of the product less the lower half of the offset borrows, unless half of the sum with
    /// the offset's complement and 1 reaches 32768. The upper halves are without the borrow, and 1 less.
    U16 operator()(U16 v) const
    {
        const U16 noBorrow = ShiftRight<15>(Average(v * m_gainLow, m_minusOffsetLow));
        const U16 between = v * m_gainHigh + MulHigh(v, m_gainLow) + noBorrow - m_offsetHigh;
        return Select(Greater(v, m_low), Select(Greater(v, m_top), Splat(255), between), Splat(0));
    }

private:
    U16 m_low, m_top, m_gainHigh, m_gainLow, m_minusOffsetLow, m_offsetHigh;
};

/// The two luma of each macropixel, weighed.
struct LumaTerms {
    S32 first, second;
};

class LumaWeight {
public:
    explicit LumaWeight(std::int32_t weight)
        : m_first(SplatPair16(weight, 0)), m_second(SplatPair16(0, weight))
    {}
    LumaTerms operator()(U16 v) const { return {DotPairs({v.bits}, m_first), DotPairs({v.bits}, m_second)}; }

private:
    S32 m_first, m_second;
};

/// The part of a form that both pixels have, 512ths.
class ChromaTerm {
public:
    explicit ChromaTerm(const YccForm& form)
        : m_weights(SplatPair16(form.cb, form.cr)), m_constant(Splat32(form.constant * 512))
    {}
    S32 operator()(U16 chroma) const { return DotPairs({chroma.bits}, m_weights) + m_constant; }

private:
    S32 m_weights, m_constant;
};

U16 WholePart(LumaTerms luma, S32 chroma)
{
    return PackBeside(ShiftDown<9>(luma.first + chroma), ShiftDown<9>(luma.second + chroma));
}

/// a / b of 0 < a < b <= 255 as a part of 255, rounded to nearest. The quotient of floats is right: 512ths of
/// it are the least that counts.
S32 Ratio255(S32 a, S32 b)
{
    const F32 divisor = ToFloat(b);
    return ToWhole((ToFloat(a) * SplatFloat(255.0F) + divisor * SplatFloat(0.5F)) / divisor, 255.0F);
}

U16 Ratio255(U16 a, U16 b)
{
    const S32Pair as = WidenFull(a);
    const S32Pair bs = WidenFull(b);
    return NarrowFull({Ratio255(as.lo, bs.lo), Ratio255(as.hi, bs.hi)});
}

} // namespace
} // namespace vfil

/// \file
/// More of the vectors of doubles: truth values, signs, roots and whole numbers. Included by *_simd.cpp
/// sources alone, as vec.h is.
#pragma once

#include "il/rows/vecfloat.h"

namespace vfil {
namespace {

/// False for NaN.
inline Mask64 operator<=(F64 a, F64 b)
{
#if defined(__AVX512BW__)
    return {_mm512_cmp_pd_mask(a.v, b.v, _CMP_LE_OQ)};
#elif defined(__AVX2__)
    return {_mm256_cmp_pd(a.v, b.v, _CMP_LE_OQ)};
#else
    return {_mm_cmple_pd(a.v, b.v)};
#endif
}

inline Mask64 operator&(Mask64 a, Mask64 b)
{
#if defined(__AVX512BW__)
    return {_kand_mask8(a.bits, b.bits)};
#else
    return {VFIL_MM(and_pd)(a.bits, b.bits)};
#endif
}

inline Mask64 operator|(Mask64 a, Mask64 b)
{
#if defined(__AVX512BW__)
    return {_kor_mask8(a.bits, b.bits)};
#else
    return {VFIL_MM(or_pd)(a.bits, b.bits)};
#endif
}

/// True in a, but not in b.
inline Mask64 Without(Mask64 a, Mask64 b)
{
#if defined(__AVX512BW__)
    return {_kandn_mask8(b.bits, a.bits)};
#else
    return {VFIL_MM(andnot_pd)(b.bits, a.bits)};
#endif
}

/// A bit a lane, the first one lowest.
inline unsigned BitsOf(Mask64 mask)
{
#if defined(__AVX512BW__)
    return mask.bits;
#else
    return static_cast<unsigned>(VFIL_MM(movemask_pd)(mask.bits));
#endif
}

/// The other sign, of zeros too.
inline F64 Negative(F64 v)
{
    return {VFIL_MM(xor_pd)(v.v, SplatDouble(-0.0).v)};
}

inline F64 Absolute(F64 v)
{
    return {VFIL_MM(andnot_pd)(SplatDouble(-0.0).v, v.v)};
}

/// NaN below 0.
inline F64 SquareRoot(F64 v)
{
    return {VFIL_MM(sqrt_pd)(v.v)};
}

/// The nearest whole number, of doubles of less than 2 to the power of 51, or minus that.
inline F64 NearestWhole(F64 v)
{
    const F64 power = SplatDouble(0x1.8p52);
    return (v + power) - power;
}

/// The largest whole number that is not above; for the same range.
inline F64 Floor(F64 v)
{
    const F64 nearest = NearestWhole(v);
    return nearest - Select(v < nearest, SplatDouble(1), SplatDouble(0));
}

/// The smallest whole number that is not below; for the same range.
inline F64 Ceiling(F64 v)
{
    const F64 nearest = NearestWhole(v);
    return nearest + Select(nearest < v, SplatDouble(1), SplatDouble(0));
}

/// first, first + 1, first + 2 ...
inline F64 CountFrom(double first)
{
    double lanes[kLanes64];
    for (std::size_t i = 0; i < kLanes64; ++i)
        lanes[i] = first + static_cast<double>(i);
    return LoadDoubles(lanes);
}

} // namespace
} // namespace vfil

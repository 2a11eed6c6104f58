/// \file
/// Vectors of signed 32-bit lanes, and the products of 16-bit pairs that fill them. Included by *_simd.cpp
/// sources alone, as vec.h is.
#pragma once

#include "il/rows/vec.h"

namespace vfil {
namespace {

/// A vector of signed 32-bit lanes, or of pairs of 16-bit ones.
struct S32 {
    Register bits;
};

/// 32-bit lanes in a vector.
constexpr std::size_t kLanes32 = kBytes / 4;

inline S32 Splat32(std::int32_t v)
{
    return {VFIL_MM(set1_epi32)(v)};
}

/// Two 16-bit values in each 32 bits, the first of them lower.
inline S32 SplatPair16(std::int32_t low, std::int32_t high)
{
    return Splat32(static_cast<std::int32_t>((static_cast<std::uint32_t>(low) & 0xFFFFU) |
                                             static_cast<std::uint32_t>(high) << 16));
}

/// Two 32-bit lanes in each 64 bits, the first of them lower.
inline S32 Alternate(S32 even, S32 odd)
{
    const Register low = SplatU64(0xFFFFFFFF).bits;
    return {VFIL_BITS(or)(VFIL_BITS(and)(low, even.bits), VFIL_BITS(andnot)(low, odd.bits))};
}

inline S32 operator+(S32 a, S32 b)
{
    return {VFIL_MM(add_epi32)(a.bits, b.bits)};
}

#if defined(__AVX2__)
inline S32 operator*(S32 a, S32 b)
{
    return {VFIL_MM(mullo_epi32)(a.bits, b.bits)};
}

inline S32 Max(S32 a, S32 b)
{
    return {VFIL_MM(max_epi32)(a.bits, b.bits)};
}

inline S32 Min(S32 a, S32 b)
{
    return {VFIL_MM(min_epi32)(a.bits, b.bits)};
}
#endif

inline S32 operator&(S32 a, S32 b)
{
    return {VFIL_BITS(and)(a.bits, b.bits)};
}

inline S32 operator|(S32 a, S32 b)
{
    return {VFIL_BITS(or)(a.bits, b.bits)};
}

template <int count>
inline S32 ShiftUp(S32 v)
{
    return {VFIL_MM(slli_epi32)(v.bits, count)};
}

/// Fills with zeros.
template <int count>
inline S32 ShiftDownBits(S32 v)
{
    return {VFIL_MM(srli_epi32)(v.bits, count)};
}

/// Keeps the sign.
template <int count>
inline S32 ShiftDown(S32 v)
{
    return {VFIL_MM(srai_epi32)(v.bits, count)};
}

/// The sum of the two products of signed 16-bit lanes in each 32 bits.
inline S32 DotPairs(S32 a, S32 b)
{
    return {VFIL_MM(madd_epi16)(a.bits, b.bits)};
}

/// Lanes of each 128 bits by two-bit indices.
template <int indices>
inline S32 Shuffle32(S32 v)
{
#if defined(__AVX512BW__)
    return {_mm512_shuffle_epi32(v.bits, static_cast<_MM_PERM_ENUM>(indices))};
#else
    return {VFIL_MM(shuffle_epi32)(v.bits, indices)};
#endif
}

/// Signed lanes to 16 bits with saturation, the first vector's four in the lower half of each 128 bits.
inline U16 PackSigned(S32 a, S32 b)
{
    return {VFIL_MM(packs_epi32)(a.bits, b.bits)};
}

inline S32 operator-(S32 a, S32 b)
{
    return {VFIL_MM(sub_epi32)(a.bits, b.bits)};
}

inline S32 Abs(S32 v)
{
#if defined(__AVX2__)
    return {VFIL_MM(abs_epi32)(v.bits)};
#else
    const S32 sign = ShiftDown<31>(v);
    return {_mm_sub_epi32(_mm_xor_si128(v.bits, sign.bits), sign.bits)};
#endif
}

/// Signed 32-bit lanes of 16-bit ones, in the order that NarrowFull undoes.
struct S32Pair {
    S32 lo, hi;
};

inline S32Pair WidenFull(U16 v)
{
    const Register zero{};
    return {{VFIL_MM(unpacklo_epi16)(v.bits, zero)}, {VFIL_MM(unpackhi_epi16)(v.bits, zero)}};
}

/// Limits signed lanes of less than 2 to the power of 30, or minus that, to 0 .. 65535.
inline U16 NarrowFull(S32Pair v)
{
#if defined(__AVX2__)
    return {VFIL_MM(packus_epi32)(v.lo.bits, v.hi.bits)};
#else
    const S32 middle = Splat32(0x8000);
    return PackSigned(v.lo - middle, v.hi - middle) ^ Splat(-0x8000);
#endif
}

} // namespace
} // namespace vfil

/// \file
/// Entries of a table that lie within a vector of it, roots of floats, and what tells of lanes. Included by
/// *_simd.cpp sources alone, as vec.h is.
#pragma once

#include "il/rows/vec64.h"
#include "il/rows/vecfloat.h"

namespace vfil {
namespace {

inline F32 SquareRoot(F32 v)
{
    return {VFIL_MM(sqrt_ps)(v.v)};
}

/// True when a lane has none of the bits.
inline bool AnyWithout(S32 v, std::int32_t bits)
{
#if defined(__AVX512BW__)
    return _mm512_testn_epi32_mask(v.bits, Splat32(bits).bits) != 0;
#else
    const S32 kept = v & Splat32(bits);
    return VFIL_MM(movemask_epi8)(VFIL_MM(cmpeq_epi32)(kept.bits, Register{})) != 0;
#endif
}

/// The lanes, of which those are one more where a mask is true; the first mask has the lower half.
inline S32 CountTrue(S32 v, Mask64 low, Mask64 high)
{
#if defined(__AVX512BW__)
    const auto both = static_cast<__mmask16>(low.bits | high.bits << 8);
    return {_mm512_mask_add_epi32(v.bits, both, v.bits, _mm512_set1_epi32(1))};
#elif defined(__AVX2__)
    const __m256 halves = _mm256_shuffle_ps(_mm256_castpd_ps(low.bits), _mm256_castpd_ps(high.bits), 0x88);
    const __m256i ones = _mm256_permute4x64_epi64(_mm256_castps_si256(halves), 0xD8); // [0 2 1 3]
    return {_mm256_sub_epi32(v.bits, ones)};
#else
    const __m128 halves = _mm_shuffle_ps(_mm_castpd_ps(low.bits), _mm_castpd_ps(high.bits), 0x88);
    return {_mm_sub_epi32(v.bits, _mm_castps_si128(halves))};
#endif
}

#if !defined(__AVX2__)
inline S32 Min(S32 a, S32 b)
{
    const __m128i isLess = _mm_cmplt_epi32(a.bits, b.bits);
    return {_mm_or_si128(_mm_and_si128(isLess, a.bits), _mm_andnot_si128(isLess, b.bits))};
}
#endif

/// The first or the last lane, in all lanes.
template <bool last>
inline S32 SplatEnd(S32 v)
{
#if defined(__AVX512BW__)
    if constexpr (last) return {_mm512_permutexvar_epi32(_mm512_set1_epi32(kLanes32 - 1), v.bits)};
    return {_mm512_broadcastd_epi32(_mm512_castsi512_si128(v.bits))};
#elif defined(__AVX2__)
    if constexpr (last) return {_mm256_permutevar8x32_epi32(v.bits, _mm256_set1_epi32(kLanes32 - 1))};
    return {_mm256_broadcastd_epi32(_mm256_castsi256_si128(v.bits))};
#else
    return Shuffle32 < last ? 0xFF : 0x00 > (v);
#endif
}

inline std::int32_t FirstLane(S32 v)
{
#if defined(__AVX512BW__)
    return _mm_cvtsi128_si32(_mm512_castsi512_si128(v.bits));
#elif defined(__AVX2__)
    return _mm_cvtsi128_si32(_mm256_castsi256_si128(v.bits));
#else
    return _mm_cvtsi128_si32(v.bits);
#endif
}

/// The lanes of a table at places of 0 to kLanes32 - 1.
inline U8 LookUp(const std::uint32_t* table, S32 places)
{
    const U8 window = Load(reinterpret_cast<const std::uint8_t*>(table));
#if defined(__AVX512BW__)
    return {_mm512_permutexvar_epi32(places.bits, window.bits)};
#elif defined(__AVX2__)
    return {_mm256_permutevar8x32_epi32(window.bits, places.bits)};
#else
    std::uint32_t lanes[kLanes32];
    std::int32_t at[kLanes32];
    Store(reinterpret_cast<std::uint8_t*>(lanes), window);
    Store(reinterpret_cast<std::uint8_t*>(at), {places.bits});
    return {_mm_setr_epi32(static_cast<int>(lanes[at[0]]), static_cast<int>(lanes[at[1]]),
                           static_cast<int>(lanes[at[2]]), static_cast<int>(lanes[at[3]]))};
#endif
}

} // namespace
} // namespace vfil

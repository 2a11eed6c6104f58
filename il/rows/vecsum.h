/// \file
/// Vectors that sums of rows are made of: interleaved samples, widening loads, running sums. Included by
/// *_simd.cpp sources alone, as vec.h is.
#pragma once

#include "il/rows/vecmove.h"

namespace vfil {
namespace {

/// Asks for bytes that will be loaded soon.
template <std::size_t bytes>
inline void FetchAhead(const void* p)
{
    constexpr std::size_t kLineBytes = 64;
    for (std::size_t at = 0; at < bytes; at += kLineBytes)
        _mm_prefetch(static_cast<const char*>(p) + at, _MM_HINT_T0);
}

inline U16 LoadSamples(const std::int16_t* p)
{
    return {Load(reinterpret_cast<const std::uint8_t*>(p)).bits};
}

inline S32 LoadLanes(const void* p)
{
    return {Load(static_cast<const std::uint8_t*>(p)).bits};
}

inline void StoreLanes(void* p, S32 v)
{
    Store(static_cast<std::uint8_t*>(p), {v.bits});
}

/// kLanes32 signed samples.
inline S32 LoadWidened(const std::int16_t* p)
{
#if defined(__AVX512BW__)
    return {_mm512_cvtepi16_epi32(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)))};
#elif defined(__AVX2__)
    return {_mm256_cvtepi16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
#else
    return ShiftDown<16>(
        S32{_mm_unpacklo_epi16(Register{}, _mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)))});
#endif
}

// Each 128 bits by themselves: the values of their lower, or upper, halves in turn.

inline U8 InterleaveLow(U8 a, U8 b)
{
    return {VFIL_MM(unpacklo_epi8)(a.bits, b.bits)};
}

inline U8 InterleaveHigh(U8 a, U8 b)
{
    return {VFIL_MM(unpackhi_epi8)(a.bits, b.bits)};
}

inline S32 InterleaveLow(U16 a, U16 b)
{
    return {VFIL_MM(unpacklo_epi16)(a.bits, b.bits)};
}

inline S32 InterleaveHigh(U16 a, U16 b)
{
    return {VFIL_MM(unpackhi_epi16)(a.bits, b.bits)};
}

/// Each lane moved to the place `count` above its own, of at most four; zeros come in.
template <int count>
inline S32 MoveLanesUp(S32 v)
{
#if defined(__AVX512BW__)
    return {_mm512_alignr_epi32(v.bits, Register{}, 16 - count)};
#elif defined(__AVX2__)
    const Register below = _mm256_permute2x128_si256(v.bits, v.bits, 0x08); // [0 v.low]
    if constexpr (count == 4)
        return {below};
    else
        return {_mm256_alignr_epi8(v.bits, below, 16 - 4 * count)};
#else
    if constexpr (count == 4)
        return {Register{}};
    else
        return {_mm_slli_si128(v.bits, 4 * count)};
#endif
}

/// The last `count` lanes, one or four, in all places.
template <int count>
inline S32 SplatLastLanes(S32 v)
{
#if defined(__AVX512BW__)
    if constexpr (count == 4)
        return {_mm512_shuffle_i32x4(v.bits, v.bits, 0xFF)};
    else
        return {_mm512_permutexvar_epi32(_mm512_set1_epi32(15), v.bits)};
#elif defined(__AVX2__)
    if constexpr (count == 4)
        return {_mm256_permute2x128_si256(v.bits, v.bits, 0x11)};
    else
        return {_mm256_permutevar8x32_epi32(v.bits, _mm256_set1_epi32(7))};
#else
    if constexpr (count == 4)
        return v;
    else
        return {_mm_shuffle_epi32(v.bits, 0xFF)};
#endif
}

/// The upper 32 bits of the unsigned products, rounded to nearest.
inline S32 MulHighRounded(S32 a, S32 b)
{
    const Register half = SplatU64(0x80000000).bits;
    const Register even = VFIL_MM(add_epi64)(VFIL_MM(mul_epu32)(a.bits, b.bits), half);
    const Register odd =
        VFIL_MM(add_epi64)(VFIL_MM(mul_epu32)(VFIL_MM(srli_epi64)(a.bits, 32), b.bits), half);
    return Alternate({VFIL_MM(srli_epi64)(even, 32)}, {odd});
}

} // namespace
} // namespace vfil

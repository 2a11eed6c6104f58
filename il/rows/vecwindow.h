/// \file
/// Entries of a table that lie within a vector of it, and roots of floats. Included by *_simd.cpp sources
/// alone, as vec.h is.
#pragma once

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

#if defined(__AVX2__)
/// Pixels of a size in a vector, by their place in a vector of them.
template <class Pixel>
struct Window;

template <>
struct Window<std::uint32_t> {
    static constexpr std::size_t kPixels = kLanes32;

    /// The places of pixels from an index on; false when one is not in a vector that begins there.
    bool Set(const std::int32_t* indices, std::int32_t from)
    {
        m_places = VFIL_MM(sub_epi32)(VFIL_BITS(loadu)(reinterpret_cast<const Register*>(indices)),
                                      Splat32(from).bits);
#if defined(__AVX512BW__)
        return _mm512_test_epi32_mask(m_places, Splat32(-16).bits) == 0;
#else
        return _mm256_testz_si256(m_places, Splat32(-8).bits) != 0;
#endif
    }
    U8 LookUp(U8 window) const
    {
#if defined(__AVX512BW__)
        return {_mm512_permutexvar_epi32(m_places, window.bits)};
#else
        return {_mm256_permutevar8x32_epi32(window.bits, m_places)};
#endif
    }

private:
    Register m_places;
};

template <>
struct Window<std::uint64_t> {
    static constexpr std::size_t kPixels = kLanes64;

    bool Set(const std::int32_t* indices, std::int32_t from)
    {
#if defined(__AVX512BW__)
        m_places = _mm512_cvtepi32_epi64(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(indices)));
        m_places = _mm512_sub_epi64(m_places, _mm512_set1_epi64(from));
        return _mm512_test_epi64_mask(m_places, _mm512_set1_epi64(-8)) == 0;
#else
        m_places = _mm256_cvtepi32_epi64(_mm_loadu_si128(reinterpret_cast<const __m128i*>(indices)));
        m_places = _mm256_sub_epi64(m_places, _mm256_set1_epi64x(from));
        return _mm256_testz_si256(m_places, _mm256_set1_epi64x(-4)) != 0;
#endif
    }
    U8 LookUp(U8 window) const
    {
#if defined(__AVX512BW__)
        return {_mm512_permutexvar_epi64(m_places, window.bits)};
#else
        const __m256i low = _mm256_slli_epi64(m_places, 1); // halves of a pixel: [2p 2p + 1]
        const __m256i high = _mm256_slli_epi64(low, 32);
        const __m256i halves = _mm256_add_epi32(_mm256_or_si256(low, high), _mm256_set1_epi64x(1LL << 32));
        return {_mm256_permutevar8x32_epi32(window.bits, halves)};
#endif
    }

private:
    Register m_places;
};
#endif

} // namespace
} // namespace vfil

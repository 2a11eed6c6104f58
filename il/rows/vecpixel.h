/// \file
/// The four channels of a pixel as doubles, and samples of several pixels side by side. Included by
/// *_simd.cpp sources alone, as vec.h is.
#pragma once

#include "il/rows/vec64.h"

namespace vfil {
namespace {

/// Four doubles, whatever the length of the level's vectors.
struct Channels {
#if defined(__AVX2__)
    __m256d v;
#else
    __m128d low, high;
#endif
};

inline Channels LoadChannels(const double* p)
{
#if defined(__AVX2__)
    return {_mm256_loadu_pd(p)};
#else
    return {_mm_loadu_pd(p), _mm_loadu_pd(p + 2)};
#endif
}

inline void StoreChannels(double* p, Channels v)
{
#if defined(__AVX2__)
    _mm256_storeu_pd(p, v.v);
#else
    _mm_storeu_pd(p, v.low);
    _mm_storeu_pd(p + 2, v.high);
#endif
}

/// The samples of four 32-bit lanes.
inline Channels ToChannels(__m128i samples)
{
#if defined(__AVX2__)
    return {_mm256_cvtepi32_pd(samples)};
#else
    return {_mm_cvtepi32_pd(samples), _mm_cvtepi32_pd(_mm_shuffle_epi32(samples, 0xEE))};
#endif
}

inline Channels LoadChannels(const std::uint8_t* p)
{
    std::int32_t pixel;
    std::memcpy(&pixel, p, sizeof pixel);
#if defined(__AVX2__)
    return ToChannels(_mm_cvtepu8_epi32(_mm_cvtsi32_si128(pixel)));
#else
    const __m128i zero{};
    return ToChannels(_mm_unpacklo_epi16(_mm_unpacklo_epi8(_mm_cvtsi32_si128(pixel), zero), zero));
#endif
}

inline Channels LoadChannels(const std::uint16_t* p)
{
    return ToChannels(_mm_unpacklo_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), __m128i{}));
}

/// The sum and the product of each channel and one number.
inline Channels AddScaled(Channels sum, Channels pixel, double by)
{
#if defined(__AVX2__)
    return {_mm256_add_pd(sum.v, _mm256_mul_pd(pixel.v, _mm256_set1_pd(by)))};
#else
    const __m128d factor = _mm_set1_pd(by);
    return {_mm_add_pd(sum.low, _mm_mul_pd(pixel.low, factor)),
            _mm_add_pd(sum.high, _mm_mul_pd(pixel.high, factor))};
#endif
}

/// Whole numbers, one a lane.
inline F64 ToDoubles(const std::int32_t (&values)[kLanes64])
{
#if defined(__AVX512BW__)
    return {_mm512_cvtepi32_pd(_mm256_setr_epi32(values[0], values[1], values[2], values[3], values[4],
                                                 values[5], values[6], values[7]))};
#elif defined(__AVX2__)
    return {_mm256_cvtepi32_pd(_mm_setr_epi32(values[0], values[1], values[2], values[3]))};
#else
    return {_mm_cvtepi32_pd(_mm_setr_epi32(values[0], values[1], 0, 0))};
#endif
}

/// Doubles of less than 2 to the power of 31, or minus that, without their fraction.
inline void StoreWhole(std::int32_t (&values)[kLanes64], F64 v)
{
#if defined(__AVX512BW__)
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(values), _mm512_cvttpd_epi32(v.v));
#elif defined(__AVX2__)
    _mm_storeu_si128(reinterpret_cast<__m128i*>(values), _mm256_cvttpd_epi32(v.v));
#else
    _mm_storel_epi64(reinterpret_cast<__m128i*>(values), _mm_cvttpd_epi32(v.v));
#endif
}

} // namespace
} // namespace vfil

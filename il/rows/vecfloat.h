/// \file
/// Vectors of floats, and the way between them and samples. Included by *_simd.cpp sources alone, as vec.h
/// is.
#pragma once

#include "il/rows/vec64.h"
#include "il/rows/vecmove.h"

namespace vfil {
namespace {

#if defined(__AVX512BW__)
using FloatRegister = __m512;
#elif defined(__AVX2__)
using FloatRegister = __m256;
#else
using FloatRegister = __m128;
#endif

/// A vector of kLanes32 floats.
struct F32 {
    FloatRegister v;
};

inline F32 SplatFloat(float v)
{
    return {VFIL_MM(set1_ps)(v)};
}

inline F32 operator+(F32 a, F32 b)
{
    return {VFIL_MM(add_ps)(a.v, b.v)};
}

inline F32 operator-(F32 a, F32 b)
{
    return {VFIL_MM(sub_ps)(a.v, b.v)};
}

inline F32 operator*(F32 a, F32 b)
{
    return {VFIL_MM(mul_ps)(a.v, b.v)};
}

inline F32 operator/(F32 a, F32 b)
{
    return {VFIL_MM(div_ps)(a.v, b.v)};
}

/// b where a is NaN.
inline F32 Max(F32 a, F32 b)
{
    return {VFIL_MM(max_ps)(a.v, b.v)};
}

inline F32 Min(F32 a, F32 b)
{
    return {VFIL_MM(min_ps)(a.v, b.v)};
}

/// A bit for each lane of a that is less than b's, the first one lowest. None for NaN.
inline unsigned BitsWhereLess(F32 a, F32 b)
{
#if defined(__AVX512BW__)
    return _mm512_cmp_ps_mask(a.v, b.v, _CMP_LT_OQ);
#elif defined(__AVX2__)
    return static_cast<unsigned>(_mm256_movemask_ps(_mm256_cmp_ps(a.v, b.v, _CMP_LT_OQ)));
#else
    return static_cast<unsigned>(_mm_movemask_ps(_mm_cmplt_ps(a.v, b.v)));
#endif
}

inline F32 ToFloat(S32 v)
{
    return {VFIL_MM(cvtepi32_ps)(v.bits)};
}

inline F32 LoadFloats(const float* p)
{
    return {VFIL_MM(loadu_ps)(p)};
}

inline F32 LoadFloats(const std::uint8_t* p)
{
    return {VFIL_MM(cvtepi32_ps)(LoadEachAs32(p).bits)};
}

inline F32 LoadFloats(const std::uint16_t* p)
{
    return {VFIL_MM(cvtepi32_ps)(LoadPairsAs32(reinterpret_cast<const std::uint8_t*>(p)).bits)};
}

inline void StoreFloats(float* p, F32 v)
{
    VFIL_MM(storeu_ps)(p, v.v);
}

/// Limited to 0 .. full and truncated; 0 for NaN.
inline S32 ToWhole(F32 v, float full)
{
    const FloatRegister positive = VFIL_MM(max_ps)(v.v, SplatFloat(0).v); // the second operand for NaN
    return {VFIL_MM(cvttps_epi32)(VFIL_MM(min_ps)(positive, SplatFloat(full).v))};
}

inline F64 LoadDoubles(const double* p)
{
    return {VFIL_MM(loadu_pd)(p)};
}

inline void StoreDoubles(double* p, F64 v)
{
    VFIL_MM(storeu_pd)(p, v.v);
}

inline F64 LoadAsDoubles(const float* p)
{
#if defined(__AVX512BW__)
    return {_mm512_cvtps_pd(_mm256_loadu_ps(p))};
#elif defined(__AVX2__)
    return {_mm256_cvtps_pd(_mm_loadu_ps(p))};
#else
    return {_mm_cvtps_pd(_mm_castsi128_ps(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))))};
#endif
}

inline F64 LoadAsDoubles(const std::uint8_t* p)
{
#if defined(__AVX512BW__)
    return {_mm512_cvtepi32_pd(_mm256_cvtepu8_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))))};
#elif defined(__AVX2__)
    std::int32_t bytes;
    std::memcpy(&bytes, p, sizeof bytes);
    return {_mm256_cvtepi32_pd(_mm_cvtepu8_epi32(_mm_cvtsi32_si128(bytes)))};
#else
    return {_mm_setr_pd(p[0], p[1])};
#endif
}

inline F64 LoadAsDoubles(const std::uint16_t* p)
{
#if defined(__AVX512BW__)
    return {_mm512_cvtepi32_pd(_mm256_cvtepu16_epi32(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))))};
#elif defined(__AVX2__)
    return {_mm256_cvtepi32_pd(_mm_cvtepu16_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p))))};
#else
    return {_mm_setr_pd(p[0], p[1])};
#endif
}

/// Rounded to nearest.
inline void StoreAsFloats(float* p, F64 v)
{
#if defined(__AVX512BW__)
    _mm256_storeu_ps(p, _mm512_cvtpd_ps(v.v));
#elif defined(__AVX2__)
    _mm_storeu_ps(p, _mm256_cvtpd_ps(v.v));
#else
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_castps_si128(_mm_cvtpd_ps(v.v)));
#endif
}

} // namespace
} // namespace vfil

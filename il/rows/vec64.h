/// \file
/// Vectors of doubles, and of pixels of four samples in 64 bits. Included by *_simd.cpp sources alone, as
/// vec.h is.
#pragma once

#include "il/rows/vec.h"

namespace vfil {
namespace {

#if defined(__AVX512BW__)
using DoubleRegister = __m512d;
using MaskRegister = __mmask8;
#elif defined(__AVX2__)
using DoubleRegister = __m256d;
using MaskRegister = __m256d;
#else
using DoubleRegister = __m128d;
using MaskRegister = __m128d;
#endif

/// A vector of doubles.
struct F64 {
    DoubleRegister v;
};

/// A truth value a double.
struct Mask64 {
    MaskRegister bits;
};

/// A vector of pixels: four 16-bit samples in each 64 bits, or four bytes in the lower half of them.
struct Pixels64 {
    Register bits;
};

/// Doubles, or pixels, in a vector.
constexpr std::size_t kLanes64 = kBytes / 8;

inline F64 SplatDouble(double v)
{
    return {VFIL_MM(set1_pd)(v)};
}

inline F64 operator+(F64 a, F64 b)
{
    return {VFIL_MM(add_pd)(a.v, b.v)};
}

inline F64 operator-(F64 a, F64 b)
{
    return {VFIL_MM(sub_pd)(a.v, b.v)};
}

inline F64 operator*(F64 a, F64 b)
{
    return {VFIL_MM(mul_pd)(a.v, b.v)};
}

inline F64 operator/(F64 a, F64 b)
{
    return {VFIL_MM(div_pd)(a.v, b.v)};
}

/// b where a is NaN.
inline F64 Max(F64 a, F64 b)
{
    return {VFIL_MM(max_pd)(a.v, b.v)};
}

inline F64 Min(F64 a, F64 b)
{
    return {VFIL_MM(min_pd)(a.v, b.v)};
}

/// False for NaN, as is operator==.
inline Mask64 operator<(F64 a, F64 b)
{
#if defined(__AVX512BW__)
    return {_mm512_cmp_pd_mask(a.v, b.v, _CMP_LT_OQ)};
#elif defined(__AVX2__)
    return {_mm256_cmp_pd(a.v, b.v, _CMP_LT_OQ)};
#else
    return {_mm_cmplt_pd(a.v, b.v)};
#endif
}

inline Mask64 operator==(F64 a, F64 b)
{
#if defined(__AVX512BW__)
    return {_mm512_cmp_pd_mask(a.v, b.v, _CMP_EQ_OQ)};
#elif defined(__AVX2__)
    return {_mm256_cmp_pd(a.v, b.v, _CMP_EQ_OQ)};
#else
    return {_mm_cmpeq_pd(a.v, b.v)};
#endif
}

inline Mask64 operator^(Mask64 a, Mask64 b)
{
#if defined(__AVX512BW__)
    return {_kxor_mask8(a.bits, b.bits)};
#else
    return {VFIL_MM(xor_pd)(a.bits, b.bits)};
#endif
}

inline bool AnyOf(Mask64 mask)
{
#if defined(__AVX512BW__)
    return mask.bits != 0;
#else
    return VFIL_MM(movemask_pd)(mask.bits) != 0;
#endif
}

/// a where the mask is true, else b.
inline F64 Select(Mask64 mask, F64 a, F64 b)
{
#if defined(__AVX512BW__)
    return {_mm512_mask_blend_pd(mask.bits, b.v, a.v)};
#elif defined(__AVX2__)
    return {_mm256_blendv_pd(b.v, a.v, mask.bits)};
#else
    return {_mm_or_pd(_mm_and_pd(mask.bits, a.v), _mm_andnot_pd(mask.bits, b.v))};
#endif
}

inline Pixels64 LoadPixels(const std::uint16_t* p)
{
    return {Load(reinterpret_cast<const std::uint8_t*>(p)).bits};
}

inline Pixels64 LoadPixels(const std::uint8_t* p)
{
#if defined(__AVX512BW__)
    return {_mm512_cvtepu32_epi64(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)))};
#elif defined(__AVX2__)
    return {_mm256_cvtepu32_epi64(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
#else
    return {_mm_unpacklo_epi32(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)), __m128i{})};
#endif
}

inline void StorePixels(std::uint16_t* p, Pixels64 v)
{
    Store(reinterpret_cast<std::uint8_t*>(p), {v.bits});
}

inline void StorePixels(std::uint8_t* p, Pixels64 v)
{
#if defined(__AVX512BW__)
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm512_cvtepi64_epi32(v.bits));
#elif defined(__AVX2__)
    const __m256i lowHalves = _mm256_permutevar8x32_epi32(v.bits, _mm256_setr_epi32(0, 2, 4, 6, 0, 2, 4, 6));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(lowHalves));
#else
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_shuffle_epi32(v.bits, 0x08));
#endif
}

inline Pixels64 operator|(Pixels64 a, Pixels64 b)
{
    return {VFIL_BITS(or)(a.bits, b.bits)};
}

inline Pixels64 operator&(Pixels64 a, Pixels64 b)
{
    return {VFIL_BITS(and)(a.bits, b.bits)};
}

/// Each pixel moved up by bits.
template <int count>
inline Pixels64 ShiftUp(Pixels64 v)
{
    return {VFIL_MM(slli_epi64)(v.bits, count)};
}

/// Each pixel moved down by bits; zeros come in.
template <int count>
inline Pixels64 ShiftDown(Pixels64 v)
{
    return {VFIL_MM(srli_epi64)(v.bits, count)};
}

/// Whole numbers below 2 to the power of 52 as doubles: put into the fraction of that power, and the power
/// taken off again.
inline F64 ToDouble(Pixels64 v)
{
    const Register power = SplatU64(0x4330'0000'0000'0000).bits;
    const Register sum = VFIL_BITS(or)(v.bits, power);
#if defined(__AVX512BW__)
    return F64{_mm512_castsi512_pd(sum)} - SplatDouble(0x1p52);
#elif defined(__AVX2__)
    return F64{_mm256_castsi256_pd(sum)} - SplatDouble(0x1p52);
#else
    return F64{_mm_castsi128_pd(sum)} - SplatDouble(0x1p52);
#endif
}

/// Doubles of 0 to less than 2 to the power of 31, without their fraction.
inline Pixels64 ToWhole(F64 v)
{
#if defined(__AVX512BW__)
    return {_mm512_cvttpd_epi64(v.v)};
#elif defined(__AVX2__)
    return {_mm256_cvtepu32_epi64(_mm256_cvttpd_epi32(v.v))};
#else
    return {_mm_unpacklo_epi32(_mm_cvttpd_epi32(v.v), __m128i{})};
#endif
}

/// The lower or the upper signed 32-bit lanes of a vector, as doubles.
template <int half>
inline F64 HalfToDouble(Register v)
{
#if defined(__AVX512BW__)
    return {_mm512_cvtepi32_pd(_mm512_extracti64x4_epi64(v, half))};
#elif defined(__AVX2__)
    return {_mm256_cvtepi32_pd(_mm256_extracti128_si256(v, half))};
#else
    return {_mm_cvtepi32_pd(_mm_shuffle_epi32(v, half == 0 ? 0x44 : 0xEE))};
#endif
}

/// Doubles of less than 2 to the power of 31, or minus that, without their fraction, as 32-bit lanes.
inline Register HalvesToInt32(F64 low, F64 high)
{
#if defined(__AVX512BW__)
    return _mm512_inserti64x4(_mm512_castsi256_si512(_mm512_cvttpd_epi32(low.v)), _mm512_cvttpd_epi32(high.v),
                              1);
#elif defined(__AVX2__)
    return _mm256_inserti128_si256(_mm256_castsi128_si256(_mm256_cvttpd_epi32(low.v)),
                                   _mm256_cvttpd_epi32(high.v), 1);
#else
    return _mm_unpacklo_epi64(_mm_cvttpd_epi32(low.v), _mm_cvttpd_epi32(high.v));
#endif
}

} // namespace
} // namespace vfil

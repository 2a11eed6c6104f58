/// \file
/// Lanes chosen by comparisons. Included by *_simd.cpp sources alone, as vec.h is.
#pragma once

#include "il/rows/vec32.h"

namespace vfil {
namespace {

#if defined(__AVX512BW__)
/// A truth value for each lane of so many bits.
struct Where8 {
    __mmask64 bits;
};
struct Where16 {
    __mmask32 bits;
};
struct Where32 {
    __mmask16 bits;
};

inline Where8 Equal(U8 a, U8 b)
{
    return {_mm512_cmpeq_epi8_mask(a.bits, b.bits)};
}

inline Where16 Equal(U16 a, U16 b)
{
    return {_mm512_cmpeq_epi16_mask(a.bits, b.bits)};
}

/// Of signed lanes.
inline Where16 Greater(U16 a, U16 b)
{
    return {_mm512_cmpgt_epi16_mask(a.bits, b.bits)};
}

inline Where32 Greater(S32 a, S32 b)
{
    return {_mm512_cmpgt_epi32_mask(a.bits, b.bits)};
}

/// A bit a byte, the first one lowest.
inline std::uint64_t BitsOf(Where8 where)
{
    return where.bits;
}

inline U8 Select(Where8 where, U8 there, U8 elsewhere)
{
    return {_mm512_mask_blend_epi8(where.bits, elsewhere.bits, there.bits)};
}

inline U16 Select(Where16 where, U16 there, U16 elsewhere)
{
    return {_mm512_mask_blend_epi16(where.bits, elsewhere.bits, there.bits)};
}

template <class V>
V Select(Where32 where, V there, V elsewhere)
{
    return {_mm512_mask_blend_epi32(where.bits, elsewhere.bits, there.bits)};
}
#else
/// All ones or none in each lane.
struct Where {
    Register bits;
};

inline Where Equal(U8 a, U8 b)
{
    return {VFIL_MM(cmpeq_epi8)(a.bits, b.bits)};
}

inline Where Equal(U16 a, U16 b)
{
    return {VFIL_MM(cmpeq_epi16)(a.bits, b.bits)};
}

/// Of signed lanes.
inline Where Greater(U16 a, U16 b)
{
    return {VFIL_MM(cmpgt_epi16)(a.bits, b.bits)};
}

inline Where Greater(S32 a, S32 b)
{
    return {VFIL_MM(cmpgt_epi32)(a.bits, b.bits)};
}

/// A bit a byte, the first one lowest.
inline std::uint64_t BitsOf(Where where)
{
    return static_cast<std::uint32_t>(VFIL_MM(movemask_epi8)(where.bits));
}

template <class V>
V Select(Where where, V there, V elsewhere)
{
#if defined(__AVX2__)
    return {_mm256_blendv_epi8(elsewhere.bits, there.bits, where.bits)};
#else
    return {
        _mm_or_si128(_mm_and_si128(where.bits, there.bits), _mm_andnot_si128(where.bits, elsewhere.bits))};
#endif
}
#endif

/// True when no bit is set.
inline bool IsZero(U16 v)
{
#if defined(__AVX512BW__)
    return _mm512_test_epi64_mask(v.bits, v.bits) == 0;
#elif defined(__AVX2__)
    return _mm256_testz_si256(v.bits, v.bits) != 0;
#else
    return _mm_movemask_epi8(_mm_cmpeq_epi8(v.bits, Register{})) == 0xFFFF;
#endif
}

} // namespace
} // namespace vfil

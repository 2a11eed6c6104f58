/// \file
/// Pixels fetched from places anywhere in a picture, and what is made of neighbours. Of the level avx2 alone.
/// Included by *_simd.cpp sources alone, as vec.h is.
#pragma once

#include "il/rows/vecfloat.h"

namespace vfil {
namespace {

#if defined(__AVX2__) && !defined(__AVX512BW__)

/// 128 bits: the pixels of one place, or a sample each of four or eight.
struct Half {
    __m128i bits;
};

inline Half LoadHalf(const void* p)
{
    return {_mm_loadu_si128(static_cast<const __m128i*>(p))};
}

inline void StoreHalf(void* p, Half v)
{
    _mm_storeu_si128(static_cast<__m128i*>(p), v.bits);
}

inline void StoreQuarter(void* p, Half v)
{
    _mm_storel_epi64(static_cast<__m128i*>(p), v.bits);
}

inline U8 Join(Half low, Half high)
{
    return {_mm256_inserti128_si256(_mm256_castsi128_si256(low.bits), high.bits, 1)};
}

inline Half LowHalf(U8 v)
{
    return {_mm256_castsi256_si128(v.bits)};
}

inline Half HighHalf(U8 v)
{
    return {_mm256_extracti128_si256(v.bits, 1)};
}

/// 8 bytes from each of four places.
inline U8 LoadFour64(const std::uint8_t* base, const std::uint32_t* offsets)
{
    const auto two = [base](std::uint32_t low, std::uint32_t high) {
        const __m128i first = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(base + low));
        return Half{_mm_castps_si128(
            _mm_loadh_pi(_mm_castsi128_ps(first), reinterpret_cast<const __m64*>(base + high)))};
    };
    return Join(two(offsets[0], offsets[1]), two(offsets[2], offsets[3]));
}

/// 4 bytes from each of four places.
inline Half LoadFour32(const std::uint8_t* base, const std::uint32_t* offsets)
{
    const auto at = [base](std::uint32_t offset) {
        std::int32_t value;
        std::memcpy(&value, base + offset, sizeof value);
        return value;
    };
    return {_mm_setr_epi32(at(offsets[0]), at(offsets[1]), at(offsets[2]), at(offsets[3]))};
}

/// 2 bytes from each of eight places.
inline Half LoadEight16(const std::uint8_t* base, const std::uint32_t* offsets)
{
    const auto at = [base](std::uint32_t offset) {
        std::int16_t value;
        std::memcpy(&value, base + offset, sizeof value);
        return value;
    };
    return {_mm_setr_epi16(at(offsets[0]), at(offsets[1]), at(offsets[2]), at(offsets[3]), at(offsets[4]),
                           at(offsets[5]), at(offsets[6]), at(offsets[7]))};
}

/// The bytes of the lower and of the upper pixel of four bytes in each 64 bits, as 16-bit lanes.
inline U16 LowerPixels(U8 v)
{
    return {Shuffle16(v.bits, 0x8003'8002'8001'8000, 0x800B'800A'8009'8008)};
}

inline U16 UpperPixels(U8 v)
{
    return {Shuffle16(v.bits, 0x8007'8006'8005'8004, 0x800F'800E'800D'800C)};
}

/// Four values of 16 bits, each in all lanes of 64 bits.
inline U16 SplatEach16(const std::uint16_t* p)
{
    std::int64_t four;
    std::memcpy(&four, p, sizeof four);
    const __m256i low = _mm256_set1_epi64x(four);
    const __m256i choice = _mm256_setr_epi64x(0x0100'0100'0100'0100, 0x0302'0302'0302'0302,
                                              0x0504'0504'0504'0504, 0x0706'0706'0706'0706);
    return {_mm256_shuffle_epi8(low, choice)};
}

/// The upper 16 bits of the products of signed lanes.
inline U16 MulHighSigned(U16 a, U16 b)
{
    return {_mm256_mulhi_epi16(a.bits, b.bits)};
}

inline F64 Floor(F64 v)
{
    return {_mm256_floor_pd(v.v)};
}

/// False for NaN.
inline Mask64 AtLeast(F64 a, F64 b)
{
    return {_mm256_cmp_pd(a.v, b.v, _CMP_GE_OQ)};
}

inline Mask64 operator&(Mask64 a, Mask64 b)
{
    return {_mm256_and_pd(a.bits, b.bits)};
}

inline bool AllTrue(Mask64 mask)
{
    return _mm256_movemask_pd(mask.bits) == 0xF;
}

/// A vector of four whole numbers.
struct S64 {
    Register bits;
};

inline S64 Splat64(std::int64_t v)
{
    return {_mm256_set1_epi64x(v)};
}

/// 0, v, 2 v, 3 v.
inline S64 Multiples64(std::int64_t v)
{
    return {_mm256_setr_epi64x(0, v, 2 * v, 3 * v)};
}

inline S64 operator+(S64 a, S64 b)
{
    return {_mm256_add_epi64(a.bits, b.bits)};
}

/// The bits from a place on, of eight numbers, as 32-bit lanes.
template <int from>
inline S32 Bits32From(S64 a, S64 b)
{
    const __m256 low = _mm256_castsi256_ps(_mm256_srli_epi64(a.bits, from));
    const __m256 high = _mm256_castsi256_ps(_mm256_srli_epi64(b.bits, from));
    const __m256i mixed =
        _mm256_castps_si256(_mm256_shuffle_ps(low, high, 0x88)); // [a0 a1 b0 b1 a2 a3 b2 b3]
    return {_mm256_permute4x64_epi64(mixed, 0xD8)};
}

inline void Store32(void* p, S32 v)
{
    Store(static_cast<std::uint8_t*>(p), {v.bits});
}

/// Lanes of 0 .. 65535 to eight values of 16 bits.
inline Half Narrow16(S32 v)
{
    return LowHalf({_mm256_permute4x64_epi64(_mm256_packus_epi32(v.bits, v.bits), 0xD8)});
}

/// Eight words as 32-bit lanes.
inline S32 WidenWords32(const void* p)
{
    return {_mm256_cvtepu16_epi32(_mm_loadu_si128(static_cast<const __m128i*>(p)))};
}

/// Sixteen bytes, each eight as 32-bit lanes.
inline S32Pair WidenBytesPair32(const void* p)
{
    const Register twice = _mm256_broadcastsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(p)));
    const auto pick = [twice](int first) {
        const auto lane = [](int byte) { return static_cast<int>(0x80808000U) + byte; };
        return S32{_mm256_shuffle_epi8(
            twice, _mm256_setr_epi32(lane(first), lane(first + 1), lane(first + 2), lane(first + 3),
                                     lane(first + 4), lane(first + 5), lane(first + 6), lane(first + 7)))};
    };
    return {pick(0), pick(8)};
}

/// The 4 bytes at each of two places as 32-bit lanes.
inline S32 WidenTwo32(const std::uint8_t* a, const std::uint8_t* b)
{
    std::int32_t low;
    std::int32_t high;
    std::memcpy(&low, a, sizeof low);
    std::memcpy(&high, b, sizeof high);
    return {_mm256_cvtepu8_epi32(_mm_insert_epi32(_mm_cvtsi32_si128(low), high, 1))};
}

/// Of four 32-bit values the lower or the upper two, each in all lanes of 128 bits.
template <int half>
inline S32 SplatTwo32(const std::int32_t* p)
{
    const __m256 four = _mm256_broadcast_ps(reinterpret_cast<const __m128*>(p));
    const __m256i choice = _mm256_setr_epi32(2 * half, 2 * half, 2 * half, 2 * half, 2 * half + 1,
                                             2 * half + 1, 2 * half + 1, 2 * half + 1);
    return {_mm256_castps_si256(_mm256_permutevar_ps(four, choice))};
}

/// The sums of four lanes each: those of the lower 128 bits of a, b, c and d, then of the upper ones.
inline S32 SumFours(S32 a, S32 b, S32 c, S32 d)
{
    return {_mm256_hadd_epi32(_mm256_hadd_epi32(a.bits, b.bits), _mm256_hadd_epi32(c.bits, d.bits))};
}

/// The sum of the two halves.
inline Half AddHalves32(S32 v)
{
    return {_mm_add_epi32(_mm256_castsi256_si128(v.bits), _mm256_extracti128_si256(v.bits, 1))};
}

inline Half SplatHalf32(std::int32_t v)
{
    return {_mm_set1_epi32(v)};
}

inline Half Add32(Half a, Half b)
{
    return {_mm_add_epi32(a.bits, b.bits)};
}

/// Keeps the sign.
template <int count>
inline Half ShiftDown32(Half v)
{
    return {_mm_srai_epi32(v.bits, count)};
}

/// Stores lanes i of a, b, c and d beside each other at out + 4 i.
inline void StoreTurned32(std::int32_t* out, S32 a, S32 b, S32 c, S32 d)
{
    const __m256i abLow = _mm256_unpacklo_epi32(a.bits, b.bits);
    const __m256i abHigh = _mm256_unpackhi_epi32(a.bits, b.bits);
    const __m256i cdLow = _mm256_unpacklo_epi32(c.bits, d.bits);
    const __m256i cdHigh = _mm256_unpackhi_epi32(c.bits, d.bits);
    const U8 turned[4] = {{_mm256_unpacklo_epi64(abLow, cdLow)},   // lanes 0 and 4
                          {_mm256_unpackhi_epi64(abLow, cdLow)},   // 1 and 5
                          {_mm256_unpacklo_epi64(abHigh, cdHigh)}, // 2 and 6
                          {_mm256_unpackhi_epi64(abHigh, cdHigh)}};
    for (int i = 0; i < 4; ++i) {
        StoreHalf(out + 4 * i, LowHalf(turned[i]));
        StoreHalf(out + 4 * (i + 4), HighHalf(turned[i]));
    }
}

/// Signed lanes of four vectors of four limited to 0 .. 255.
inline Half NarrowFour(Half a, Half b, Half c, Half d)
{
    return {_mm_packus_epi16(_mm_packs_epi32(a.bits, b.bits), _mm_packs_epi32(c.bits, d.bits))};
}

/// Signed lanes of two vectors of four in turn, limited to 0 .. 255, in the lower 64 bits.
inline Half InterleaveToBytes(Half even, Half odd)
{
    const __m128i words =
        _mm_packs_epi32(_mm_unpacklo_epi32(even.bits, odd.bits), _mm_unpackhi_epi32(even.bits, odd.bits));
    return {_mm_packus_epi16(words, words)};
}

/// Four words as doubles.
inline F64 WidenWords(const void* p)
{
    return {_mm256_cvtepi32_pd(_mm_cvtepu16_epi32(_mm_loadl_epi64(static_cast<const __m128i*>(p))))};
}

/// The lower, or the upper, 16 bits of four 32-bit lanes as doubles.
inline F64 LowerWords(Half v)
{
    return {_mm256_cvtepi32_pd(_mm_and_si128(v.bits, _mm_set1_epi32(0xFFFF)))};
}

inline F64 UpperWords(Half v)
{
    return {_mm256_cvtepi32_pd(_mm_srli_epi32(v.bits, 16))};
}

/// Doubles rounded half away from zero and limited to 0 .. 65535, as four words.
inline Half RoundWords(F64 v)
{
    const F64 limited = Min(Max(v, SplatDouble(0)), SplatDouble(65535));
    const __m128i lanes = _mm256_cvttpd_epi32((limited + SplatDouble(0.5)).v);
    return {_mm_packus_epi32(lanes, lanes)};
}

/// Four rows of four doubles turned into their columns.
inline void Turn(F64 (&v)[4])
{
    const __m256d abLow = _mm256_unpacklo_pd(v[0].v, v[1].v);
    const __m256d abHigh = _mm256_unpackhi_pd(v[0].v, v[1].v);
    const __m256d cdLow = _mm256_unpacklo_pd(v[2].v, v[3].v);
    const __m256d cdHigh = _mm256_unpackhi_pd(v[2].v, v[3].v);
    v[0].v = _mm256_permute2f128_pd(abLow, cdLow, 0x20);
    v[1].v = _mm256_permute2f128_pd(abHigh, cdHigh, 0x20);
    v[2].v = _mm256_permute2f128_pd(abLow, cdLow, 0x31);
    v[3].v = _mm256_permute2f128_pd(abHigh, cdHigh, 0x31);
}

#endif

} // namespace
} // namespace vfil

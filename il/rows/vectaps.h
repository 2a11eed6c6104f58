/// \file
/// Pixels from places of their own, as pairs for products. Included by *_simd.cpp sources alone, as vec.h is.
/// The level avx512 has none of this: its kernels are those of avx2.
#pragma once

#include "il/rows/vec32.h"
#include "il/rows/vec64.h"

namespace vfil {
namespace {

#if !defined(__AVX512BW__)

/// A double in all lanes.
template <int lane>
inline F64 SplatDoubleOf(F64 v)
{
#if defined(__AVX2__)
    return {_mm256_permute4x64_pd(v.v, lane * 0x55)};
#else
    return {_mm_shuffle_pd(v.v, v.v, lane * 3)};
#endif
}

/// Outputs whose pixels share a vector: one in each 128 bits.
constexpr std::size_t kTapLanes = kBytes / 16;

/// 16 bytes at each of the addresses, one in each 128 bits. The second address counts at avx2 alone.
inline Register LoadSixteens(const void* low, [[maybe_unused]] const void* high)
{
    const __m128i first = _mm_loadu_si128(static_cast<const __m128i*>(low));
#if defined(__AVX2__)
    const __m256i second = _mm256_broadcastsi128_si256(_mm_loadu_si128(static_cast<const __m128i*>(high)));
    return _mm256_blend_epi32(_mm256_castsi128_si256(first), second, 0xF0);
#else
    return first;
#endif
}

/// 8 bytes at each of the addresses, in the lower half of each 128 bits; the upper ones are undefined.
inline Register LoadEights(const void* low, [[maybe_unused]] const void* high)
{
    const __m128i first = _mm_loadl_epi64(static_cast<const __m128i*>(low));
#if defined(__AVX2__)
    const __m256i second = _mm256_broadcastq_epi64(_mm_loadl_epi64(static_cast<const __m128i*>(high)));
    return _mm256_blend_epi32(_mm256_castsi128_si256(first), second, 0xF0);
#else
    return first;
#endif
}

/// Of two pixels of four bytes in the lower, or upper, half of each 128 bits: the channels of both, side by
/// side, as 16-bit lanes.
template <bool upper>
inline S32 PairChannels8(Register v)
{
#if defined(__AVX2__)
    constexpr std::uint64_t kLow = 0x8005'8001'8004'8000;
    constexpr std::uint64_t kHigh = 0x8007'8003'8006'8002;
    constexpr std::uint64_t kUp = upper ? 0x0008'0008'0008'0008 : 0;
    return {Shuffle16(v, kLow + kUp, kHigh + kUp)};
#else
    const Register pixels = upper ? _mm_srli_si128(v, 8) : v;
    return {_mm_unpacklo_epi8(_mm_unpacklo_epi8(pixels, _mm_srli_si128(pixels, 4)), Register{})};
#endif
}

/// The same of two pixels of four words in each 128 bits.
inline S32 PairChannels16(Register v)
{
#if defined(__AVX2__)
    return {Shuffle16(v, 0x0B0A'0302'0908'0100, 0x0F0E'0706'0D0C'0504)};
#else
    return {_mm_unpacklo_epi16(v, _mm_srli_si128(v, 8))};
#endif
}

/// 4 bytes at each index, which counts units of so many bytes. Of neighbours, which lie in 16 bytes for each
/// four indices, these are loaded and shuffled.
template <int unit>
inline S32 GatherFours(const void* base, const std::int32_t* indices)
{
#if defined(__AVX2__)
    const Register at = Load(reinterpret_cast<const std::uint8_t*>(indices)).bits;
    const Register low = _mm256_min_epi32(_mm256_shuffle_epi32(at, 0x00), _mm256_shuffle_epi32(at, 0xFF));
    const Register distance = _mm256_sub_epi32(at, low);
    const Register most = _mm256_set1_epi32(12 / unit);
    if (_mm256_movemask_epi8(_mm256_cmpeq_epi32(_mm256_max_epu32(distance, most), most)) != -1)
        return {_mm256_i32gather_epi32(static_cast<const int*>(base), at, unit)};
    const auto bytesAt = [=](std::int32_t a, std::int32_t b) {
        return static_cast<const std::uint8_t*>(base) + std::ptrdiff_t{a < b ? a : b} * unit;
    };
    const Register bytes = LoadSixteens(bytesAt(indices[0], indices[3]), bytesAt(indices[4], indices[7]));
    const Register first =
        SplatLowBytes(U8{_mm256_slli_epi32(distance, unit - 1)}).bits; // of units of 1 and 2
    return {_mm256_shuffle_epi8(bytes, _mm256_add_epi8(first, _mm256_set1_epi32(0x03020100)))};
#else
    std::int32_t values[kLanes32];
    for (std::size_t i = 0; i < kLanes32; ++i)
        std::memcpy(values + i, static_cast<const std::uint8_t*>(base) + std::ptrdiff_t{indices[i]} * unit,
                    4);
    return {Load(reinterpret_cast<const std::uint8_t*>(values)).bits};
#endif
}

/// Two lower bytes, or two upper ones, of each 32 bits as its 16-bit lanes.
template <bool upper>
inline S32 PairBytes(S32 v)
{
    if constexpr (upper) v = ShiftDownBits<16>(v);
    return (v & Splat32(0xFF)) | (ShiftUp<8>(v) & Splat32(0x00FF0000));
}

/// The upper 16 bits of the products of signed lanes.
inline U16 MulHighSigned(U16 a, U16 b)
{
    return {VFIL_MM(mulhi_epi16)(a.bits, b.bits)};
}

/// The first pixels of outputs, and the second ones.
struct PixelPairs {
    Register first, second;
};

#if defined(__AVX2__)
/// Pixels of four bytes at 8 places, and the ones behind them, where all lie in the 8 pixels that begin with
/// the lowest of the first and the last place. False where they don't.
inline bool LoadNearPairs(const std::uint8_t* line, const std::int32_t* starts, PixelPairs& pairs)
{
    const std::int32_t low = starts[0] < starts[7] ? starts[0] : starts[7];
    const Register places = Load(reinterpret_cast<const std::uint8_t*>(starts)).bits;
    const Register first = _mm256_sub_epi32(places, _mm256_set1_epi32(low));
    const Register second = _mm256_add_epi32(first, _mm256_set1_epi32(1));
    if (_mm256_testz_si256(_mm256_or_si256(first, second), _mm256_set1_epi32(~7)) == 0) return false;
    const Register pixels = Load(line + 4 * std::ptrdiff_t{low}).bits;
    pairs = {_mm256_permutevar8x32_epi32(pixels, first), _mm256_permutevar8x32_epi32(pixels, second)};
    return true;
}
#endif

/// Each of the lower, or the upper, two 32-bit lanes of each 128 bits twice.
inline U16 TwiceLow32(S32 v)
{
    return {VFIL_MM(unpacklo_epi32)(v.bits, v.bits)};
}

inline U16 TwiceHigh32(S32 v)
{
    return {VFIL_MM(unpackhi_epi32)(v.bits, v.bits)};
}

/// Of four vectors whose lower halves of each 128 bits hold two 32-bit values: the first ones, and the second
/// ones, in the order of the vectors.
inline PixelPairs SplitHalves(Register a, Register b, Register c, Register d)
{
    const Register low = VFIL_MM(unpacklo_epi32)(a, b);
    const Register high = VFIL_MM(unpacklo_epi32)(c, d);
    return {VFIL_MM(unpacklo_epi64)(low, high), VFIL_MM(unpackhi_epi64)(low, high)};
}

/// The vectors' lower 128 bits, then their upper ones.
inline void StoreLanesInTurn(void* p, U16 a, U16 b)
{
    auto* const out = static_cast<std::uint8_t*>(p);
#if defined(__AVX2__)
    Store(out, {_mm256_permute2x128_si256(a.bits, b.bits, 0x20)});
    Store(out + kBytes, {_mm256_permute2x128_si256(a.bits, b.bits, 0x31)});
#else
    Store(out, {a.bits});
    Store(out + kBytes, {b.bits});
#endif
}

#endif

} // namespace
} // namespace vfil

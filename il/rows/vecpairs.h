/// \file
/// Pixels of four samples as pairs of them, for products, and the way back. Included by *_simd.cpp sources
/// alone, as vec.h is.
#pragma once

#include "il/rows/vecselect.h"
#include "il/rows/vecsum.h"

namespace vfil {
namespace {

#if defined(__AVX2__)

/// Two vectors' lanes of even and of odd places: in each 128 bits two of the first, then two of the second.
struct SplitLanes {
    S32 even, odd;
};

inline SplitLanes Split(U8 first, U8 second)
{
#if defined(__AVX512BW__)
    const __m512 a = _mm512_castsi512_ps(first.bits);
    const __m512 b = _mm512_castsi512_ps(second.bits);
    return {{_mm512_castps_si512(_mm512_shuffle_ps(a, b, 0x88))},
            {_mm512_castps_si512(_mm512_shuffle_ps(a, b, 0xDD))}};
#else
    const __m256 a = _mm256_castsi256_ps(first.bits);
    const __m256 b = _mm256_castsi256_ps(second.bits);
    return {{_mm256_castps_si256(_mm256_shuffle_ps(a, b, 0x88))},
            {_mm256_castps_si256(_mm256_shuffle_ps(a, b, 0xDD))}};
#endif
}

/// What Split takes apart.
inline U8Pair Merge(SplitLanes v)
{
    return {{VFIL_MM(unpacklo_epi32)(v.even.bits, v.odd.bits)},
            {VFIL_MM(unpackhi_epi32)(v.even.bits, v.odd.bits)}};
}

/// Lanes limited to 0 .. 65535: each of the first vector in the lower half of 32 bits, with that of the
/// second in the upper one.
inline S32 PackFullBeside(S32 low, S32 high)
{
    const U16 fours = NarrowFull({low, high}); // four of low, four of high in each 128 bits
    return {Shuffle16(fours.bits, 0x0B0A'0302'0908'0100, 0x0F0E'0706'0D0C'0504)};
}

/// The entry of 64 bits at each of kLanes32 indices of a table: its lower and its upper halves. Who has
/// stored the indices well before does not wait for them here.
inline SplitLanes LookUp64(const void* table, const std::uint32_t* indices)
{
#if defined(__AVX512BW__)
    const __m512i order = _mm512_setr_epi32(0, 1, 4, 5, 8, 9, 12, 13, 2, 3, 6, 7, 10, 11, 14, 15);
    const __m512i at = _mm512_permutexvar_epi32(order, LoadLanes(indices).bits);
    return Split({_mm512_i32gather_epi64(_mm512_castsi512_si256(at), table, 8)},
                 {_mm512_i32gather_epi64(_mm512_extracti64x4_epi64(at, 1), table, 8)});
#else
    // Loads of their own beat the gathers of most machines of this level.
    const auto* entries = static_cast<const std::uint8_t*>(table);
    const auto entry = [&](std::size_t i) { return entries + 8 * std::size_t{indices[i]}; };
    const auto two = [&](std::size_t i) {
        const __m128i first = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(entry(i)));
        const auto* second = reinterpret_cast<const __m64*>(entry(i + 1));
        return _mm_castps_si128(_mm_loadh_pi(_mm_castsi128_ps(first), second));
    };
    return Split({_mm256_set_m128i(two(4), two(0))}, {_mm256_set_m128i(two(6), two(2))});
#endif
}

/// Each of kBytes / 8 words in all four lanes of 64 bits.
inline U16 LoadEachFourTimes(const std::uint16_t* p)
{
#if defined(__AVX512BW__)
    const Register spread = _mm512_cvtepu16_epi64(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)));
#else
    const Register spread = _mm256_cvtepu16_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)));
#endif
    return {Shuffle16(spread, 0x0100'0100'0100'0100, 0x0908'0908'0908'0908)};
}

#endif

} // namespace
} // namespace vfil

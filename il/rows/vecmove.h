/// \file
/// Vectors of which only the bytes' places change, and the walk of a row whose pixels change their size.
/// Included by *_simd.cpp sources alone, as vec.h is.
#pragma once

#include "il/rows/vec32.h"

namespace vfil {
namespace {

/// Puts a result of Narrow in the order of its arguments.
inline U8 OrderNarrowed(U8 v)
{
#if defined(__AVX512BW__)
    return {_mm512_permutexvar_epi64(_mm512_setr_epi64(0, 2, 4, 6, 1, 3, 5, 7), v.bits)};
#elif defined(__AVX2__)
    return {_mm256_permute4x64_epi64(v.bits, 0xD8)}; // [0 2 1 3]
#else
    return v;
#endif
}

/// Lanes of 0 .. 65535 to 16 bits, in their order.
inline U8 NarrowPairs(S32 a, S32 b)
{
    return OrderNarrowed({NarrowFull({a, b}).bits});
}

/// Signed lanes to 16 bits with saturation: each of the first vector in the lower half of 32 bits, with that
/// of the second in the upper one.
inline U16 PackBeside(S32 low, S32 high)
{
    const U16 fours = PackSigned(low, high); // four of low, four of high in each 128 bits
#if defined(__AVX2__)
    return {Shuffle16(fours.bits, 0x0B0A'0302'0908'0100, 0x0F0E'0706'0D0C'0504)};
#else
    return {_mm_unpacklo_epi16(fours.bits, _mm_unpackhi_epi64(fours.bits, fours.bits))};
#endif
}

/// The halves of each 32 bits exchanged.
inline U16 SwapHalves(U16 v)
{
#if defined(__AVX2__)
    return {Shuffle16(v.bits, 0x0504'0706'0100'0302, 0x0D0C'0F0E'0908'0B0A)};
#else
    return {_mm_shufflehi_epi16(_mm_shufflelo_epi16(v.bits, 0xB1), 0xB1)}; // [1 0 3 2]
#endif
}

/// The lower half of each 32 bits in both.
inline U16 SplatLowHalves(U16 v)
{
#if defined(__AVX2__)
    return {Shuffle16(v.bits, 0x0504'0504'0100'0100, 0x0D0C'0D0C'0908'0908)};
#else
    return {_mm_shufflehi_epi16(_mm_shufflelo_epi16(v.bits, 0xA0), 0xA0)}; // [0 0 2 2]
#endif
}

/// Each byte twice, in the order of the bytes.
struct U8Pair {
    U8 lo, hi;
};

inline U8Pair Twice(U8 v)
{
#if defined(__AVX512BW__)
    v.bits = _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), v.bits);
#elif defined(__AVX2__)
    v.bits = _mm256_permute4x64_epi64(v.bits, 0xD8);                       // [0 2 1 3]
#endif
    return {{VFIL_MM(unpacklo_epi8)(v.bits, v.bits)}, {VFIL_MM(unpackhi_epi8)(v.bits, v.bits)}};
}

/// The lowest bytes of the 32-bit lanes of four vectors; the other bytes are zero.
inline U8 NarrowLanes(S32 a, S32 b, S32 c, S32 d)
{
    const U8 mixed = Narrow({PackSigned(a, b), PackSigned(c, d)});
#if defined(__AVX512BW__)
    return {_mm512_permutexvar_epi32(_mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15),
                                     mixed.bits)};
#elif defined(__AVX2__)
    return {_mm256_permutevar8x32_epi32(mixed.bits, _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7))};
#else
    return mixed;
#endif
}

/// The byte of a table at each index, with what follows it above: reads 3 bytes more than that.
inline S32 GatherBytes(const std::uint8_t* table, S32 indices)
{
#if defined(__AVX512BW__)
    return {_mm512_i32gather_epi32(indices.bits, table, 1)};
#elif defined(__AVX2__)
    return {_mm256_i32gather_epi32(reinterpret_cast<const int*>(table), indices.bits, 1)};
#else
    std::uint32_t at[kLanes32];
    std::memcpy(at, &indices, sizeof at);
    return {_mm_setr_epi32(table[at[0]], table[at[1]], table[at[2]], table[at[3]])};
#endif
}

#if defined(__AVX2__)
/// Pixels of 3 bytes in the lower bytes of 32 bits each, whose top byte is undefined. Four pixels, 12 bytes,
/// fill each 128 bits; the highest of these loads starts 4 bytes early, so that none reads behind the last.
inline S32 LoadTriples(const std::uint8_t* p)
{
    constexpr std::uint64_t kLow = 0x8005'0403'8002'0100;
    constexpr std::uint64_t kHigh = 0x800B'0A09'8008'0706;
#if defined(__AVX512BW__)
    const __m512i indices = _mm512_setr_epi32(0, 1, 2, 3, 3, 4, 5, 6, 6, 7, 8, 9, 9, 10, 11, 12);
    return {Shuffle16(_mm512_permutexvar_epi32(indices, _mm512_maskz_loadu_epi32(0x0FFF, p)), kLow, kHigh)};
#else
    const __m128i first = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    const __m128i second = _mm_srli_si128(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 8)), 4);
    return {Shuffle16(_mm256_set_m128i(second, first), kLow, kHigh)};
#endif
}

/// Stores the lower 12 bytes of each 128 bits, one behind the other.
inline void StoreTwelves(std::uint8_t* p, U8 v)
{
#if defined(__AVX512BW__)
    const __m512i order = _mm512_setr_epi32(0, 1, 2, 4, 5, 6, 8, 9, 10, 12, 13, 14, 0, 0, 0, 0);
    _mm512_mask_storeu_epi32(p, 0x0FFF, _mm512_permutexvar_epi32(order, v.bits));
#else
    const __m256i order = _mm256_setr_epi32(0, 1, 2, 4, 5, 6, 0, 0);
    const __m256i packed = _mm256_permutevar8x32_epi32(v.bits, order);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm256_castsi256_si128(packed));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p + 16), _mm256_extracti128_si256(packed, 1));
#endif
}

/// Each 4 of kBytes / 2 bytes in the lower half of 64 bits, the rest of which are zero.
inline U8 LoadEachAs64(const std::uint8_t* p)
{
#if defined(__AVX512BW__)
    return {_mm512_cvtepu32_epi64(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)))};
#else
    return {_mm256_cvtepu32_epi64(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
#endif
}

/// Where each 32-bit lane comes from.
struct LaneOrder {
    std::uint32_t from[kLanes32];
};

inline U8 Permute(U8 v, const LaneOrder& order)
{
    const Register from = Load(reinterpret_cast<const std::uint8_t*>(order.from)).bits;
#if defined(__AVX512BW__)
    return {_mm512_permutexvar_epi32(from, v.bits)};
#else
    return {_mm256_permutevar8x32_epi32(v.bits, from)};
#endif
}

/// The lower 32-bit lanes, `count` of them, of a; the upper ones of b.
template <std::size_t count>
inline U8 Join(U8 a, U8 b)
{
    constexpr unsigned kUpper = ((1U << kLanes32) - 1) & ~((1U << count) - 1);
#if defined(__AVX512BW__)
    return {_mm512_mask_blend_epi32(kUpper, a.bits, b.bits)};
#else
    return {_mm256_blend_epi32(a.bits, b.bits, kUpper)};
#endif
}
#endif

/// Pixels until the output is aligned, kBytes if it never is.
template <std::size_t outBytes>
std::size_t PixelsToAligned(const std::uint8_t* out)
{
    std::size_t pixels = 0;
    while (pixels < kBytes && BytesToAligned(out + pixels * outBytes) != 0)
        ++pixels;
    return pixels;
}

/// Converts kBytes pixels of inBytes to as many of outBytes: operation(in, vectors) makes outBytes vectors of
/// inBytes vectors' memory.
template <bool streaming, std::size_t outBytes, class Operation>
void ConvertBlock(const std::uint8_t* in, std::uint8_t* out, Operation operation)
{
    U8 vectors[outBytes];
    operation(in, vectors);
    for (std::size_t i = 0; i < outBytes; ++i) {
        if constexpr (streaming) {
            StoreStreaming(out + i * kBytes, vectors[i]);
        } else {
            Store(out + i * kBytes, vectors[i]);
        }
    }
}

/// Fewer pixels than a block, through the same operation.
template <std::size_t inBytes, std::size_t outBytes, class Operation>
void ConvertPart(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels, Operation operation)
{
    std::uint8_t from[inBytes * kBytes] = {};
    std::uint8_t to[outBytes * kBytes];
    std::memcpy(from, in, pixels * inBytes);
    ConvertBlock<false, outBytes>(from, to, operation);
    std::memcpy(out, to, pixels * outBytes);
}

/// A row by ConvertBlock's operation. A streaming row first comes to an aligned output, where it can.
template <bool streaming, std::size_t inBytes, std::size_t outBytes, class Operation>
void ConvertRow(const void* inRow, void* outRow, std::size_t pixels, Operation operation)
{
    const auto* in = static_cast<const std::uint8_t*>(inRow);
    auto* out = static_cast<std::uint8_t*>(outRow);
    std::size_t at = 0;
    if constexpr (streaming) {
        const std::size_t head = PixelsToAligned<outBytes>(out);
        if (head < kBytes && head < pixels) {
            if (head != 0) ConvertPart<inBytes, outBytes>(in, out, head, operation);
            for (at = head; pixels - at >= kBytes; at += kBytes)
                ConvertBlock<true, outBytes>(in + at * inBytes, out + at * outBytes, operation);
        }
    }
    for (; pixels - at >= kBytes; at += kBytes)
        ConvertBlock<false, outBytes>(in + at * inBytes, out + at * outBytes, operation);
    if (at != pixels)
        ConvertPart<inBytes, outBytes>(in + at * inBytes, out + at * outBytes, pixels - at, operation);
}

} // namespace
} // namespace vfil

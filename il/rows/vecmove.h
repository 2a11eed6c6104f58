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

/// Each byte twice, in the order of the bytes.
struct U8Pair {
    U8 lo, hi;
};

inline U8Pair Twice(U8 v)
{
#if defined(__AVX512BW__)
    v.bits = _mm512_permutexvar_epi64(_mm512_setr_epi64(0, 4, 1, 5, 2, 6, 3, 7), v.bits);
#elif defined(__AVX2__)
    v.bits = _mm256_permute4x64_epi64(v.bits, 0xD8); // [0 2 1 3]
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

#if defined(__AVX2__)
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

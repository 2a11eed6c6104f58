/// \file
/// Pairs of pixels in vectors, and the walk of a row by them. Included by legalrows_simd.cpp alone, as vec.h
/// is.
#pragma once

#include "il/rows/treat/legalparams.h"
#include "il/rows/vecdouble.h"
#include "il/rows/vecplanes.h"

namespace vfil {
namespace {

#if defined(__AVX2__)

using Byte = std::uint8_t;

/// A vector of pairs, a sample in each lane.
struct Pairs {
    S32 y0, cb, y1, cr;
};

template <bool chromaFirst>
Pairs Split(U8 v)
{
    constexpr int luma = chromaFirst ? 1 : 0;
    return {ByteLanes<luma>(v), ByteLanes<1 - luma>(v), ByteLanes<luma + 2>(v), ByteLanes<3 - luma>(v)};
}

template <bool chromaFirst>
U8 Join(const Pairs& p)
{
    return chromaFirst ? JoinBytes(p.cb, p.y0, p.cr, p.y1) : JoinBytes(p.y0, p.cb, p.y1, p.cr);
}

/// Every sample in its range: luma in 16 .. 235, chroma in 16 .. 240.
template <bool chromaFirst>
U8 InRange(U8 pairs)
{
    return Min(Max(pairs, SplatByte(16)), SplatU32(chromaFirst ? 0xEBF0'EBF0 : 0xF0EB'F0EB));
}

/// Less than a vector, or one at the end of a row, of which the last pair has its next one elsewhere.
template <class Treat>
void TreatPart(const Byte* in, const Byte* next, Byte* out, std::size_t bytes, Treat treat)
{
    Byte from[kBytes + 4] = {};
    Byte to[kBytes];
    std::memcpy(from, in, bytes);
    std::memcpy(from + bytes, next, 4);
    Store(to, treat(Load(from), Load(from + 4)));
    std::memcpy(out, to, bytes);
}

/// out = treat(pairs, next pairs); the row's last pair is its own next one. A streaming row first comes to an
/// aligned output, unless that lies amid a pair.
template <bool streaming, class Treat>
void MapPairs(const Byte* in, Byte* out, std::size_t pairs, Treat treat)
{
    const std::size_t bytes = 4 * pairs;
    std::size_t at = 0;
    if constexpr (streaming) {
        const std::size_t head = BytesToAligned(out);
        if (head % 4 == 0 && head < bytes) {
            if (head != 0) TreatPart(in, in + head, out, head, treat);
            for (at = head; bytes - at > kBytes; at += kBytes)
                StoreStreaming(out + at, treat(Load(in + at), Load(in + at + 4)));
        }
    }
    for (; bytes - at > kBytes; at += kBytes)
        Store(out + at, treat(Load(in + at), Load(in + at + 4)));
    if (at != bytes) TreatPart(in + at, in + bytes - 4, out + at, bytes - at, treat);
}

bool AreAllZero(S32 v)
{
    return IsZero(U16{v.bits});
}

/// 1 where a is greater than b, else 0.
S32 IsGreater(S32 a, S32 b)
{
    return Select(Greater(a, b), Splat32(1), Splat32(0));
}

#endif

} // namespace
} // namespace vfil

/// \file
/// Pairs of pixels, and the walk of a row by them, for the plain forms of the legalizer's kernels.
#pragma once

#include "il/rows/treat/legalparams.h"

#include <algorithm>

namespace vfil::legal {

using Byte = std::uint8_t;

inline constexpr int kBlack = 16;
inline constexpr int kWhite = 235;
inline constexpr int kMostChroma = 240;

/// Two pixels that share chroma.
struct Pair {
    int y0, cb, y1, cr;
};

struct Chroma {
    int cb, cr;
};

template <bool chromaFirst>
Pair Load(const Byte* p)
{
    return chromaFirst ? Pair{p[1], p[0], p[3], p[2]} : Pair{p[0], p[1], p[2], p[3]};
}

template <bool chromaFirst>
void Store(const Pair& pair, Byte* p)
{
    constexpr int luma = chromaFirst ? 1 : 0;
    p[luma] = static_cast<Byte>(pair.y0);
    p[1 - luma] = static_cast<Byte>(pair.cb);
    p[luma + 2] = static_cast<Byte>(pair.y1);
    p[3 - luma] = static_cast<Byte>(pair.cr);
}

/// out = treat(pair, next pair); the last pair is its own next one.
template <bool chromaFirst, class Treat>
void MapPairs(const Byte* in, Byte* out, std::size_t pairs, Treat treat)
{
    for (std::size_t i = 0; i < pairs; ++i) {
        const Pair pair = Load<chromaFirst>(in + 4 * i);
        const Pair next = i + 1 < pairs ? Load<chromaFirst>(in + 4 * (i + 1)) : pair;
        Store<chromaFirst>(treat(pair, next), out + 4 * i);
    }
}

inline int ClampLuma(int y)
{
    return std::clamp(y, kBlack, kWhite);
}

inline int ClampChroma(int c)
{
    return std::clamp(c, kBlack, kMostChroma);
}

/// Puts the rules of saturation into the table.
void FillSaturation(LegalRows& plain);

} // namespace vfil::legal

/// \file
/// What the vector forms of colour correction have in common. Included by correctrows_simd.cpp and
/// correctpairrows_simd.cpp alone, as vec.h is. They hold what FitsVectors lets through.
#pragma once

#include "il/rows/treat/correctparams.h"
#include "il/rows/vecpairs.h"
#include "il/rows/vecplanes.h"

namespace vfil {
namespace {

#if defined(__AVX2__)

using Byte = std::uint8_t;

/// The indices of a lookup.
struct Indices {
    alignas(kBytes) std::uint32_t at[kLanes32];
};

/// Stores values, limited to bytes.
void StoreIndices(Indices& indices, S32 values)
{
    StoreLanes(indices.at, Min(Max(values, Splat32(0)), Splat32(255)));
}

/// Limited to bytes, those of four pixels turned over: four of each component in each 128 bits.
U8 ToTurned(S32 a, S32 b, S32 c, S32 d)
{
    return Narrow({PackSigned(a, b), PackSigned(c, d)});
}

/// Tables of the channels of pixels of four bytes.
class ChannelTables {
public:
    explicit ChannelTables(const std::uint8_t (&tables)[4][256])
        : m_red(tables[0]), m_green(tables[1]), m_blue(tables[2]), m_alpha(tables[3])
    {}
    /// \param block  Pixels turned over, four by four; comes back as pixels.
    /// \param alpha  False leaves the fourth bytes.
    void Replace(Block& block, bool alpha) const
    {
        Block planes = TurnLanes(block);
        planes.v[0] = Lookup(m_red, planes.v[0]);
        planes.v[1] = Lookup(m_green, planes.v[1]);
        planes.v[2] = Lookup(m_blue, planes.v[2]);
        if (alpha) planes.v[3] = Lookup(m_alpha, planes.v[3]);
        const Block turned = TurnLanes(planes);
        for (int i = 0; i < 4; ++i)
            block.v[i] = TurnBytes(turned.v[i]);
    }

private:
    ByteTable<16> m_red, m_green, m_blue, m_alpha;
};

/// What a kernel is without.
struct Nothing {
    template <class... Params>
    explicit Nothing(const Params&...)
    {}
};

template <bool has, class Step>
struct Optional {
    using Type = Nothing;
};
template <class Step>
struct Optional<true, Step> {
    using Type = Step;
};
template <bool has, class Step>
using StepIf = typename Optional<has, Step>::Type;

#endif

} // namespace
} // namespace vfil

/// \file
/// What the row kernels of the two-input operators take: operators, parameters and the table of pointers.
/// Types only: the vector sources, which are built for newer processors, include this, and nothing here
/// becomes code of theirs.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

enum class LayerOp { Over, In, Out, Atop, Xor, Add, AddNoClip, Diff, Mult, Lighter, Darker };
inline constexpr std::size_t kLayerOps = 11;

/// The result's alpha: none, full, or what the operator says.
enum class AlphaRule { Zero, Full, Computed };

/// Bits of LayerParams::channels.
inline constexpr unsigned kAlphaChannel = 8;
inline constexpr unsigned kAllChannels = 15;

/// What a layer operator is told beside its rows.
template <class Sample>
struct LayerParams {
    Sample strength;         ///< of the front, full for its own
    bool frontPremultiplied; ///< looked at by over, in, out, atop and xor alone, as is the next
    bool backPremultiplied;
    AlphaRule alpha;
    unsigned channels;    ///< red 1, green 2, blue 4, alpha 8: the others are copied from the dominant input
    bool dominantIsFront; ///< else the back is
    bool streaming = false; ///< the result won't soon be read again: see kStreamingBytes
};

template <class Sample>
struct MixParams {
    Sample amount;   ///< of the front where the mask is full
    AlphaRule alpha; ///< Computed is the bitwise OR of both alphas
};

struct YuvaParams {
    std::uint8_t strength;
    bool frontPremultiplied, backPremultiplied;
    AlphaRule alpha;
    bool alphaProcessed; ///< else the alpha plane is copied from the dominant input
    bool dominantIsFront;
};

/// In each kernel the output may be one of the inputs, exactly, but may not partly overlap one. Rows need no
/// alignment; nothing past the count is read or written.
template <class Sample>
using LayerRow = void (*)(const Sample* back, const Sample* front, Sample* out, std::size_t pixels,
                          const LayerParams<Sample>& params);

/// \param maskStep  samples from one pixel's mask to the next.
template <class Sample>
using MixRow = void (*)(const Sample* back, const Sample* front, const Sample* mask, std::ptrdiff_t maskStep,
                        Sample* out, std::size_t pixels, const MixParams<Sample>& params);

/// Colour rows of U Y V Y, two bytes a pixel, and alpha rows of one. An odd width ends in a lone U Y.
using OverYuvaRow = void (*)(const std::uint8_t* backColour, const std::uint8_t* backAlpha,
                             const std::uint8_t* frontColour, const std::uint8_t* frontAlpha,
                             std::uint8_t* outColour, std::uint8_t* outAlpha, std::size_t pixels,
                             const YuvaParams& params);

/// A layer operator's kernels: [front premultiplied][back premultiplied][whole][streaming], where whole means
/// full strength, all channels and a computed alpha.
template <class Sample>
struct LayerCases {
    LayerRow<Sample> at[2][2][2][2];
};

/// The kernels of the two-input operators, for one level.
struct CompRows {
    LayerCases<std::uint8_t> layer8[kLayerOps];
    LayerCases<std::uint16_t> layer16[kLayerOps];
    MixRow<std::uint8_t> mix8[2]; ///< [streaming]
    MixRow<std::uint16_t> mix16[2];
    OverYuvaRow overYuva;
};

} // namespace vfil

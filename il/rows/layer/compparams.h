/// \file
/// What the row kernels of the two-input operators take: operators, parameters and the table of pointers.
/// Types only: the vector sources, which are built for newer processors, include this, and nothing here
/// becomes code of theirs.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// The operators that have row kernels. Each has a line in kLayers, and its formula in both Value functions.
enum class LayerOp { Over, In, Out, Atop, Xor, Add, AddNoClip, Diff, Mult, Lighter, Darker };

/// Whose colour an operator multiplies by its alpha first, where it isn't so yet.
enum class Weighs { None, Front, Both };

/// What the kernels, the tables and the loops need to know of an operator.
struct LayerTraits {
    LayerOp op;
    /// Front alone: the operator cuts the front by the back's alpha, and its result is premultiplied whatever
    /// the inputs are.
    Weighs weighs;
    bool samplewise; ///< a sum, a distance or a choice of two samples: bytes need not be widened for it
    bool narrow16;   ///< at 16 bits without full scale it has a form of its own
};

/// The one list of these operators, in the order of LayerOp: what comes in tables follows from it.
constexpr LayerTraits kLayers[] = {
    {.op = LayerOp::Over, .weighs = Weighs::Both, .samplewise = false, .narrow16 = true},
    {.op = LayerOp::In, .weighs = Weighs::Front, .samplewise = false, .narrow16 = false},
    {.op = LayerOp::Out, .weighs = Weighs::Front, .samplewise = false, .narrow16 = false},
    {.op = LayerOp::Atop, .weighs = Weighs::Both, .samplewise = false, .narrow16 = true},
    {.op = LayerOp::Xor, .weighs = Weighs::Both, .samplewise = false, .narrow16 = true},
    {.op = LayerOp::Add, .weighs = Weighs::None, .samplewise = true, .narrow16 = false},
    {.op = LayerOp::AddNoClip, .weighs = Weighs::None, .samplewise = false, .narrow16 = true},
    {.op = LayerOp::Diff, .weighs = Weighs::None, .samplewise = true, .narrow16 = true},
    {.op = LayerOp::Mult, .weighs = Weighs::None, .samplewise = false, .narrow16 = false},
    {.op = LayerOp::Lighter, .weighs = Weighs::None, .samplewise = true, .narrow16 = false},
    {.op = LayerOp::Darker, .weighs = Weighs::None, .samplewise = true, .narrow16 = false},
};
constexpr std::size_t kLayerOps = sizeof kLayers / sizeof *kLayers;

/// An operator's line in the list. Does not compile for one that has none.
constexpr LayerTraits TraitsOf(LayerOp op)
{
    return kLayers[static_cast<std::size_t>(op)];
}

constexpr bool AreLayersInOrder()
{
    for (std::size_t at = 0; at < kLayerOps; ++at) {
        if (kLayers[at].op != static_cast<LayerOp>(at)) return false;
    }
    return true;
}
static_assert(AreLayersInOrder(), "kLayers is not in the order of LayerOp");

/// What the last branch of a formula asserts: false, but not before it is asked of an operator.
template <LayerOp>
constexpr bool kHasFormula = false;

/// The result's alpha: none, full, or what the operator says.
enum class AlphaRule { Zero, Full, Computed };

/// Bits of LayerParams::channels.
constexpr unsigned kAlphaChannel = 8;
constexpr unsigned kAllChannels = 15;

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
    bool fullScale = false; ///< at 16 bits: the arithmetic is FullScale instead of Arith
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
    LayerCases<std::uint16_t> layer16[2][kLayerOps]; ///< [full scale]
    MixRow<std::uint8_t> mix8[2];                    ///< [streaming]
    MixRow<std::uint16_t> mix16[2];
    OverYuvaRow overYuva;
};

} // namespace vfil

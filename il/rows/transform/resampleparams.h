/// \file
/// What the kernels of the two-pass resampler take. Types only, so that vector sources may include it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// A weight of a whole output pixel; those of one output sum to it where nothing lies outside.
inline constexpr int kWholeWeight = 16384;
inline constexpr int kWeightBits = 14;

/// Outputs that a kernel may write behind the last one, and whose table entries it may read.
inline constexpr std::size_t kTapSlack = 64;

/// Where the outputs of a line come from. An output is the sum of 2 `pairs` neighbouring pixels.
struct LineTaps {
    const std::int32_t* starts;  ///< the first pixel of each output
    const std::int16_t* weights; ///< of the pixels 2p and 2p + 1 of output k: at 2 (p pitch + k)
    const std::int32_t* sums;    ///< the sum of an output's weights, at most kWholeWeight
    std::size_t pitch;
    std::size_t pairs; ///< 1, or an even number
};

/// Outputs of a line of pixels: sums of products, and 2 to the power of 14 for 1, rounded.
template <class Sample>
using WeighPixels = void (*)(const Sample* line, const LineTaps& taps, Sample* out, std::size_t pixels);

/// A row from 2 `pairs` rows and their weights, in the same way. kTapSlack bytes behind each row are read.
template <class Sample>
using WeighRows = void (*)(const Sample* const* rows, const std::int16_t* weights, std::size_t pairs,
                           Sample* out, std::size_t samples);

/// Paints premultiplied RGBA pixels under those that are there; sums are limited to the full value.
template <class Sample>
using PaintUnder = void (*)(const Sample* front, Sample* back, std::size_t pixels);

/// Multiplies the colour of RGBA pixels by their alpha, in place.
template <class Sample>
using MultiplyAlpha = void (*)(Sample* row, std::size_t pixels);

/// The kernels of the two-pass resampler, for one level.
struct ResampleRows {
    WeighPixels<std::uint8_t> pixels8;
    WeighPixels<std::uint8_t> mono8;
    WeighPixels<std::uint16_t> pixels16;
    WeighPixels<std::uint16_t> mono16;
    WeighRows<std::uint8_t> rows8[2]; ///< [streaming]
    WeighRows<std::uint16_t> rows16[2];
    PaintUnder<std::uint8_t> under8;
    PaintUnder<std::uint16_t> under16;
    MultiplyAlpha<std::uint8_t> multiply8;
    MultiplyAlpha<std::uint16_t> multiply16;
};

} // namespace vfil

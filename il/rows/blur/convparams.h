/// \file
/// What the kernels of the convolutions take. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

// Fixed sums are in 15 fraction bits rounded to nearest, limited to 16 signed bits and then to the range of
// the results. Their weights' count is even.

/// Sample i is the fixed sum of weights[k] * sources[k][i].
using FixedSumRow = void (*)(const std::uint8_t* const* sources, const std::int16_t* weights,
                             std::size_t count, std::uint8_t* out, std::size_t samples);

// The two passes of a separable kernel make multiples of kGrain samples: the rows have room for them.
constexpr std::size_t kGrain = 128;

/// Sample i of a row of pixels of four channels, and above it, in the upper 16 bits, the same channel of the
/// next pixel: 0 for the last pixel.
using PairRow = void (*)(const std::uint8_t* row, std::uint32_t* pairs, std::size_t samples);

/// Sample i is the fixed sum of each two weights by the pair i + 4 * k, in which k is the first weight's
/// index.
using FixedAcrossRow = void (*)(const std::uint32_t* pairs, const std::int16_t* weights, std::size_t count,
                                std::int16_t* out, std::size_t samples);

/// Rows of results that a pass down the columns makes at once, of sources that it reads once.
constexpr std::size_t kTileRows = 4;

/// Sample i of row r, which begins at out + r * step, is the fixed sum of w(r, k) * sources[k][i]. The
/// weights lie in the order of their use: w(0, 0), w(0, 1), w(1, 0), w(1, 1) ... then w(0, 2), w(0, 3) ...
using FixedDownRows = void (*)(const std::int16_t* const* sources, const std::int16_t* weights,
                               std::size_t count, std::uint8_t* out, std::size_t step, std::size_t samples);

/// Sample i is the sum of weights[k] * sources[k][i] in float, in the order of the sources. Samples take the
/// sum plus \p offset and 0.5, limited and truncated; floats take the sum alone.
template <class In, class Out>
using FloatSumRow = void (*)(const In* const* sources, const float* weights, std::size_t count, float offset,
                             Out* out, std::size_t samples);

/// The kernels of the convolutions, for one level. The output is in no source's place. The fixed sums of the
/// vector forms are of 32 bits, the plain ones' of 64: see FitFixedSums.
struct ConvRows {
    FixedSumRow fixed;
    PairRow pairs;
    FixedAcrossRow fixedAcross;
    FixedDownRows fixedDown;
    FloatSumRow<std::uint8_t, std::uint8_t> float8;
    FloatSumRow<std::uint8_t, float> float8Across;
    FloatSumRow<float, std::uint8_t> float8Down;
    FloatSumRow<std::uint16_t, std::uint16_t> float16;
    FloatSumRow<std::uint16_t, float> float16Across;
    FloatSumRow<float, std::uint16_t> float16Down;
};

} // namespace vfil

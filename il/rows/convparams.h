/// \file
/// What the kernels of the convolutions take. Types only, as in rowparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// Sample i is the sum of weights[k] * sources[k][i], in 15 fraction bits rounded to nearest, limited to 16
/// signed bits and then to the range of Out. \p count is even.
template <class In, class Out>
using FixedSumRow = void (*)(const In* const* sources, const std::int16_t* weights, std::size_t count,
                             Out* out, std::size_t samples);

/// The same in float, summed in the order of the sources. Samples take the sum plus \p offset and 0.5,
/// limited and truncated; floats take the sum alone.
template <class In, class Out>
using FloatSumRow = void (*)(const In* const* sources, const float* weights, std::size_t count, float offset,
                             Out* out, std::size_t samples);

/// The kernels of the convolutions, for one level. The output is in no source's place. The fixed sums of the
/// vector forms are of 32 bits, the plain ones' of 64: see FitFixedSums.
struct ConvRows {
    FixedSumRow<std::uint8_t, std::uint8_t> fixed;
    FixedSumRow<std::uint8_t, std::int16_t> fixedAcross;
    FixedSumRow<std::int16_t, std::uint8_t> fixedDown;
    FloatSumRow<std::uint8_t, std::uint8_t> float8;
    FloatSumRow<std::uint8_t, float> float8Across;
    FloatSumRow<float, std::uint8_t> float8Down;
    FloatSumRow<std::uint16_t, std::uint16_t> float16;
    FloatSumRow<std::uint16_t, float> float16Across;
    FloatSumRow<float, std::uint16_t> float16Down;
};

} // namespace vfil

/// \file
/// What the row kernels of runs between two colours take. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// A run of pixels between two colours of components in 0 .. 1: sample c of pixel i is
/// (i * difference[c] * inverse + first[c]) * full, in this order, rounded half to even.
struct RampSpan {
    double first[4];
    double difference[4]; ///< to the last pixel's
    double inverse;       ///< 1 / (pixels - 1), 0 for one pixel
    std::size_t pixels;
    std::size_t channels; ///< 1 or 4
};
template <class Sample>
using RampRow = void (*)(const RampSpan& span, Sample* out);

/// The kernels for one level; each is [streaming].
struct RampRows {
    RampRow<std::uint8_t> ramp8[2];
    RampRow<std::uint16_t> ramp16[2];
};

} // namespace vfil

/// \file
/// What the row kernels of the colour ramps take. Types only, as in compparams.h.
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

/// Where pixels lie along a vector: with d = start + i * step the index of pixel i is the whole part of d /
/// length, at least 0 and at most last. It is made of d * inverse, and one less where its product with the
/// length is above d: a quotient that is a whole number is never missed.
struct LinearPlaces {
    double start, step;
    double length, inverse;
    double last; ///< below 2 to the power of 31
};
/// The same of distances: the whole part of the root of (x + i) * (x + i) + square, at most last.
struct RadialPlaces {
    double x;
    double square; ///< no NaN
    double last;
};
template <class Places>
using PlaceRow = void (*)(const Places& places, std::int32_t* indices, std::size_t pixels);

/// The entries of a table at indices, which are fast where those of neighbours hardly differ. Behind the
/// table's last entry kLookUpPad more may be read.
using LookUpRow = void (*)(const void* table, const std::int32_t* indices, void* out, std::size_t pixels);
inline constexpr std::size_t kLookUpPad = 16;
/// Entries of 1, 2, 4 and 8 bytes.
inline constexpr std::size_t kLookUpSizes = 4;

/// The kernels for one level; [2] is [streaming].
struct RampRows {
    RampRow<std::uint8_t> ramp8[2];
    RampRow<std::uint16_t> ramp16[2];
    PlaceRow<LinearPlaces> linear;
    PlaceRow<RadialPlaces> radial;
    LookUpRow lookUp[kLookUpSizes][2];
};

} // namespace vfil

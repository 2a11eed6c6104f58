/// \file
/// What the row kernels take that paint colours of a table by the places of pixels. Types only, as in
/// compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// Where pixels lie along a vector: with d = start + i * step the index of pixel i is the whole part of d /
/// length, at least 0 and at most last. It is made of d * inverse, and one less where its product with the
/// length is above d: a quotient that is a whole number is never missed. The step is the length at most.
struct LinearPlaces {
    double start, step;
    double length, inverse;
    double last; ///< below 2 to the power of 31
};
/// The same of distances: the whole part of the root of (x + i) * (x + i) + square, at most last.
struct RadialPlaces {
    double x;      ///< a whole number
    double square; ///< no NaN
    double last;
};

/// Writes the entries of a table at the places of pixels. kTablePad entries before the first are as it, and
/// as many behind the last are as that.
template <class Places>
using PlaceRow = void (*)(const Places& places, const void* table, void* out, std::size_t pixels);
inline constexpr std::size_t kTablePad = 16;
/// Entries of 1, 2, 4 and 8 bytes.
inline constexpr std::size_t kEntrySizes = 4;

/// The kernels for one level; [2] is [streaming].
struct PlaceRows {
    PlaceRow<LinearPlaces> linear[kEntrySizes][2];
    PlaceRow<RadialPlaces> radial[kEntrySizes][2];
};

} // namespace vfil

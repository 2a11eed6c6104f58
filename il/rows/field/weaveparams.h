/// \file
/// What the row kernels of the operators on fields take that make rows of rows. Types only, as in
/// compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

// Rows need no alignment; nothing past the count is read or written.

/// Copies a row to one that it does not overlap.
///
/// \param next The row that is copied after this one, as long, or any other: a streaming kernel asks for it.
///             Rows of fields lie apart, and a machine that looks ahead by itself stops at their ends.
using WeaveRow = void (*)(const unsigned char* in, const unsigned char* next, unsigned char* out,
                          std::size_t bytes);
/// Three rows, one above the other, by the weights 1, 2, 1: the mean of the outer two, and the mean of that
/// and the middle one, each rounded up. The output may be one of the rows exactly.
template <class Sample>
using MergeRow = void (*)(const Sample* below, const Sample* middle, const Sample* above, Sample* out,
                          std::size_t samples);

/// The kernels for one level; each is [streaming].
struct WeaveRows {
    WeaveRow weave[2];
    MergeRow<std::uint8_t> merge8[2];
    MergeRow<std::uint16_t> merge16[2];
};

} // namespace vfil

/// \file
/// What the row kernels that melt fields take. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// Three rows, one above the other, by the weights 1, 2, 1: the mean of the outer two, and the mean of that
/// and the middle one, each rounded up. The output may be one of the rows exactly. Rows need no alignment;
/// nothing past the count is read or written.
template <class Sample>
using MergeRow = void (*)(const Sample* below, const Sample* middle, const Sample* above, Sample* out,
                          std::size_t samples);

/// The kernels for one level; each is [streaming].
struct MergeRows {
    MergeRow<std::uint8_t> merge8[2];
    MergeRow<std::uint16_t> merge16[2];
};

} // namespace vfil

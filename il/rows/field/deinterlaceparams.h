/// \file
/// What the row kernels that fill missing rows take. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

// The output may be one of the rows exactly, but may not partly overlap it. Rows need no alignment; nothing
// past the count is read or written.

/// (a + b + 1) / 2.
template <class Sample>
using MeanRow = void (*)(const Sample* a, const Sample* b, Sample* out, std::size_t samples);

/// The rows that a missing row is made of: its neighbours in its field's picture, and the row itself as two
/// frames have it.
template <class Sample>
struct RowsAround {
    const Sample* above;
    const Sample* below;
    const Sample* here;
    const Sample* compared;
};

/// From which distance between two frames on a sample moves, in sample values.
struct MotionRamp {
    std::int32_t still;  ///< up to here the mean of the two frames stands
    std::int32_t moving; ///< from here on that of the two neighbours; at least `still`, which goes before
    double reciprocal;   ///< of the difference; of no use where there is none
};

template <class Sample>
using AdaptiveRow = void (*)(const RowsAround<Sample>& rows, Sample* out, std::size_t samples,
                             const MotionRamp& ramp);

/// The kernels for one level; each is [streaming].
struct DeinterlaceRows {
    MeanRow<std::uint8_t> mean8[2];
    MeanRow<std::uint16_t> mean16[2];
    AdaptiveRow<std::uint8_t> adaptive8[2];
    AdaptiveRow<std::uint16_t> adaptive16[2];
};

} // namespace vfil

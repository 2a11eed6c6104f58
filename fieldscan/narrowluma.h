/// \file
/// What the comparison of fields looks at: the luma of a frame, narrower than the frame.
#pragma once

#include <vfil/host/picture.h>

#include <cstdint>
#include <vector>

namespace vfil::fieldscan {

/// How many samples of a narrow row are one 8-bit level.
inline constexpr int kLevel = 8;

/// Luma by rows from the top, 0 .. 255 * kLevel. A sample is the mean of a few pixels of its row: that takes
/// away most of the noise and little of what movement changes, and no row gets anything of another.
struct NarrowLuma {
    long columns = 0;
    long rows = 0;
    std::vector<std::int16_t> samples;

    const std::int16_t* Row(long fromTop) const { return samples.data() + fromTop * columns; }
};

/// Green stands for the luma of RGB.
NarrowLuma NarrowLumaOf(const host::Picture& picture);

} // namespace vfil::fieldscan

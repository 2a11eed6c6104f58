/// \file
/// What the kernels of footprint sums take, and the table of pointers. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// Footprints that a kernel sums side by side.
constexpr std::size_t kFootprintGroup = 8;

/// Quadrilaterals, or boxes, of neighbouring output pixels; vertex by vertex, each as an array of footprints.
/// Fewer are filled up with copies.
struct FootprintGroup {
    double x[4][kFootprintGroup];
    double y[4][kFootprintGroup];
    double sign[kFootprintGroup]; ///< of the area that the vertices' order gives: 1 or -1
};

/// The picture that is summed.
struct FootprintPicture {
    const std::uint8_t* base; ///< pixel (0, 0)
    std::ptrdiff_t rowBytes;
    std::int32_t left, top;     ///< the first column and row that count, 0 or more
    std::int32_t right, bottom; ///< the last ones, no less than the first
};

/// Sums of a group. The caller presets the channels, and 0 for the weights.
struct FootprintSums {
    double channels[kFootprintGroup][4];
    double weights[kFootprintGroup]; ///< the areas of the pixels' pieces
};

/// Adds, of each footprint row by row and in each from the left, the pixels by the area of the footprint in
/// them.
using FootprintKernel = void (*)(const FootprintGroup& group, const FootprintPicture& picture,
                                 FootprintSums& sums);

/// The kernels of one level: [two bytes a sample][four channels a pixel].
struct FootprintRows {
    FootprintKernel quads[2][2];
    FootprintKernel boxes[2][2];
};

} // namespace vfil

/// \file
/// Kernels that sum footprints, and the plain form for polygons of any number of vertices.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/transform/footprintparams.h"

namespace vfil {

VFIL_DECLARE_FILL(FootprintRows)

/// The kernels of a level.
const FootprintRows& FootprintRowsAt(Level level);

/// The kernels of the highest level, or the plain ones.
const FootprintRows& FindFootprintRows(bool useVectors);

/// A convex polygon whose pieces are summed.
struct FootprintPolygon {
    const double* x;
    const double* y;
    long count;
    double sign; ///< as in FootprintGroup
};

/// The plain form, of one polygon. \p channels has as many sums as a pixel has samples.
template <class Sample, int kChannels>
void SumPolygon(const FootprintPolygon& polygon, const FootprintPicture& picture, double* channels,
                double& weight);

} // namespace vfil

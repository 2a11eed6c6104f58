/// \file
/// Row kernels of the two-pass resampler: weighted sums along a line and across rows, and what is painted
/// under the result.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/transform/resampleparams.h"

namespace vfil {

VFIL_DECLARE_FILL(ResampleRows)

const ResampleRows& ResampleRowsAt(Level level);

/// The kernels of a run.
template <class Sample>
WeighPixels<Sample> FindWeighPixels(bool useVectors, int channels);
template <class Sample>
WeighRows<Sample> FindWeighRows(bool useVectors, bool streaming);
template <class Sample>
PaintUnder<Sample> FindPaintUnder(bool useVectors);
template <class Sample>
MultiplyAlpha<Sample> FindMultiplyAlpha(bool useVectors);

} // namespace vfil

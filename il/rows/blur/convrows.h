/// \file
/// Row kernels of the convolutions: weighted sums of rows, in fixed point and in float.
#pragma once

#include "il/rows/blur/convparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(ConvRows)

const ConvRows& ConvRowsAt(Level level);

/// The kernels of a run.
const ConvRows& FindConvRows(bool useVectors);

/// True when fixed sums of samples of that magnitude stay within 32 bits, and the vector forms may be used.
bool FitFixedSums(const std::int16_t* weights, std::size_t count, std::int64_t magnitude);

} // namespace vfil

/// \file
/// Row kernels that fill missing rows. As in comprows.h a run finds its kernel once.
#pragma once

#include "il/rows/field/deinterlaceparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(DeinterlaceRows)

const DeinterlaceRows& DeinterlaceRowsAt(Level level);

// For streaming see kStreamingBytes.
template <class Sample>
MeanRow<Sample> FindMeanRow(bool useVectors, bool streaming = false);
template <class Sample>
AdaptiveRow<Sample> FindAdaptiveRow(bool useVectors, bool streaming = false);

/// Of thresholds as shares of full scale.
template <class Sample>
MotionRamp MotionRampOf(double minThreshold, double maxThreshold);

} // namespace vfil

/// \file
/// Row kernels of runs between two colours. As in comprows.h a run finds its kernels once.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/treat/rampparams.h"

namespace vfil {

VFIL_DECLARE_FILL(RampRows)

const RampRows& RampRowsAt(Level level);

// For streaming see kStreamingBytes.
template <class Sample>
RampRow<Sample> FindRampRow(bool useVectors, bool streaming = false);
} // namespace vfil

/// \file
/// Row kernels of the operators on fields that make rows of rows. As in comprows.h a run finds its kernel
/// once.
#pragma once

#include "il/rows/field/weaveparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(WeaveRows)

const WeaveRows& WeaveRowsAt(Level level);

// For streaming see kStreamingBytes.
WeaveRow FindWeaveRow(bool useVectors, bool streaming);
template <class Sample>
MergeRow<Sample> FindMergeRow(bool useVectors, bool streaming);

} // namespace vfil

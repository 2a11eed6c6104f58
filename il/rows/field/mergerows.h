/// \file
/// Row kernels that melt fields. As in comprows.h a run finds its kernel once.
#pragma once

#include "il/rows/field/mergeparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(MergeRows)

const MergeRows& MergeRowsAt(Level level);

/// For streaming see kStreamingBytes.
template <class Sample>
MergeRow<Sample> FindMergeRow(bool useVectors, bool streaming);

} // namespace vfil

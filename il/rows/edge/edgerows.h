/// \file
/// Row kernels of the edge filters. As in comprows.h a run finds its kernels once.
#pragma once

#include "il/rows/edge/edgeparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(EdgeRows)

const EdgeRows& EdgeRowsAt(Level level);

template <class Sample>
EdgeRow<Sample> FindEdgeRow(bool useVectors, EdgeOp op);
template <class Sample>
AngleRow<Sample> FindAngleRow(bool useVectors, AngleOp op);

} // namespace vfil

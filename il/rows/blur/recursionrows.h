/// \file
/// Row kernels of the recursive blurs.
#pragma once

#include "il/rows/blur/recursionparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(RecursionRows)

const RecursionRows& RecursionRowsAt(Level level);

/// The kernels of a run.
const RecursionRows& FindRecursionRows(bool useVectors);

} // namespace vfil

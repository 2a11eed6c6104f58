/// \file
/// Row kernels of the recursive blurs.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/recursionparams.h"

namespace vfil {

const RecursionRows& RecursionRowsAt(Level level);

/// The kernels of a run.
const RecursionRows& FindRecursionRows(bool useVectors);

} // namespace vfil

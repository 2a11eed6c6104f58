/// \file
/// Row kernels of the box blur: sums down the columns, and along the rows of these.
#pragma once

#include "il/rows/blur/boxparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(BoxRows)

const BoxRows& BoxRowsAt(Level level);

/// The kernels of a run. Sum is 64 bits wide for windows whose sums don't fit 32.
template <class Sum>
MoveColumns<Sum> FindMoveColumns(bool useVectors);
template <class Sum>
BoxRow<Sum> FindBoxRow(bool useVectors, int channels);

} // namespace vfil

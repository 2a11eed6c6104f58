/// \file
/// Row kernels of keys by tables, and of the colour beside a key. As in comprows.h a run finds its kernel
/// once.
#pragma once

#include "il/rows/keyer/tablekeyparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(TableKeyRows)

const TableKeyRows& TableKeyRowsAt(Level level);

/// \param useVectors  Else the plain forms.
const TableKeyRows& FindTableKeyRows(bool useVectors);

} // namespace vfil

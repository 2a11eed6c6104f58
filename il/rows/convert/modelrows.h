/// \file
/// Row kernels between colour models. A pixel gets the bytes that vfILColor's packed forms give it: the same
/// double arithmetic in the same order, several pixels at once.
#pragma once

#include "il/rows/convert/modelparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(ModelRows)

const ModelRows& ModelRowsAt(Level level);
/// The best kernels of this machine, or the plain forms.
const ModelRows& FindModelRows(bool useVectors);

} // namespace vfil

/// \file
/// Row kernels of depths, byte orders and alpha. As in comprows.h a run finds its kernel once.
#pragma once

#include "il/rows/convert/depthparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(DepthRows)

const DepthRows& DepthRowsAt(Level level);
/// The best kernels of this machine, or the plain forms. For [streaming] see kStreamingBytes.
const DepthRows& FindDepthRows(bool useVectors);

} // namespace vfil

/// \file
/// Row kernels of the two-input operators: layers, the masked mix, and over on 4:2:2 rows with an alpha
/// plane. A run finds its kernel once, by Find..., and calls it for each row. Without vectors it gets the
/// plain form, with them the best level of this machine; the bytes are the same.
#pragma once

#include "il/rows/layer/compparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(CompRows)

const CompRows& CompRowsAt(Level level);

template <class Sample>
LayerRow<Sample> FindLayerRow(bool useVectors, LayerOp op, const LayerParams<Sample>& params);

/// \param streaming  see kStreamingBytes.
template <class Sample>
MixRow<Sample> FindMixRow(bool useVectors, bool streaming = false);

OverYuvaRow FindOverYuvaRow(bool useVectors);

} // namespace vfil

/// \file
/// Row kernels of fill and key. As in comprows.h a run finds its kernel once.
#pragma once

#include "il/rows/fillkey/fillkeyparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(FillKeyRows)

const FillKeyRows& FillKeyRowsAt(Level level);

/// Which of a family's kernels a run takes.
struct FillKeyCase {
    bool chromaFirst; ///< in the fill or the key
    bool useVectors;  ///< else the plain form
    bool streaming;   ///< see kStreamingBytes
};

FillKeyRow FindColourRow(const FillKeyCase& which);
FillKeyRow FindAlphaToKeyRow(const FillKeyCase& which);
FillKeyRow FindKeyToAlphaRow(const FillKeyCase& which);

} // namespace vfil

/// \file
/// Row kernels of fill and key. As in comprows.h a run finds its kernel once.
#pragma once

#include "il/rows/keyparams.h"
#include "il/rows/levels.h"

namespace vfil {

const KeyRows& KeyRowsAt(Level level);

/// Which of a family's kernels a run takes.
struct KeyCase {
    bool chromaFirst; ///< in the fill or the key
    bool useVectors;  ///< else the plain form
    bool streaming;   ///< see kStreamingBytes
};

KeyRow FindColourRow(const KeyCase& which);
KeyRow FindAlphaToKeyRow(const KeyCase& which);
KeyRow FindKeyToAlphaRow(const KeyCase& which);

} // namespace vfil

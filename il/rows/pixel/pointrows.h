/// \file
/// Row kernels of the one-input operators: invert and copy. As in comprows.h a run finds its kernel once.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/pixel/pointparams.h"

namespace vfil {

VFIL_DECLARE_FILL(PointRows)

const PointRows& PointRowsAt(Level level);

// For streaming see kStreamingBytes.
template <class Sample>
InvertRow<Sample> FindInvertRow(bool useVectors, bool streaming = false);
template <class Sample>
InvertMono<Sample> FindInvertMono(bool useVectors, bool streaming = false);

/// Copies bytes between ranges that don't overlap.
void CopyBytes(bool useVectors, const void* in, void* out, std::size_t bytes, bool streaming = false);

} // namespace vfil

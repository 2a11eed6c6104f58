/// \file
/// What a run of the spatial frame makes of each output pixel: every sample is looked up by its coordinates.
#pragma once

#include "support/framemodel.h"

#include <vfil/spatial.h>

namespace vfil::test {

struct SpatialCase {
    FrameCase regions;
    vfILEdgeMode edgeMode = VFIL_EDGE_COLOR;
    Pixel edgePixel{};
    long radiusX = 0;
    long radiusY = 0;
};

/// A sample of one channel's window, by its distance from the window's top-left corner.
using WindowSample = std::function<int(long x, long y)>;
/// What becomes of a window.
using WindowRule = std::function<int(const WindowSample&)>;

/// The position in 0 .. size - 1 that \p i stands for, -1 for the edge colour.
long EdgeIndex(vfILEdgeMode mode, long i, long size);

/// The output after a run. The input is read before anything is written.
Snapshot ModelSpatialRun(const SpatialCase& run, const GuardedImage& input, const GuardedImage& output,
                         const WindowRule& rule);

} // namespace vfil::test

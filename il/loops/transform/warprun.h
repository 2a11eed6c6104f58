/// \file
/// The warp of a picture along vectors: by a mesh of cells, and pixel by pixel.
#pragma once

#include "il/rows/transform/samplerows.h"
#include "il/rows/transform/warprows.h"

#include <vfil/processor.h>

namespace vfil {

/// What a warp reads and writes. The vectors are as wide and high as the source; \c first and \c second are
/// how far along them the grid stands in the source and in the output.
struct WarpRun {
    const double* vectorsX;
    const double* vectorsY;
    double first, second;
    long sourceWidth, sourceHeight;
    SampleSource source;
    SampleRow sample; ///< bilinear, of the pixels that the pictures have
    const WarpRows* kernels;
    unsigned char* output;
    long width, height; ///< of the output
};

/// Both poll the interrupt after each row, of cells or of pixels.
/// \tparam kPixelBytes  4 for RGBA, 1 for mono.
template <std::size_t kPixelBytes>
void WarpByMesh(const vfILProcessor& processor, const WarpRun& run);
template <std::size_t kPixelBytes>
void WarpByPixel(const vfILProcessor& processor, const WarpRun& run);

} // namespace vfil

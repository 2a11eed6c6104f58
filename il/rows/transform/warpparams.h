/// \file
/// The kernels of a mesh warp: which pixels the moved cells of a grid cover, and where these come from. A
/// cell lies between two columns and two rows of the grid, which are whole numbers, and its corners move
/// along a vector each: by one factor where it comes from, by another where it goes. Included by the vector
/// sources too.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// A row of cells, between two rows of vectors.
struct WarpCells {
    const double* x[2]; ///< the vectors below and above the cells, one more than there are cells
    const double* y[2];
    std::size_t count;
    double row;            ///< y of the corners below
    double source, target; ///< the factors
    double lastX, lastY;   ///< of the pixels that may be covered, from (0, 0)
};

/// One cell. The corners are in the order lower left, lower right, upper left, upper right.
struct WarpCell {
    double targetX[4], targetY[4];
    double sourceX[4], sourceY[4];
};

/// Pixels that cells cover, and where they come from.
struct WarpHits {
    static constexpr std::size_t kMost = 256;
    std::size_t count;
    double x[kMost], y[kMost];
    double u[kMost], v[kMost];
};

/// Treats the cells from \p first on until one is not regular or there might be more hits than room, and
/// tells which one is next. Hits come cell by cell.
using WarpCellsKernel = std::size_t (*)(const WarpCells& cells, std::size_t first, WarpHits& hits);
/// Tests the pixels (x, y), (x + 1, y) ... of a cell; there is room for all of them.
using WarpPixelsKernel = void (*)(const WarpCell& cell, double x, double y, std::size_t pixels,
                                  WarpHits& hits);
/// Adds the vectors times the factor to the positions of the pixels (x, y), (x + 1, y) ...
using WarpShiftKernel = void (*)(const double* vectorsX, const double* vectorsY, double factor, double x,
                                 double y, std::size_t pixels, double* u, double* v);

struct WarpRows {
    WarpCellsKernel cells;
    WarpPixelsKernel pixels;
    WarpShiftKernel shift;
};

} // namespace vfil

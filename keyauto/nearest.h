/// \file
/// Which chosen cell is nearest.
#pragma once

#include "keyauto/grid.h"

namespace vfil::keyauto {

/// The nearest chosen cell of each cell, and how far it is.
struct Nearest {
    struct Cell {
        long x = -1; ///< -1 when nothing is chosen
        long y = -1;
    };
    Grid<Cell> cell;
    Grid<float> distance; ///< in cells; huge when nothing is chosen
};

/// Nearest chosen cells, found by handing them on from neighbour to neighbour: now and then a hair off.
Nearest FindNearest(const Mask& chosen);

} // namespace vfil::keyauto

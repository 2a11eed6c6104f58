/// \file
/// A matte from the picture itself, as a likeness of the true one.
#pragma once

#include "keyauto/grid.h"
#include "keyauto/regions.h"

namespace vfil::keyauto {

/// What each cell's alpha ought to be, as far as one can tell.
struct Reference {
    Grid<float> alpha;  ///< 0 .. 1
    Grid<float> weight; ///< 0 .. 1: how sure that is
};

Reference EstimateMatte(const Grid<Light>& plate, const Screen& screen, const Regions& regions);

} // namespace vfil::keyauto

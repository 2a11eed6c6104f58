/// \file
/// Where a plate surely shows its screen, where it surely shows something else, and what lies between.
#pragma once

#include "keyauto/grid.h"
#include "keyauto/screen.h"

namespace vfil::keyauto {

struct Regions {
    Mask clear;          ///< screen and nothing else
    Mask solid;          ///< surely none of the screen
    Grid<Light> behind;  ///< the screen as it would be in each cell if nothing stood before it
    Grid<float> outside; ///< distance to the next clear cell
    float edge = 1;      ///< how many cells a usual edge needs from clear to solid
};

Regions FindRegions(const Grid<Light>& plate, const Screen& screen);

} // namespace vfil::keyauto

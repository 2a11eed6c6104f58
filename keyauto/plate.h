/// \file
/// A plate as light, in cells.
#pragma once

#include "keyauto/grid.h"
#include <vfil/host/picture.h>

namespace vfil::keyauto {

/// A picture whose pixels were drawn together to cells where it is large: regions and edges do not need more.
struct Plate {
    const host::Picture* picture = nullptr; ///< RGBA32
    long side = 1;                          ///< pixels of the picture in a cell's side
    Grid<Light> light;                      ///< means of the cells; rows as in the picture
};

/// \param picture RGBA32, at least 1x1; must outlive the plate. Its alpha does not count.
Plate MakePlate(const host::Picture& picture);

/// The byte for an amount of light 0 .. 1, by the curve of sRGB, and the light of a byte.
int ByteOf(float light);
float LightOf(int byte);

} // namespace vfil::keyauto

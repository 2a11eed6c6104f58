/// \file
/// The families that the register is put together from.
#pragma once

#include <catalogue/catalogue.h>

namespace vfil::catalogue {

/// The entries of the layer operators and of the masked mix.
std::vector<Entry> LayerEntries();

/// The entries of the operators that make one pixel of one pixel.
std::vector<Entry> PixelEntries();

} // namespace vfil::catalogue

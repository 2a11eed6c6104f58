/// \file
/// What the entries of the keyers share.
#pragma once

#include <catalogue/entry.h>

namespace vfil::catalogue {

/// The colour to remove, of vfILKeyerBase.
Parameter KeyColor(const Value& fallback);

/// The part that is keyed, of those that heed it.
Parameter CropBox();

} // namespace vfil::catalogue

/// \file
/// What the entries of the keyers share.
#pragma once

#include <catalogue/entry.h>

namespace vfil::catalogue {

/// The colour to remove, of vfILKeyerBase.
Parameter KeyColor(const Value& fallback);

} // namespace vfil::catalogue

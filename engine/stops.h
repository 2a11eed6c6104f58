/// \file
/// Colours at weights from texts.
#pragma once

#include "catalogue/catalogue.h"

#include <string>

namespace vfil::engine {

/// WEIGHT:COLOUR, some of them, of weights 0 .. kLastWeight in any order, each once.
///
/// \throws RequestError
catalogue::Table ParseStops(const catalogue::Parameter& parameter, const std::string& text);

} // namespace vfil::engine

/// \file
/// The values of an operator's parameters, from texts.
#pragma once

#include "engine/settings.h"

#include <catalogue/catalogue.h>

#include <optional>

namespace vfil::engine {

/// \return nothing for a parameter that is not given
///
/// \throws RequestError for a value that makes no sense or is out of range, and for a required one that is
///         not given
std::optional<catalogue::Value> ParameterValue(const catalogue::Parameter& parameter, const Values& values);

} // namespace vfil::engine

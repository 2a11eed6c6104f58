/// \file
/// The values of an operator's parameters, from their options.
#pragma once

#include "tools/vfil/arguments.h"

#include <catalogue/catalogue.h>

#include <optional>

namespace vfil::tool {

/// \return nothing for a parameter that is not given
///
/// \throws RequestError for a value that makes no sense or is out of range, and for a required one that is
///         not given
std::optional<catalogue::Value> ParameterValue(const catalogue::Parameter& parameter,
                                               const Arguments& arguments);

} // namespace vfil::tool

/// \file
/// Values of parameters, and the pictures of operators, as the command shows them.
#pragma once

#include "catalogue/catalogue.h"

#include <string>

namespace vfil::tool {

/// The pictures that an operator reads, as in a usage line: "BACK FRONT", "FILL [KEY]".
std::string PictureNames(const catalogue::Entry& entry);

/// A value of a parameter as one writes it: "0.5", "computed", "yes", "3,-2".
std::string ValueText(const catalogue::Parameter& parameter, const catalogue::Value& value);

/// The default of a parameter in words.
std::string DefaultText(const catalogue::Parameter& parameter);

} // namespace vfil::tool

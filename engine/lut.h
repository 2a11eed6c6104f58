/// \file
/// Look-up tables from files.
#pragma once

#include "catalogue/catalogue.h"

#include <string>

namespace vfil::engine {

/// A table of kCurvePoints rows, one a line; # begins a remark, and numbers stand apart by blanks or commas.
/// Where the parameter takes it, also a 1D table of a .cube file.
///
/// \param parameter Its range is that of the numbers, its form says what the file may be.
/// \throws RequestError with the file and the line
catalogue::Table ReadLut(const catalogue::Parameter& parameter, const std::string& path);

} // namespace vfil::engine

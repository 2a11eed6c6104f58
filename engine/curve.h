/// \file
/// Curves from texts.
#pragma once

#include "catalogue/catalogue.h"

#include <string>

namespace vfil::engine {

/// A curve of whole numbers: kCurvePoints of them, or points X:Y of ascending X that straight lines join, and
/// that are continued level on both sides.
///
/// \param parameter Its range is that of the numbers.
/// \throws RequestError that does not say where the text is from
catalogue::Table ParseCurve(const catalogue::Parameter& parameter, const std::string& text);

} // namespace vfil::engine

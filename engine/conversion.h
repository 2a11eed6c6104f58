/// \file
/// The way from one pixel format to another, by the converters of the catalogue.
#pragma once

#include "catalogue/catalogue.h"

#include <optional>
#include <vector>

namespace vfil::engine {

/// One converter and the format that it makes.
struct ConversionHop {
    const catalogue::Entry* entry = nullptr;
    GUID to{};
    bool turnsOver = false; ///< the converter leaves the picture upside down
};

/// Converters one behind the other. Without any the picture stays as it is.
using Conversion = std::vector<ConversionHop>;

/// The shortest way between two formats, of two converters at most; empty between equal ones, none where
/// there is no way. Of equally short ways the one that keeps the depth and alpha is taken.
std::optional<Conversion> FindConversion(const GUID& from, const GUID& to);

} // namespace vfil::engine

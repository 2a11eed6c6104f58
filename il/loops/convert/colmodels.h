/// \file
/// The colour models of three components, each as a pair of functions from and to red, green and blue.
#pragma once

#include <vfil/pxformat.h>

#include <array>

namespace vfil {

/// Red, green and blue, or the three components of a model in the order of vfILColor's getters.
using Triple = std::array<double, 3>;

struct ColorModel {
    PXColorModel id;
    Triple (*fromRgb)(const Triple& rgb);
    Triple (*toRgb)(const Triple& components);
};

/// Null for MONO and CMYK, which have not three components, and for an unknown model.
const ColorModel* FindColorModel(PXColorModel id);

} // namespace vfil

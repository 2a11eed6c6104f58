/// \file
/// The colour models of three components, each as a pair of functions from and to red, green and blue.
#pragma once

#include <vfil/color.h>

#include <array>

namespace vfil {

/// Red, green and blue, or the three components of a model in the order of vfILColor's getters.
using Triple = std::array<double, 3>;

struct ColorModel {
    PXColorModel id;
    Triple (*fromRgb)(const Triple& rgb);
    Triple (*toRgb)(const Triple& components);
};

/// The studio-range matrices of a YCC model, in both directions.
struct YccMatrices {
    const vfILColorMatrix& fromRgb;
    const vfILColorMatrix& toRgb;
};

/// Those of BT.601 for YCC, else those of BT.709.
const YccMatrices& MatricesOf(PXColorModel model);

/// Null for MONO and CMYK, which have not three components, and for an unknown model.
const ColorModel* FindColorModel(PXColorModel id);

} // namespace vfil

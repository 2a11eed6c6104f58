/// \file
/// The numbers that the legalizer's kernels take, from the matrices of the colour standards.
#pragma once

#include "il/rows/treat/legalparams.h"

#include <vfil/pxformat.h>

namespace vfil {

/// \param model   PXColorModel_YCC for BT.601, any other for BT.709.
/// \param factor  Per cent of the way to the legal range that luma moves; limited to 0 .. 100, 0 for NaN.
LegalParams LegalParamsOf(PXColorModel model, double factor);

} // namespace vfil

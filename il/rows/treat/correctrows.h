/// \file
/// Row kernels of colour correction in RGBA. As in comprows.h a run finds its kernel once.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/treat/correctparams.h"

namespace vfil {

VFIL_DECLARE_FILL(CorrectRows)

const CorrectRows& CorrectRowsAt(Level level);

/// \param useVectors  Else the plain forms.
const CorrectRows& FindCorrectRows(bool useVectors);

/// Whether the vector forms have room for a correction: factors of 16 bits, sums of 32. A matrix that no
/// picture survives may need more, and so takes the plain forms.
///
/// \param most  The highest sample.
bool FitsVectors(const Correction& correction, std::int32_t most);

} // namespace vfil

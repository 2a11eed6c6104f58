/// \file
/// Row kernels of colour correction in 4:2:2. As in comprows.h a run finds its kernel once.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/treat/correctparams.h"

namespace vfil {

VFIL_DECLARE_FILL(CorrectPairRows)

const CorrectPairRows& CorrectPairRowsAt(Level level);

/// \param useVectors  Else the plain forms. For the pairs ask FitsVectors.
const CorrectPairRows& FindCorrectPairRows(bool useVectors);

/// Alpha by the first and the last element of the fourth column, and by the table: as 256 bytes.
void MakeAlphaTable(const Correction& correction, std::uint8_t (&table)[256]);

} // namespace vfil

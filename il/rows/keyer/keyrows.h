/// \file
/// Row kernels of the RGBA keyers. As in comprows.h a run finds its kernel once, here also by the parameters:
/// beyond the range of those that Verify takes, sums outgrow the vector forms.
#pragma once

#include "il/rows/keyer/keyparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(KeyRows)

const KeyRows& KeyRowsAt(Level level);

/// The share of a colour that is left by a key, limited to 0 .. 1.
double MatteOfKey(double key);

/// Fills a table of kSectorMattes with what the plain form makes of each chroma.
void MakeSectorMattes(const SectorKeyParams& params, std::uint8_t* mattes);

// For streaming see kStreamingBytes.

/// The vector form where there is a table of mattes, else the plain one.
KeyRow<SectorKeyParams> FindKeyRow(bool useVectors, bool streaming, const SectorKeyParams& params);
KeyRow<BlueGreenKeyParams> FindKeyRow(bool useVectors, bool streaming, const BlueGreenKeyParams& params);
KeyRow<LinearKeyParams> FindKeyRow(bool useVectors, bool streaming, const LinearKeyParams& params);
KeyRow<LumaKeyParams> FindKeyRow(bool useVectors, bool streaming, const LumaKeyParams& params);

} // namespace vfil

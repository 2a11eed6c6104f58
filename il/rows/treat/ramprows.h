/// \file
/// Row kernels of the colour ramps. As in comprows.h a run finds its kernels once.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/treat/rampparams.h"

namespace vfil {

VFIL_DECLARE_FILL(RampRows)

const RampRows& RampRowsAt(Level level);

// For streaming see kStreamingBytes.
template <class Sample>
RampRow<Sample> FindRampRow(bool useVectors, bool streaming = false);
PlaceRow<LinearPlaces> FindLinearRow(bool useVectors);
PlaceRow<RadialPlaces> FindRadialRow(bool useVectors);
/// \param entryBytes 1, 2, 4 or 8
LookUpRow FindLookUpRow(bool useVectors, bool streaming, std::size_t entryBytes);

} // namespace vfil

/// \file
/// Row kernels that paint colours of a table by the places of pixels. As in comprows.h a run finds its
/// kernels once.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/treat/placeparams.h"

namespace vfil {

VFIL_DECLARE_FILL(PlaceRows)

const PlaceRows& PlaceRowsAt(Level level);

// For streaming see kStreamingBytes.

/// \param entryBytes 1, 2, 4 or 8
PlaceRow<LinearPlaces> FindLinearRow(bool useVectors, bool streaming, std::size_t entryBytes);
PlaceRow<RadialPlaces> FindRadialRow(bool useVectors, bool streaming, std::size_t entryBytes);

/// The index of the first pixel, as the kernels have it.
std::int32_t IndexOf(const LinearPlaces& places);
std::int32_t IndexOf(const RadialPlaces& places);

} // namespace vfil

/// \file
/// The two-pass resampler over whole pictures.
#pragma once

#include "il/loops/transform/panzoomparams.h"

namespace vfil {

/// Writes the effect box; does nothing for pictures that no run could use. False when memory is short.
bool RunPanZoom(const PanZoomRun& run);

} // namespace vfil

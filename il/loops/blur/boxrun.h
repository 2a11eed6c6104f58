/// \file
/// The box blur: the sums of the windows' columns move down a row at a time, and a row's results are running
/// sums of these, so that the cost does not depend on the radius.
#pragma once

#include "il/loops/frame/rowloop.h"

#include <vfil/spatial.h>

namespace vfil {

using BoxFormats = FormatList<Rgba8, Mono8>;

/// Blurs what a run computes. False when memory is short.
///
/// \param filter  It reads its input itself, and tells when to stop.
/// \param radius  Of the windows. The run's may be less, but not less than the input's size: what is farther
///                away repeats.
/// \param format  Of the pictures; another than BoxFormats' is left alone.
bool RunBox(const vfILMonadicSpatialProc& filter, vfILWindowRun& run, const vfILVector2l& radius,
            const GUID& format, bool useVectors);

} // namespace vfil

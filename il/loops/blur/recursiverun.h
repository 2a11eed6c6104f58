/// \file
/// The blurs whose cost does not depend on the radius: recursive filters down and up the columns, then along
/// the rows both ways.
#pragma once

#include "il/loops/blur/recursion.h"

#include <vfil/spatial.h>

namespace vfil {

struct RecursiveBlur {
    RecursionDesign x, y; ///< the filters of both axes
    bool isFixed;         ///< 8-bit formats are filtered in fixed point
};

/// Blurs what a run computes, its rows from the last one up. False when memory is short.
///
/// \param filter  It reads its input itself, and tells when to stop.
/// \param format  Of the pictures.
bool RunRecursiveBlur(const vfILMonadicSpatialProc& filter, const vfILWindowRun& run,
                      const RecursiveBlur& blur, const GUID& format, bool useVectors);

} // namespace vfil

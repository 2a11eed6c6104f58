/// \file
/// The rows of a deinterlaced frame.
#pragma once

#include <vfil/fields.h>

namespace vfil {

/// How missing rows are made.
struct DeinterlaceRule {
    vfILInterpolationType type;
    double minThreshold;
    double maxThreshold;
    bool useVectors;
};

/// Writes the rows of the outputs that the run has. Stops quietly after a row when the interrupt is set.
void Deinterlace(const vfILProcessor& processor, const vfILDeinterlaceRun& run, const DeinterlaceRule& rule);

} // namespace vfil

/// \file
/// The kernel that projects the pixels of a line.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/transform/projectparams.h"

namespace vfil {

/// True when w is not 0, and of a wanted sign.
bool IsBefore(double w, ProjectSign sign);

const ProjectRows& ProjectRowsAt(Level level);
ProjectKernel FindProjectKernel(bool useVectors);

} // namespace vfil

/// \file
/// The vector forms of the sampling kernels.
#include "il/rows/transform/sampleparams.h"

namespace vfil::VFIL_LEVEL {

void Fill(SampleRows&)
{}

} // namespace vfil::VFIL_LEVEL

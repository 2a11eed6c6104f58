/// \file
/// How many frames of each signal belong together, and which beside them a run looks at. Private to the
/// engine.
#pragma once

#include "engine/jobplan.h"

namespace vfil::engine {

/// Settles the frames of all signals and the runs of all steps of a time. The steps stand in order.
void PlanTimes(JobPlan& plan);

} // namespace vfil::engine

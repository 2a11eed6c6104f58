/// \file
/// What a run says of itself.
#pragma once

#include "tools/vfil/jobplan.h"
#include "tools/vfil/outputs.h"
#include "tools/vfil/stopwatch.h"

#include <string>

namespace vfil::tool {

/// What a run has to tell when it is done.
struct RunResult {
    Stopwatch watch;
    long frames = 0; ///< of clips
    double framesPerSecond = 0;
};

/// A line on standard error, unless the run is quiet.
void Remark(const JobPlan& plan, const std::string& text);

/// Before a run: what the user should know, and with --verbose the conversions that were inserted.
void AnnounceRun(const JobPlan& plan);

/// After a run: a line for each file, or a record. On standard error when standard output has a clip.
void ReportRun(const JobPlan& plan, const Outputs& outputs, const RunResult& result);

} // namespace vfil::tool

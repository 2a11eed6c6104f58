/// \file
/// The run of a job by the command: what it says of itself, before, meanwhile and after.
#pragma once

#include "engine/checkjob.h"
#include "tools/vfil/request.h"

namespace vfil::tool {

/// Runs a job, and reports on standard output, or on standard error when a clip goes to standard output.
///
/// \throws RequestError, RunError, Interrupted, host::FileError
void RunAndReport(const engine::CheckedJob& job, const ReportSettings& settings);

} // namespace vfil::tool

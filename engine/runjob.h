/// \file
/// The run of a job.
#pragma once

#include "engine/checkjob.h"
#include "engine/probe.h"
#include "engine/runevents.h"

namespace vfil::engine {

/// Runs a job on all frames, once. After an interrupt the clips are finished with the frames so far.
///
/// \param probe Sees the steps at work; may be null.
/// \throws RequestError, RunError, Interrupted, host::FileError, host::PipeClosed
RunResult RunJob(const CheckedJob& job, RunEvents& events, Probe* probe = nullptr);

} // namespace vfil::engine

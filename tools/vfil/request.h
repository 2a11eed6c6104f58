/// \file
/// What the user asked for, understood but not yet held against the pictures.
#pragma once

#include "engine/job.h"
#include "tools/vfil/arguments.h"
#include "tools/vfil/wording.h"

namespace vfil::tool {

enum class ProgressStyle { Auto, None, Json };

/// What the user wants to be told of a run.
struct ReportSettings {
    ProgressStyle progress = ProgressStyle::Auto; ///< Auto: a bar when standard error is a terminal
    bool json = false;
    bool quiet = false;
    bool verbose = false;
    Wording wording = Wording::Options;
};

/// The job of an operator's command line.
///
/// \throws RequestError for a wrong count of pictures and for a value that does not make sense; so do the
/// others.
engine::Job MakeJob(const catalogue::Entry& entry, const Arguments& arguments);

/// The job of "vfil convert".
engine::Job MakeConvertJob(const Arguments& arguments);

/// What RunOptions say of the run, ...
engine::RunSettings MakeSettings(const Arguments& arguments);
/// ... and of what is said about it.
ReportSettings MakeReportSettings(const Arguments& arguments);

} // namespace vfil::tool

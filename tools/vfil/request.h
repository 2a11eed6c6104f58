/// \file
/// What the user asked for, understood but not yet held against the pictures.
#pragma once

#include "tools/vfil/arguments.h"
#include "tools/vfil/job.h"

#include <string>

namespace vfil::tool {

/// The job of an operator's command line.
///
/// \throws RequestError for a wrong count of pictures and for a value that does not make sense; so do the
/// others.
Job MakeJob(const catalogue::Entry& entry, const Arguments& arguments);

/// The job of "vfil convert".
Job MakeConvertJob(const Arguments& arguments);

// The parts of a job, from options of these names. What is no option stays empty: names, paths, `where`.

/// A step by ParameterOptions and StepOptions; the input of its mask is the FILE of --mask.
Step MakeStep(const catalogue::Entry& entry, const Arguments& arguments);
/// A source by SourceOptions.
Source MakeSource(const std::string& name, const std::string& path, const Arguments& arguments);
/// A sink by SinkOptions.
Sink MakeSink(const std::string& path, const std::string& result, const Arguments& arguments);
/// What RunOptions say.
RunSettings MakeSettings(const Arguments& arguments);

/// Format and size of .raw pictures from --in-format and --in-size.
host::ReadOptions RawOptions(const Arguments& arguments);
/// What is known better than a clip says.
host::VideoOverrides Overrides(const Arguments& arguments);

/// Whether the name is that of a raw picture.
bool IsRaw(const std::string& path);

} // namespace vfil::tool

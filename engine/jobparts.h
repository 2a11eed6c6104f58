/// \file
/// The parts of a job, from texts for their settings. What is no setting stays empty: names of inputs and
/// results, places.
#pragma once

#include "engine/job.h"
#include "engine/settings.h"

#include <string>

namespace vfil::engine {

/// A step by SettingsOfStep; the input of its mask is the FILE of "mask".
///
/// \throws RequestError for a text that does not make sense; so do the others.
Step MakeStep(const catalogue::Entry& entry, const Values& values);
/// A source by SourceSettings.
Source MakeSource(const std::string& name, const std::string& path, const Values& values);
/// A sink by SinkSettings.
Sink MakeSink(const std::string& path, const std::string& result, const Values& values);

/// Format and size of .raw pictures from "in-format" and "in-size".
host::ReadOptions RawOptions(const Values& values);
/// What is known better than a clip says.
host::VideoOverrides Overrides(const Values& values);

} // namespace vfil::engine

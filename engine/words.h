/// \file
/// Formats, channels, sizes and ranges in words, for messages and for faces.
#pragma once

#include "catalogue/catalogue.h"

#include <string>
#include <vector>

namespace vfil::engine {

/// The names of formats: "rgba32, rgba64".
std::string FormatNames(const std::vector<GUID>& formats);

/// The letters of the channels in a mode: "rgba".
std::string ChannelLetters(unsigned long mode);

/// "720x576"
std::string SizeText(long width, long height);

/// The names of a parameter's choices.
std::vector<std::string> ChoiceNames(const catalogue::Parameter& parameter);

/// The values that a parameter takes, in words: "0 .. 1", "zero, full, computed".
std::string RangeText(const catalogue::Parameter& parameter);

} // namespace vfil::engine

/// \file
/// The words of the command for what the engine has to say.
#pragma once

#include "engine/failure.h"

#include <string>

namespace vfil::tool {

/// Where the user has set what a message speaks of.
enum class Wording {
    Options, ///< on the command line: --roi
    Entries, ///< in a chain file, as far as it is not of the run as a whole: roi
};

/// A message as a line.
std::string LineOf(const engine::Message& message, Wording wording);
/// A fault as a line.
std::string LineOf(const engine::Fault& fault, Wording wording);

} // namespace vfil::tool

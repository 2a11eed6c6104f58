/// \file
/// Chain files: a job written down.
#pragma once

#include "engine/checkjob.h"

#include <map>
#include <string>

namespace vfil::engine {

/// Files for the names of a chain's inputs or outputs.
using ChainFiles = std::map<std::string, std::string>;

/// Reads a chain file and checks it as a whole, as CheckJob does; beyond that everything in it must be used.
///
/// \param inputs, outputs  Files that take the place of those in the chain.
/// \throws RequestError  What is wrong, with its place in the file.
/// \throws host::FileError
CheckedJob CheckChain(const std::string& path, const ChainFiles& inputs, const ChainFiles& outputs,
                      const RunSettings& settings);

} // namespace vfil::engine

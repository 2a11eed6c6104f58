/// \file
/// Chain files: a job written down. vfil run.
#pragma once

#include "tools/vfil/arguments.h"

#include <vector>

namespace vfil::tool {

/// The options of "vfil run".
const std::vector<Option>& ChainOptions();

/// Reads chain files; checks each as a whole and runs it before the next.
///
/// \param arguments Its words are the names of the files.
/// \throws RequestError  What is wrong in a file, behind "FILE:LINE: ".
/// \throws RunError, Interrupted, host::FileError
void RunChains(const Arguments& arguments);

} // namespace vfil::tool

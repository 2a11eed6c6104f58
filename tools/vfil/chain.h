/// \file
/// vfil run: chains that stand in files.
#pragma once

#include "tools/vfil/arguments.h"

namespace vfil::tool {

/// Checks each chain file as a whole and runs it before the next.
///
/// \param arguments Its words are the names of the files.
/// \throws RequestError  What is wrong in a file, with its place.
/// \throws RunError, Interrupted, host::FileError
void RunChains(const Arguments& arguments);

} // namespace vfil::tool

/// \file
/// The run of an operator on picture files.
#pragma once

#include "tools/vfil/plan.h"

namespace vfil::tool {

/// Reads the pictures, runs the operator, writes the result and reports it on standard output.
///
/// \throws RequestError, RunError, Interrupted, host::FileError
void RunOperator(const Plan& plan);

} // namespace vfil::tool

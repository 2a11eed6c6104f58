/// \file
/// The commands that are not operators.
#pragma once

#include "tools/vfil/arguments.h"

#include <string>

namespace vfil::tool {

/// Lists the operators.
void RunList(const Arguments& arguments);

/// Shows what picture files hold. A file that cannot be read gets its line on standard error, and the others
/// are shown.
///
/// \return the exit status
int RunInfo(const Arguments& arguments);

/// Compares a matte with the true one.
void RunScore(const Arguments& arguments);

/// Measures how the fields of a clip follow each other in time, beside what the clip says.
///
/// \return the exit status: kRunFailed when a check is asked for and the two differ
int RunFields(const Arguments& arguments);

/// Finds keyer and parameters for a plate, and runs them where a result is asked for.
void RunKeyAuto(const Arguments& arguments);

/// Explains an operator, or the command.
void RunHelp(const Arguments& arguments);

/// The bash completion script.
std::string BashCompletion();

/// The manual page.
std::string ManPage();

} // namespace vfil::tool

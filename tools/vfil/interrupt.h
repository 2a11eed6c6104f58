/// \file
/// The interrupt key.
#pragma once

namespace vfil::tool {

/// From now on an interrupt or a termination request sets the flag instead of ending the program, and a
/// closed pipe is an error of writing.
void CatchInterrupts();

/// Not 0 once the user wants to stop; for RunSettings::interrupt.
volatile long* InterruptFlag();

} // namespace vfil::tool

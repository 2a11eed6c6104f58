/// \file
/// The wish to stop a run.
#pragma once

#include "engine/failure.h"

namespace vfil::engine {

/// \param flag  Of RunSettings; may be null.
/// \throws Interrupted when the flag is set.
inline void StopIfInterrupted(const volatile long* flag)
{
    if (flag && *flag != 0) throw Interrupted();
}

} // namespace vfil::engine

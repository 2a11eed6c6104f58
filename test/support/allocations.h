/// \file
/// Makes allocations fail and counts them, in the test programs that are built of allocations.cpp too: it
/// replaces operator new.
#pragma once

#include "support/guardedimage.h"

#include <vfil/frame.h>

#include <limits>

namespace vfil::test {

struct Allocations {
    /// So many bytes and more can't be had. What no machine has is refused without asking.
    std::size_t failFrom = std::size_t{1} << 30;
    // Of the form by which runs and matrices allocate, new (std::nothrow) T[]:
    long granted = std::numeric_limits<long>::max(); ///< how many succeed before one does not
    int count = 0;
    std::size_t largest = 0;
};
inline Allocations g_allocations;

/// Refuses the first, the second ... allocation of a run, until a run wants no more. Expects each of these
/// runs to fail with 0x10001 and to leave the output alone. How many there were.
long CountRefusedRuns(vfILImgProc& processor, const GuardedImage& output);

} // namespace vfil::test

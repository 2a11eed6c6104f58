/// \file
/// Makes large allocations fail, in the test programs that are built of failingnew.cpp too: it replaces
/// operator new.
#pragma once

#include <cstddef>
#include <limits>

namespace vfil::test {

inline constexpr std::size_t kNeverFail = std::numeric_limits<std::size_t>::max();
/// Allocations of so many bytes and more can't be had.
inline std::size_t g_failFrom = kNeverFail;

} // namespace vfil::test

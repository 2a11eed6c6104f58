/// \file
/// The exit statuses of the command.
#pragma once

namespace vfil::tool {

inline constexpr int kDone = 0;
inline constexpr int kRunFailed = 1;
inline constexpr int kWrongRequest = 2;
inline constexpr int kInterrupted = 130;

} // namespace vfil::tool

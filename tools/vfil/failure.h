/// \file
/// How the command fails: the exit statuses, and the exceptions that lead to them. Each carries one line.
#pragma once

#include <stdexcept>

namespace vfil::tool {

inline constexpr int kDone = 0;
inline constexpr int kRunFailed = 1;
inline constexpr int kWrongRequest = 2;
inline constexpr int kInterrupted = 130;

/// The request was wrong; what() says what would be right.
class RequestError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The request was right, and the run failed.
class RunError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The user stopped the run.
class Interrupted : public std::runtime_error {
public:
    Interrupted() : std::runtime_error("interrupted") {}
};

} // namespace vfil::tool

/// \file
/// Memory that runs out on demand. A program that uses this has its operators new and delete replaced.
#pragma once

#include <cstddef>

namespace vfil::test {

/// While it lives, allocations of so many bytes and more fail.
class ShortMemory {
public:
    explicit ShortMemory(std::size_t failFrom);
    ShortMemory(const ShortMemory&) = delete;
    ShortMemory& operator=(const ShortMemory&) = delete;
    ~ShortMemory();
};

} // namespace vfil::test

/// \file
/// Allocations of runs that are refused, one run after the other. A test program includes this in one source.
#pragma once

#include <vfil/frame.h>

#include <gtest/gtest.h>

#include <limits>
#include <new>

namespace vfil::test {

/// Allocations that are still granted.
inline long g_granted = std::numeric_limits<long>::max();

/// Refuses the first, the second ... allocation of a run until a run wants no more, and expects each of these
/// runs to fail with 0x10001. How many there were.
inline long CountRefusedRuns(vfILImgProc& processor)
{
    for (long granted = 0;; ++granted) {
        processor.SetLastError(vfILError());
        g_granted = granted;
        const vfILStatus status = processor.Execute();
        const bool isRefused = g_granted < 0;
        g_granted = std::numeric_limits<long>::max();
        if (!isRefused) {
            EXPECT_EQ(status, VFIL_SUCCESS);
            return granted;
        }
        EXPECT_EQ(status, VFIL_FAILURE) << "allocation " << granted;
        EXPECT_EQ(processor.GetLastError().GetErrorCode(), 0x10001U) << "allocation " << granted;
    }
}

} // namespace vfil::test

// The form by which runs allocate. What no machine has is refused without asking.
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    if (--vfil::test::g_granted < 0 || bytes > std::size_t{1} << 32) return nullptr;
    return operator new[](bytes);
}

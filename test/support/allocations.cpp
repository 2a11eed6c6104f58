#include "support/allocations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <new>

using namespace vfil::test;

long vfil::test::CountRefusedRuns(vfILImgProc& processor, const GuardedImage& output)
{
    const std::vector<std::uint8_t> before = output.Bytes();
    for (long granted = 0;; ++granted) {
        processor.SetLastError(vfILError());
        g_allocations.granted = granted;
        const vfILStatus status = processor.Execute();
        const bool isRefused = g_allocations.granted < 0;
        g_allocations = {};
        EXPECT_EQ(status, isRefused ? VFIL_FAILURE : VFIL_SUCCESS) << "allocation " << granted;
        if (!isRefused) return granted;
        EXPECT_EQ(processor.GetLastError().GetErrorCode(), 0x10001U) << "allocation " << granted;
        EXPECT_EQ(before, output.Bytes()) << "allocation " << granted;
    }
}

namespace {

void* Allocate(std::size_t bytes) noexcept
{
    return bytes < g_allocations.failFrom ? std::malloc(std::max<std::size_t>(bytes, 1)) : nullptr;
}

} // namespace

// All forms, since a sanitizer has its own of each and compares those that take with those that give back.
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    return Allocate(bytes);
}

void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    if (g_allocations.granted-- == 0) return nullptr;
    ++g_allocations.count;
    g_allocations.largest = std::max(g_allocations.largest, bytes);
    return Allocate(bytes);
}

void* operator new(std::size_t bytes)
{
    void* const memory = Allocate(bytes);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

void* operator new[](std::size_t bytes)
{
    return operator new(bytes);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

#include "support/shortmemory.h"

#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> g_failFrom{SIZE_MAX};

} // namespace

namespace vfil::test {

ShortMemory::ShortMemory(std::size_t failFrom)
{
    g_failFrom = failFrom;
}

ShortMemory::~ShortMemory()
{
    g_failFrom = SIZE_MAX;
}

} // namespace vfil::test

// Every form comes here, so that none is left to a sanitizer's own allocator.
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    return bytes >= g_failFrom ? nullptr : std::malloc(bytes ? bytes : 1);
}

void* operator new(std::size_t bytes)
{
    if (void* memory = operator new(bytes, std::nothrow)) return memory;
    throw std::bad_alloc();
}

void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    return operator new(bytes, std::nothrow);
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

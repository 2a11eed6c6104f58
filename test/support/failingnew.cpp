#include "support/failingnew.h"

#include <cstdlib>
#include <new>

namespace {

void* Allocate(std::size_t bytes) noexcept
{
    return bytes < vfil::test::g_failFrom ? std::malloc(bytes == 0 ? 1 : bytes) : nullptr;
}

} // namespace

// All forms, since a sanitizer has its own of each and compares those that take with those that give back.
void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    return Allocate(bytes);
}

void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
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

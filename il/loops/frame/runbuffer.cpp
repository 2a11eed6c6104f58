/// \file
/// The memory of a run.

#include <vfil/run.h>

#include <cstdint>
#include <limits>
#include <new>

namespace {

constexpr std::size_t kLine = 64; // of the cache

} // namespace

vfILRunBuffer::vfILRunBuffer(const vfILRunBuffer&) : vfILRunBuffer()
{}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): nothing is assigned
vfILRunBuffer& vfILRunBuffer::operator=(const vfILRunBuffer&)
{
    return *this;
}

vfILRunBuffer::~vfILRunBuffer()
{
    Free();
}

unsigned char* vfILRunBuffer::Allocate(std::size_t bytes)
{
    Free();
    // More is beyond the reach of a pointer difference.
    constexpr std::size_t kMost = std::numeric_limits<std::ptrdiff_t>::max() - kLine;
    if (bytes > kMost) return nullptr;
    m_memory = new (std::nothrow) unsigned char[bytes + kLine];
    if (m_memory == nullptr) return nullptr;
    return m_memory + (kLine - reinterpret_cast<std::uintptr_t>(m_memory) % kLine) % kLine;
}

void vfILRunBuffer::Free()
{
    delete[] m_memory;
    m_memory = nullptr;
}

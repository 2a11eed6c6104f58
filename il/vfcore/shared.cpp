/// \file
/// The shared bytes: a block that begins with the number of its owners.

#include <vfil/shared.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <new>

namespace {

struct alignas(std::max_align_t) Head {
    std::atomic<std::size_t> owners{1};
};

Head* HeadOf(void* bytes)
{
    return static_cast<Head*>(bytes) - 1;
}

} // namespace

vfILSharedBytes::vfILSharedBytes(std::size_t count) noexcept
{
    if (count > PTRDIFF_MAX - sizeof(Head)) return;
    void* const block = ::operator new(sizeof(Head) + count, std::nothrow);
    if (block == nullptr) return;
    Head* const head = ::new (block) Head;
    m_bytes = head + 1;
    std::memset(m_bytes, 0, count);
}

void vfILSharedBytes::AddOwner() noexcept
{
    HeadOf(m_bytes)->owners.fetch_add(1, std::memory_order_relaxed);
}

void vfILSharedBytes::RemoveOwner() noexcept
{
    // What the other owners did to the bytes is done before they go.
    if (HeadOf(m_bytes)->owners.fetch_sub(1, std::memory_order_acq_rel) == 1)
        ::operator delete(static_cast<void*>(HeadOf(m_bytes)));
}

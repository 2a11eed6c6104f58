/// \file
/// A block of bytes with several owners: what the copies of a value share.
#pragma once

#include <vfil/export.h>

#include <cstddef>

/// Bytes that live as long as one of the objects that share them. Objects may be copied and end on any
/// thread; the bytes themselves have no lock.
class VFIL_API vfILSharedBytes {
public:
    /// Shares nothing.
    vfILSharedBytes() noexcept = default;
    /// \param count That many bytes of 0, aligned for any plain type. None when memory runs out.
    explicit vfILSharedBytes(std::size_t count) noexcept;
    vfILSharedBytes(const vfILSharedBytes& other) noexcept : m_bytes(other.m_bytes)
    {
        if (m_bytes != nullptr) AddOwner();
    }
    vfILSharedBytes& operator=(const vfILSharedBytes& other) noexcept
    {
        vfILSharedBytes copy(other);
        void* const own = m_bytes;
        m_bytes = copy.m_bytes;
        copy.m_bytes = own;
        return *this;
    }
    ~vfILSharedBytes()
    {
        if (m_bytes != nullptr) RemoveOwner();
    }

    /// Null for none.
    void* Get() const noexcept { return m_bytes; }

private:
    void AddOwner() noexcept;
    void RemoveOwner() noexcept;

    void* m_bytes = nullptr;
};

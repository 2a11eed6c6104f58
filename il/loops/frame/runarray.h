/// \file
/// Arrays that live for a part of a run, and whose absence is no exception.
#pragma once

#include <vfil/frame.h>

#include <limits>
#include <memory>

namespace vfil {

/// An array of numbers or pointers, not set to anything. It begins with a line of the cache, so that no
/// vector of it lies across two.
template <class Element>
class RunArray {
public:
    /// False when memory is short.
    bool Allocate(std::size_t count)
    {
        constexpr std::size_t kMost = std::numeric_limits<std::ptrdiff_t>::max() - kLine;
        m_first = nullptr;
        if (count > kMost / sizeof(Element)) return false;
        std::size_t bytes = count * sizeof(Element) + kLine;
        void* memory = m_buffer.Allocate(bytes);
        if (memory == nullptr) return false;
        m_first = static_cast<Element*>(std::align(kLine, count * sizeof(Element), memory, bytes));
        return true;
    }
    Element* Data() const { return m_first; }
    Element& operator[](std::size_t index) const { return m_first[index]; }

private:
    static constexpr std::size_t kLine = 64;

    vfILRunBuffer m_buffer;
    Element* m_first = nullptr;
};

} // namespace vfil

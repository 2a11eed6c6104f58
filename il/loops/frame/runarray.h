/// \file
/// Arrays that live for a part of a run: a run's memory by elements, with its policy for short memory.
#pragma once

#include <vfil/run.h>

#include <limits>

namespace vfil {

/// An array of numbers or pointers, not set to anything.
template <class Element>
class RunArray {
public:
    /// False when memory is short.
    bool Allocate(std::size_t count)
    {
        constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max() / sizeof(Element);
        m_first =
            count > kMost ? nullptr : reinterpret_cast<Element*>(m_buffer.Allocate(count * sizeof(Element)));
        return m_first != nullptr;
    }
    Element* Data() const { return m_first; }
    Element& operator[](std::size_t index) const { return m_first[index]; }

private:
    vfILRunBuffer m_buffer;
    Element* m_first = nullptr;
};

} // namespace vfil

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

/// Rows of a longer sequence, each in the place of one that is no longer needed.
template <class Element>
class RowRing {
public:
    /// False when memory is short.
    bool Allocate(long rows, std::size_t rowElements)
    {
        constexpr std::size_t kMost = std::numeric_limits<std::ptrdiff_t>::max();
        m_rows = rows;
        m_rowElements = rowElements;
        return static_cast<std::size_t>(rows) <= kMost / rowElements &&
               m_elements.Allocate(static_cast<std::size_t>(rows) * rowElements);
    }
    Element* Row(long index) const
    {
        return m_elements.Data() + static_cast<std::size_t>(index % m_rows) * m_rowElements;
    }
    long Rows() const { return m_rows; }
    /// Rows from one on that lie one behind the other.
    long RowsOnwards(long index) const { return m_rows - index % m_rows; }
    /// Rows from one back that lie one before the other.
    long RowsBackwards(long index) const { return index % m_rows + 1; }

private:
    RunArray<Element> m_elements;
    long m_rows = 0;
    std::size_t m_rowElements = 0;
};

} // namespace vfil

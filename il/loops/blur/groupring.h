/// \file
/// The rows of sequences side by side, of which as many are kept as a recursion still reads.
#pragma once

#include "il/rows/blur/recursionparams.h"

#include <cstddef>

namespace vfil {

/// Rows of a longer sequence, each in the place of one that is no longer needed. What a group of sequences
/// has in all rows lies together, so that the steps of a recursion go on through memory.
template <class Element, std::size_t group>
class GroupRing {
public:
    /// \param elements  Room for the rows of all groups.
    void Place(Element* elements, long rows)
    {
        m_elements = elements;
        m_rows = rows;
    }
    Element* Row(long index) const { return m_elements + index % m_rows * kStep; }
    /// Elements from a group to the next.
    std::ptrdiff_t Across() const { return m_rows * kStep; }
    /// The rows from one on; before it for a direction of -1.
    SequenceRow<Element> From(long index, int direction) const
    {
        return {Row(index), direction * kStep, Across()};
    }
    long Rows() const { return m_rows; }
    /// Rows from one on that lie one behind the other.
    long RowsOnwards(long index) const { return m_rows - index % m_rows; }
    /// Rows from one back that lie one before the other.
    long RowsBackwards(long index) const { return index % m_rows + 1; }

private:
    static constexpr auto kStep = static_cast<std::ptrdiff_t>(group);

    Element* m_elements = nullptr;
    long m_rows = 0;
};

} // namespace vfil

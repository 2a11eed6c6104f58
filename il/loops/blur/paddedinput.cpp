/// \file
/// Which columns of what the windows cover are read, and which only repeat them.

#include "il/loops/blur/paddedinput.h"

#include <algorithm>
#include <cstring>
#include <numeric>

namespace vfil {

bool PaddedInput::Prepare()
{
    if (!FindColumns()) return false;
    const auto rowBytes = static_cast<std::size_t>(m_columns * m_input.RowPixelBytes());
    return m_rows.Allocate(kRowsAtOnce * rowBytes);
}

/// Columns beyond an edge are those of the picture again, or one of the edge colour. Which ones they are the
/// edge rule tells by itself, of a row of numbers.
bool PaddedInput::FindColumns()
{
    const auto picture = static_cast<std::size_t>(m_input.width);
    const auto width = static_cast<std::size_t>(Width());
    RunArray<std::int32_t> numbers;
    if (!numbers.Allocate(picture) || !m_columnOf.Allocate(width)) return false;
    std::iota(numbers.Data(), numbers.Data() + picture, 0);
    const long left = m_run.windowBox.GetOffsetX();
    const long right = left + Width();
    m_firstColumn = std::max(left, -1L);
    m_columns = std::min(right, m_input.width + 1) - m_firstColumn;

    ImageView line = m_input;
    line.pixels = reinterpret_cast<unsigned char*>(numbers.Data());
    line.height = 1;
    line.pixelBytes = sizeof(std::int32_t);
    EdgeRule edge{m_edge.mode, {}};
    const auto outside = static_cast<std::int32_t>(left < 0 ? -1 : m_input.width);
    std::memcpy(edge.colour.bytes, &outside, sizeof outside);
    ReadWindow(line, {left, 0, Width(), 1}, edge, m_useVectors,
               reinterpret_cast<unsigned char*>(m_columnOf.Data()));
    std::int32_t* const columns = m_columnOf.Data();
    std::for_each_n(columns, width,
                    [this](std::int32_t& number) { number -= static_cast<std::int32_t>(m_firstColumn); });
    if (std::all_of(columns, columns + width,
                    [this](long column) { return column >= 0 && column < m_columns; }))
        return true;
    m_firstColumn = left; // some repeat columns that the window does not reach
    m_columns = Width();
    std::iota(columns, columns + width, 0);
    return true;
}

vfILRowWalk PaddedInput::Rows(long first, long count) const
{
    const vfILRowWalk rows{m_rows.Data(), std::ptrdiff_t{m_columns} * m_input.RowPixelBytes(), nullptr, 0};
    ReadWindow(m_input, {m_firstColumn, m_run.windowBox.GetOffsetY() + first, m_columns, count}, m_edge,
               m_useVectors, m_rows.Data());
    return rows;
}

} // namespace vfil

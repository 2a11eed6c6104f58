/// \file
/// Rows of fields: where those of a region lie, which a run treats, and those that it reads again after it
/// wrote them.
#pragma once

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/rowcopy.h"

#include <vfil/fields.h>

#include <algorithm>

namespace vfil {

/// The formats that the operators on fields take.
inline bool IsFieldFormat(const vfILFormatInfo& format)
{
    if (format.subsampled) return !format.alphaPlane;
    return format.id == PXFormat_RGBA32 || format.id == PXFormat_RGBA64 || format.id == PXFormat_Mono8 ||
           format.id == PXFormat_Mono16;
}

/// The rows of a region, 0 being the lowest. In every row order those of a field are equally far apart.
class RegionRows {
public:
    explicit RegionRows(const vfILFieldRows& rows) : m_pixels(rows.picture.pixels), m_y(rows.y)
    {
        const ImageView picture(rows.picture);
        const std::ptrdiff_t rowBytes = picture.RowBytes();
        const std::ptrdiff_t xBytes = std::ptrdiff_t{rows.x} * picture.RowPixelBytes();
        m_even = picture.MemoryRow(0) * rowBytes + xBytes;
        m_odd = picture.MemoryRow(1) * rowBytes + xBytes;
        m_step = (picture.MemoryRow(2) - picture.MemoryRow(0)) * rowBytes;
    }
    unsigned char* operator[](long row) const
    {
        const long y = m_y + row;
        return m_pixels + ((y & 1) == 0 ? m_even : m_odd) + (y >> 1) * m_step;
    }

private:
    unsigned char* m_pixels;
    long m_y;
    std::ptrdiff_t m_even, m_odd,
        m_step; ///< bytes to the rows 0 and 1, and from a row to the next of its field
};

/// Calls treatRow(row, next) for the rows of the run that the mode allows, in the order that they have in
/// memory; next is the one that follows, or the last. Stops quietly after a row when the interrupt is set.
template <class TreatRow>
void ForEachFieldRow(const vfILProcessor& processor, const vfILFieldRun& run, TreatRow treatRow)
{
    const RowSelection rows =
        SelectField(processor.GetProcessingMode(), run.output.y, run.processBox.GetSizeY());
    const bool down = run.output.picture.format->topDown;
    const auto place = [&](long i) { return rows.skip + (down ? rows.count - 1 - i : i) * rows.step; };
    for (long i = 0; i < rows.count; ++i) {
        treatRow(place(i), place(std::min(i + 1, rows.count - 1)));
        if (processor.MustInterrupt() != 0) return;
    }
}

/// The rows of the first input. Those of a run in place can be read until the neighbours of the next row are
/// written, too.
class HeldRows {
public:
    explicit HeldRows(const vfILFieldRun& run) : m_rows(run.a), m_held(run.held), m_rowBytes(run.rowBytes) {}

    /// Before a row is written. Rows come by ForEachFieldRow.
    void Hold(long row)
    {
        if (m_held == nullptr) return;
        m_inSlot[row & 1] = row;
        MoveRow(false, m_rows[row], Slot(row), m_rowBytes);
    }
    const unsigned char* operator[](long row) const
    {
        return m_inSlot[row & 1] == row ? Slot(row) : m_rows[row];
    }

private:
    unsigned char* Slot(long row) const
    {
        return m_held + (row & 1) * static_cast<std::ptrdiff_t>(m_rowBytes);
    }

    RegionRows m_rows;
    unsigned char* m_held;
    std::size_t m_rowBytes;
    long m_inSlot[2] = {-1, -1};
};

} // namespace vfil

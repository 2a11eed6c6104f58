/// \file
/// Rows of fields: where those of a region lie, which a run treats, and those that it reads again after it
/// wrote them.
#pragma once

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/rowcopy.h"

#include <vfil/fields.h>

#include <cstddef>

namespace vfil {

/// The formats that the operators on fields take.
inline bool IsFieldFormat(const vfILFormatInfo& format)
{
    if (format.subsampled) return !format.alphaPlane;
    return format.id == PXFormat_RGBA32 || format.id == PXFormat_RGBA64 || format.id == PXFormat_Mono8 ||
           format.id == PXFormat_Mono16;
}

/// True when the mode's field bits allow the row.
inline bool IsRowSelected(unsigned long mode, long y)
{
    return SelectField(mode, y, 1).count != 0;
}

/// The rows of a region, 0 being the lowest.
class RegionRows {
public:
    explicit RegionRows(const vfILFieldRows& rows) : m_picture(rows.picture), m_x(rows.x), m_y(rows.y) {}
    unsigned char* operator[](long row) const { return m_picture.Pixel(m_x, m_picture.MemoryRow(m_y + row)); }

private:
    ImageView m_picture;
    long m_x, m_y;
};

/// Calls treatRow(row) for the rows of the run that the mode allows, in the order that they have in memory.
/// Stops quietly after a row when the interrupt is set.
template <class TreatRow>
void ForEachFieldRow(const vfILProcessor& processor, const vfILFieldRun& run, TreatRow treatRow)
{
    const long height = run.processBox.GetSizeY();
    const unsigned long mode = processor.GetProcessingMode();
    for (long i = 0; i < height; ++i) {
        const long row = run.output.picture.format->topDown ? height - 1 - i : i;
        if (!IsRowSelected(mode, run.output.y + row)) continue;
        treatRow(row);
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

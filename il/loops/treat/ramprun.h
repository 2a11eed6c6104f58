/// \file
/// The rows of a ramp.
#pragma once

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/rowcopy.h"
#include "il/loops/frame/rowloop.h"

#include "il/rows/levels.h"

namespace vfil {

/// What a ramp paints on.
struct RampGround {
    ImageView output;
    vfILBbox2l box; ///< inside the output
    bool useVectors;

    long Width() const { return box.GetSizeX(); }
    std::size_t PixelBytes() const { return static_cast<std::size_t>(output.pixelBytes); }
    std::size_t RowBytes() const { return static_cast<std::size_t>(Width()) * PixelBytes(); }
    /// Of the box, 0 being the lowest.
    unsigned char* Row(long row) const
    {
        return output.Pixel(box.GetOffsetX(), output.MemoryRow(box.GetOffsetY() + row));
    }
    bool IsStreaming() const
    {
        return RowBytes() * static_cast<std::size_t>(box.GetSizeY()) >= kStreamingBytes;
    }
};

/// Which rows of a ramp look the same.
struct RampTwins {
    bool all = false;        ///< all of them
    bool mirrored = false;   ///< those as far from a row, of the same field, ...
    std::int64_t middle = 0; ///< ... which this is

    bool Exist() const { return all || mirrored; }
    /// The other row that looks like a row, or the row itself.
    std::int64_t Of(long row) const { return mirrored ? 2 * middle - row : row; }
};

/// Paints the rows that the mode's field bits allow, 0 being the lowest: paint(row, out, streaming) makes
/// one. Those that look the same are made once and copied. Stops quietly after a row when the interrupt is
/// set.
///
/// \param twinRow Memory of a row, where there are twins.
template <class Paint>
void PaintRows(const vfILProcessor& processor, const RampGround& ground, const RampTwins& twins,
               unsigned char* twinRow, Paint paint)
{
    const RowSelection rows =
        SelectField(processor.GetProcessingMode(), ground.box.GetOffsetY(), ground.box.GetSizeY());
    const bool streaming = ground.IsStreaming();
    const auto copy = [&](std::int64_t row) {
        MoveRow(ground.useVectors, twinRow, ground.Row(static_cast<long>(row)), ground.RowBytes(), streaming);
    };
    if (twins.all && rows.count > 0) paint(rows.skip, twinRow, false);
    ForEachRow(processor, rows.count, [&](long i) {
        const long row = rows.skip + i * rows.step;
        const std::int64_t twin = twins.Of(row);
        if (twins.all) return copy(row);
        if (twin > row && twin < ground.box.GetSizeY()) {
            paint(row, twinRow, false);
            copy(row);
            copy(twin);
        } else if (twin == row || twin < rows.skip || twin > row) {
            paint(row, ground.Row(row), streaming);
        }
    });
    if (streaming) FinishStreaming();
}

/// Paints one pixel value.
inline void PaintPixel(const vfILProcessor& processor, const RampGround& ground, const unsigned char* pixel)
{
    PaintRows(processor, ground, {}, nullptr, [&](long, unsigned char* out, bool) {
        FillRow(out, ground.RowBytes(), pixel, ground.PixelBytes());
    });
}

} // namespace vfil

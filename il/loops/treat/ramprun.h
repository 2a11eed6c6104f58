/// \file
/// The rows of a ramp: those that the mode selects, and colours of a table by the places of a row's pixels.
#pragma once

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/rowcopy.h"
#include "il/loops/frame/rowloop.h"
#include "il/loops/frame/runarray.h"

#include "il/rows/treat/ramprows.h"

namespace vfil {

/// What a ramp paints on.
struct RampGround {
    ImageView output;
    vfILBbox2l box; ///< inside the output
    bool useVectors;

    long Width() const { return box.GetSizeX(); }
    std::size_t RowBytes() const { return static_cast<std::size_t>(Width() * output.pixelBytes); }
    bool IsStreaming() const
    {
        return RowBytes() * static_cast<std::size_t>(box.GetSizeY()) >= kStreamingBytes;
    }
};

/// Calls paint(row, out) for the rows that the mode's field bits allow, 0 being the lowest. Stops quietly
/// after a row when the interrupt is set.
template <class Paint>
void ForEachRampRow(const vfILProcessor& processor, const RampGround& ground, Paint paint)
{
    const RowSelection rows =
        SelectField(processor.GetProcessingMode(), ground.box.GetOffsetY(), ground.box.GetSizeY());
    ForEachRow(processor, rows.count, [&](long i) {
        const long row = rows.skip + i * rows.step;
        paint(row, ground.output.Pixel(ground.box.GetOffsetX(),
                                       ground.output.MemoryRow(ground.box.GetOffsetY() + row)));
    });
}

/// Paints one pixel value.
inline void PaintPixel(const vfILProcessor& processor, const RampGround& ground, const unsigned char* pixel)
{
    ForEachRampRow(processor, ground, [&](long, unsigned char* out) {
        FillRow(out, ground.RowBytes(), pixel, static_cast<std::size_t>(ground.output.pixelBytes));
    });
}

/// Paints entries of a table: places(row) are those of a row's pixels.
/// \return false when memory is short
template <class Places, class PlacesOfRow>
bool PaintPlaces(const vfILProcessor& processor, const RampGround& ground, const unsigned char* table,
                 PlaceRow<Places> place, PlacesOfRow places)
{
    const auto width = static_cast<std::size_t>(ground.Width());
    RunArray<std::int32_t> indices;
    if (!indices.Allocate(width)) return false;
    const bool streaming = ground.IsStreaming();
    const LookUpRow lookUp =
        FindLookUpRow(ground.useVectors, streaming, static_cast<std::size_t>(ground.output.pixelBytes));
    ForEachRampRow(processor, ground, [&](long row, unsigned char* out) {
        place(places(row), indices.Data(), width);
        lookUp(table, indices.Data(), out, width);
    });
    if (streaming) FinishStreaming();
    return true;
}

} // namespace vfil

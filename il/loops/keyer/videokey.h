/// \file
/// The frame of the 4:2:2 keyers: rows and columns that the crop leaves out, and the walk over the
/// macropixels that are keyed. A keyer gives the kernel of a run of macropixels.
#pragma once

#include "il/loops/frame/rowcopy.h"
#include "il/loops/frame/rowloop.h"
#include "il/loops/keyer/crop.h"
#include "il/rows/keyer/videokeyrows.h"

#include <vfil/keyer.h>

namespace vfil {

/// Columns of a row inside the crop: pixels that are passed through at both sides, and macropixels between.
/// Of the first or the last of these the crop may keep one pixel only. A last column may remain that is none
/// of it.
struct KeyedColumns {
    long left;
    long macropixels;
    long right;
    bool headHalved; ///< the first macropixel's first pixel is outside
    bool tailHalved; ///< the last one's second pixel is
};

/// With both skips rounded down to whole macropixels; an odd last column remains.
KeyedColumns WholeMacropixels(const vfILKeyerCrop& crop, long width);

/// With halves where the crop divides a macropixel; an odd last column is passed through.
KeyedColumns HalvedMacropixels(const vfILKeyerCrop& crop, long width);

/// The 12 formats that the 4:2:2 keyers write.
bool IsKeyableVideo(const GUID& format);

/// The format of input A; null for one that is not 4:2:2.
const vfILFormatInfo* VideoFormatOf(IPXImage* image);

/// When a run looks at the interrupt.
enum class KeyPoll { EachRow, Never };

/// What a run of a 4:2:2 keyer is about.
struct VideoKeyRun {
    const vfILLayerRun& layers;
    const KeptRows& rows;
    const KeyedColumns& columns;
    VideoKeyCase which;
};

/// Writes what is not keyed: B, or black into a picture of the matte.
void PassThrough(const VideoKeyRun& run, const unsigned char* b, unsigned char* out, long pixels);

/// Runs over all rows. \p keyHalf(half, a, b, out) keys one pixel of a macropixel, and is only called for
/// columns that have halves.
template <class Params, class KeyHalfPixel>
void RunVideoKey(const vfILProcessor& processor, const VideoKeyRun& run, const Params& params, KeyPoll poll,
                 KeyHalfPixel keyHalf)
{
    const VideoKeyRow<Params> keyRow = FindVideoKeyRow(run.which, params);
    const KeyedColumns& columns = run.columns;
    const long width = run.layers.run.processBox.GetSizeX();
    const long halves = (columns.headHalved ? 1 : 0) + (columns.tailHalved ? 1 : 0);
    const auto treatRow = [&](long row) {
        const auto* a = RowOf<const unsigned char>(run.layers.back, row);
        const auto* b = RowOf<const unsigned char>(run.layers.front, row);
        auto* out = RowOf<unsigned char>(run.layers.run.output, row);
        if (!run.rows.Has(row)) return PassThrough(run, b, out, width);
        const auto advance = [&](long bytes) { a += bytes, b += bytes, out += bytes; };
        PassThrough(run, b, out, columns.left);
        advance(2 * columns.left);
        if (columns.headHalved) {
            keyHalf(KeptHalf::Second, a, b, out);
            advance(4);
        }
        const long whole = columns.macropixels - halves;
        keyRow(a, b, out, static_cast<std::size_t>(whole), params);
        advance(4 * whole);
        if (columns.tailHalved) {
            keyHalf(KeptHalf::First, a, b, out);
            advance(4);
        }
        PassThrough(run, b, out, columns.right);
    };
    if (poll == KeyPoll::EachRow) return ForEachRow(processor, run.layers.run.rows, treatRow);
    for (long row = 0; row < run.layers.run.rows; ++row)
        treatRow(row);
}

/// A run over whole macropixels.
template <class Params>
void RunWholeVideoKey(const vfILProcessor& processor, const vfILLayerRun& layers, const vfILKeyerCrop& crop,
                      const Params& params, KeyResult result, bool chromaFirst, KeyPoll poll)
{
    const vfILPixelRun& run = layers.run;
    const KeptRows rows(crop, run.rows, *run.picture.format, processor.GetProcessingMode());
    const KeyedColumns columns = WholeMacropixels(crop, run.processBox.GetSizeX());
    const VideoKeyCase which{result, chromaFirst, layers.fast, run.streaming};
    RunVideoKey(processor, {layers, rows, columns, which}, params, poll, [](auto...) {});
}

} // namespace vfil

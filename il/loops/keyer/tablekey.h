/// \file
/// What the keys of one picture by tables share: their tables, and the walk of rows under a mask.
#pragma once

#include "il/loops/frame/rowloop.h"
#include "il/rows/keyer/tablekeyrows.h"

#include <algorithm>
#include <cstring>

namespace vfil {

/// A table of the host's, through the matte map if there is one.
inline std::uint8_t MatteOf(const void* matteMap, std::uint8_t value)
{
    return matteMap == nullptr ? value : static_cast<const std::uint8_t*>(matteMap)[value];
}

/// \param alphas    256 bytes of the host's.
/// \param matteMap  May be null.
inline void MapAlphas(const void* alphas, const void* matteMap, std::uint8_t (&result)[256])
{
    const auto* from = static_cast<const std::uint8_t*>(alphas);
    std::transform(from, from + 256, result,
                   [matteMap](std::uint8_t value) { return MatteOf(matteMap, value); });
}

/// The numbers for which a table of the host's has 255.
inline void CollectFull(const void* table, std::uint8_t (&set)[32])
{
    std::fill_n(set, 32, std::uint8_t{0});
    for (unsigned i = 0; i < 256; ++i) {
        if (static_cast<const std::uint8_t*>(table)[i] == 255)
            set[i / 8] = static_cast<std::uint8_t>(set[i / 8] | 1U << i % 8);
    }
}

/// Runs a row kernel, treatPixels(in, out, pixels), over the process box. Where the mask has 0, pixels are
/// copied; all else of it has the full effect. Without `mask` none is looked at.
template <class TreatPixels>
void RunKeyedRows(const vfILProcessor& processor, const vfILPixelRun& run, const vfILRowWalk& input,
                  bool mask, TreatPixels treatPixels)
{
    const auto pixels = static_cast<std::size_t>(run.processBox.GetSizeX());
    ForEachRow(processor, run.rows, [&](long row) {
        const auto* in = RowOf<const std::uint8_t>(input, row);
        auto* out = RowOf<std::uint8_t>(run.output, row);
        if (!mask) {
            treatPixels(in, out, pixels);
        } else {
            const MaskRow<std::uint8_t> samples(run, row);
            const auto isKeyed = [&](std::size_t x) { return samples[static_cast<long>(x)] != 0; };
            for (std::size_t x = 0, from = 0; x < pixels; from = x) {
                const bool keyed = isKeyed(x);
                while (x < pixels && isKeyed(x) == keyed)
                    ++x;
                if (keyed) {
                    treatPixels(in + 4 * from, out + 4 * from, x - from);
                } else if (in != out) {
                    std::memcpy(out + 4 * from, in + 4 * from, 4 * (x - from));
                }
            }
        }
    });
}

/// Tells the host of a result whose alpha is new.
inline void TellAlphaIsNew(IPXImage* output)
{
    if (output == nullptr) return;
    output->SetImageState(PXImageState_PREMULTIPLIED, 0);
    output->SetImageState(PXImageState_KEYED, 0);
}

} // namespace vfil

/// \file
/// The loop of the RGBA keyers: B's pixels with an alpha that is made of A's.
#pragma once

#include "il/loops/frame/rowloop.h"
#include "il/rows/keyer/keyrows.h"

namespace vfil {

/// Runs the kernel that the parameters ask for over the region.
template <class Params>
vfILStatus RunKey(const vfILProcessor& processor, const vfILLayerRun& layers, const Params& params)
{
    const vfILPixelRun& run = layers.run;
    const KeyRow<Params> key = FindKeyRow(layers.fast, run.streaming, params);
    const auto pixels = static_cast<std::size_t>(run.processBox.GetSizeX());
    ForEachRow(processor, run.rows, [&](long row) {
        key(RowOf<const std::uint8_t>(layers.back, row), RowOf<const std::uint8_t>(layers.front, row),
            RowOf<std::uint8_t>(run.output, row), pixels, params);
    });
    return VFIL_SUCCESS;
}

/// The models in which these keyers take luma and chroma apart.
constexpr bool IsKeyModel(PXColorModel model)
{
    return model == PXColorModel_YCC || model == PXColorModel_YCC709;
}

} // namespace vfil

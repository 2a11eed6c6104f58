/// \file
/// What the row kernels of keys by tables take, and the table of pointers. Types only, as in compparams.h.
#pragma once

#include "il/rows/convert/yccparams.h"

#include <cstddef>
#include <cstdint>

namespace vfil {

/// What hue, lightness and saturation are looked up in. A byte holds eight numbers of a set, the lowest in
/// its lowest bit.
struct HlsKeyTables {
    std::uint8_t alphaOfHue[256];
    std::uint8_t outsideLightnesses[32]; ///< those of pixels that are outside, whatever their hue
    std::uint8_t outsideSaturations[32];
    std::uint8_t outsideAlpha;
};

/// The alpha of a lightness.
struct LumKeyTable {
    std::uint8_t alphaOf[256];
};

/// What replaces the chroma and the luma of clear pixels.
struct ChromaReplacement {
    std::uint8_t lumaOf[256];
    std::uint8_t cb, cr;
    YccWeights weights;
};

// Pixels of four bytes, red first. The output may be an input exactly, but may not partly overlap it. Rows
// need no alignment; nothing past the count is read or written.

using HlsKeyRow = void (*)(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels,
                           const HlsKeyTables& tables);
using LumKeyRow = void (*)(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels,
                           const LumKeyTable& table);
using SurpressRow = void (*)(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels);
/// Colour from \p a, weighed by its alpha; alpha from \p b.
using ReplaceRow = void (*)(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out,
                            std::size_t pixels, const ChromaReplacement& replacement);

/// The kernels of one level.
struct TableKeyRows {
    HlsKeyRow hlsKey[2][2];     ///< [alpha at most the input's][streaming]
    LumKeyRow lumKey[2][2];     ///< likewise
    SurpressRow surpress[2][2]; ///< [blue, else green][streaming]
    ReplaceRow replace[2];      ///< [streaming]
};

} // namespace vfil

/// \file
/// What the row kernels of fill and key take, and the table of pointers. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// Input and output do not overlap. Rows need no alignment; nothing past the count is read or written. A
/// pixel is two bytes of 4:2:2, or one of an alpha plane; an odd width ends in a lone luma and Cb.
using FillKeyRow = void (*)(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels);

/// The kernels of one level: [chroma first][streaming], where the order is that of the fill or the key.
struct FillKeyRows {
    FillKeyRow colour[2][2];     ///< 4:2:2 with chroma first from or to that order
    FillKeyRow alphaToKey[2][2]; ///< alpha as luma of studio range, chroma 128
    FillKeyRow keyToAlpha[2][2]; ///< and back, wrapping
};

} // namespace vfil

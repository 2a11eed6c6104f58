/// \file
/// What the row kernels of depths, byte orders and alpha take, and the table of pointers. Types only, as in
/// compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

// Input and output do not overlap, but that kernels from 4-byte pixels to 4-byte pixels may write their input
// in place. Rows need no alignment; nothing past the count is read or written.

using NarrowRow = void (*)(const std::uint16_t* in, std::uint8_t* out, std::size_t samples);
using WidenRow = void (*)(const std::uint8_t* in, std::uint16_t* out, std::size_t samples);
using PixelRow = void (*)(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels);

/// The kernels of one level; [streaming] stands last.
struct DepthRows {
    NarrowRow narrow[2];     ///< 16 bits to 8: the high byte
    WidenRow widen[2];       ///< 8 bits to 16: the byte twice
    PixelRow swap[2];        ///< exchanges bytes 0 and 2 of 4-byte pixels
    PixelRow expand[2][2];   ///< [bytes 0 and 2 exchanged]: 3-byte pixels to 4 bytes, the fourth 255
    PixelRow drop[2][2];     ///< [bytes 0 and 2 exchanged]: 4-byte pixels to 3 bytes
    PixelRow takeAlpha[2];   ///< byte 3 of 4-byte pixels, as a plane
    PixelRow lumaToAlpha[2]; ///< R G B A: A becomes (29 R + 57 G + 11 B) / 97, truncated
};

} // namespace vfil

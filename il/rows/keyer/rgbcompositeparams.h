/// \file
/// What the row kernels of the RGBA composite by a colour difference take, and the table of pointers. Types
/// only, as in compparams.h.
#pragma once

#include "il/rows/convert/yccparams.h"
#include "il/rows/keyer/keyparams.h"
#include "il/rows/keyer/videokeyparams.h"

namespace vfil {

/// How much of a pixel is spill, and what replaces that. Channels are 0 for red, 1 for green, 2 for blue.
struct RgbSpillParams {
    int key, other;            ///< the channels: keyed, and the rival of it beside red
    std::int32_t threshold;    ///< a key is wholly spill from the larger rival less this on ...
    std::int32_t softness;     ///< ... and no spill from this much less on; see SetSoftness
    std::uint8_t amounts[256]; ///< by how far the key is below the former; if there is no softness, above
    std::int32_t lumaTerm;     ///< multiplies luma where the front is whole, else is added
    std::uint8_t cb, cr;
    YccWeights weights; ///< of the way to YCC and back
};

struct RgbCompositeParams {
    DifferenceKey difference;
    std::int32_t low16, high16; ///< the ends in 65536ths
    std::int32_t low, gain;     ///< the lower one as a whole number; 65536ths
    RgbSpillParams spill;
};

/// Composites A over B, or writes the matte; output pixels are opaque. The output may be one of the inputs
/// exactly. Rows need no alignment; nothing past the count is read or written.
using RgbCompositeRow = void (*)(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out,
                                 std::size_t pixels, const RgbCompositeParams& params);

/// The kernels of one level.
struct RgbCompositeRows {
    RgbCompositeRow rows[kKeyResults][2]; ///< [what is written][streaming]
};

} // namespace vfil

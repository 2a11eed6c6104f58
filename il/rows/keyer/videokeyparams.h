/// \file
/// What the row kernels of the 4:2:2 keyers take, and the table of pointers. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// The matte of a value v: 0 at `low` and below, 255 at `high` and above, else (v gain - offset) / 65536,
/// rounded down.
struct MatteWindow {
    std::int32_t low, high, gain, offset;
};

/// What becomes of the luma where a foreground is spilled upon: (Y gain) / 256, rounded down, + offset,
/// limited to a byte.
struct SpillLuma {
    std::int32_t gain, offset;
};

/// A sector of the chroma plane around a hue, and how its key becomes a matte. Slope (of the sides), gain and
/// the map's gain are 256ths.
struct KeySector {
    std::int32_t slope, lift, gain;
    std::int32_t mapLow, mapGain;
};

/// Key by a sector of hues: the matte of a macropixel is that of its chroma.
struct ChromaKeyParams {
    std::int32_t cosine, sine; ///< of the turn that lays the key colour on the axis, 256ths
    KeySector key, spill;
    SpillLuma luma;
    std::uint8_t spillCb, spillCr; ///< what replaces the chroma of the spill
};

/// A linear form of Y, Cb, Cr and 1.
struct YccForm {
    std::int32_t y, cb, cr, constant;
};

/// Key by a colour difference of channels that are made on the way. The forms are 512ths, with whole
/// constants; all of their numbers are of 16 bits.
struct ChannelKeyParams {
    YccForm key, other, red; ///< the channels; the key's weight of Y serves all
    YccForm rest;            ///< what of the key does not depend on the limited key channel
    std::int32_t limit;      ///< of the key channel
    std::int32_t factor;     ///< of the limited key channel, 4096ths
    MatteWindow window;
    std::int32_t threshold, softness; ///< of the spill
    SpillLuma luma;
    std::uint8_t spillCb, spillCr;
};

/// The same key folded to linear forms of the samples, 65536ths: no channel is made.
struct FoldedKeyParams {
    YccForm below, above; ///< of pixels whose key channel is below its limit, and of the others
    YccForm test;         ///< the key channel without its constant
    std::int32_t limit;
    MatteWindow window; ///< low and high of the key, 65536ths; gain and offset of its whole part
};

/// Key by luma.
struct VideoLumaKeyParams {
    std::int32_t gain, offset; ///< (Y gain) / 65536, rounded down, + offset
    std::int32_t least, most;  ///< limits of that
    bool reverse;              ///< then 251 less it
    MatteWindow window;
};

/// Keys macropixels, two pixels that share chroma, of 4 bytes. The output may be one of the inputs exactly.
/// Rows need no alignment; nothing past the count is read or written.
template <class Params>
using VideoKeyRow = void (*)(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out,
                             std::size_t macropixels, const Params& params);

/// What a keyer writes.
enum class KeyResult { Composite, SpillCorrected, Matte };
inline constexpr int kKeyResults = 3;

/// The kernels of one level: [what is written][chroma first][streaming].
struct VideoKeyRows {
    VideoKeyRow<ChromaKeyParams> chroma[kKeyResults][2][2];
    VideoKeyRow<ChannelKeyParams> channel[2][2][2]; ///< [spill is corrected]: it has no matte
    VideoKeyRow<FoldedKeyParams> folded[2][2][2];   ///< [matte]: it corrects no spill
    VideoKeyRow<VideoLumaKeyParams> luma[2][2][2];  ///< [matte]: nor does it
};

} // namespace vfil

/// \file
/// What the row kernels of the RGBA keyers take, and the table of pointers. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// A sum of red, green and blue, each times its weight, in 65536ths.
struct KeyWeights {
    std::int32_t red, green, blue;
};

/// A sector of the chroma plane.
struct SectorKeyParams {
    KeyWeights cb, cr; ///< each of 16 bits
    double cosine, sine;
    double tangent; ///< how the sides open
    double lift, gain;
    const std::uint8_t* mattes; ///< kSectorMattes of MakeSectorMattes; the plain form needs none
    bool keepAlpha;             ///< no more than B's alpha
};

/// A matte for each Cr and Cb, 256 Cb a row, and what a vector reads behind the last one.
constexpr std::size_t kSectorMattes = 256 * 256 + 3;

/// A constant and the weighted sum of limited channels, in 65536ths.
struct DifferenceKey {
    KeyWeights weights;
    std::uint32_t limits; ///< of each channel, as a pixel
    std::int64_t constant;
};

struct BlueGreenKeyParams {
    DifferenceKey difference;
    bool keepAlpha;
};

struct LinearKeyParams {
    bool blueScreen; ///< else green
    std::int32_t threshold, softness;
};

struct LumaKeyParams {
    KeyWeights weights;
    std::int32_t gain; ///< in 65536ths
    std::int32_t offset;
    bool reverse;
    bool keepAlpha;
};

/// Pixels are of 4 bytes. The output has those of B, with the alpha that A's give; it may be one of the
/// inputs exactly. Rows need no alignment; nothing past the count is read or written.
template <class Params>
using KeyRow = void (*)(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
                        const Params& params);

/// The kernels of one level: [streaming].
struct KeyRows {
    KeyRow<SectorKeyParams> sector[2];
    KeyRow<BlueGreenKeyParams> blueGreen[2];
    KeyRow<LinearKeyParams> linear[2];
    KeyRow<LumaKeyParams> luma[2];
};

} // namespace vfil

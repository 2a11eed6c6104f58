/// \file
/// Row kernels between RGB and 4:2:2 YCC. As in comprows.h a run finds its kernel once.
#pragma once

#include "il/rows/convert/yccparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(YccRows)

/// Which of a family's kernels a run takes.
struct YccCase {
    YccArithmetic arithmetic;
    int pixelBytes;  ///< 3 or 4
    bool filtered;   ///< chroma is averaged, or interpolated
    bool useVectors; ///< else the plain form
    bool streaming;  ///< see kStreamingBytes
};

const YccRows& YccRowsAt(Level level);
EncodeRow FindEncodeRow(const YccCase& which);
DecodeRow FindDecodeRow(const YccCase& which);

/// What the last samples of a row left over, in units of a 65536th of Y and, filtered, a 131072nd of Cb and
/// Cr.
struct DitherResidue {
    std::uint32_t y, cb, cr;
};

/// RGB to 4:2:2 with the exact arithmetic, where each sample's rounding term is what the one before left
/// over. One form only: each sample waits for the one before.
void EncodeDithered(const std::uint8_t* rgb, std::uint8_t* ycc, std::size_t pixels, int pixelBytes,
                    bool filtered, const YccLayout& layout, DitherResidue residue);

} // namespace vfil

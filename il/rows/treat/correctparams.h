/// \file
/// What the row kernels of colour correction take, and the table of pointers. Types only, as in compparams.h.
#pragma once

#include "il/rows/convert/yccparams.h"

#include <cstddef>
#include <cstdint>

namespace vfil {

/// 256ths: a row a component that goes in, a column one that comes out; the fourth row is added. Of the
/// fourth column the first element is the factor of alpha, and the last is added to that.
struct CorrectionMatrix {
    std::int32_t at[4][4];
};

/// What a luma adds. At 16 bits the numbers count 257 fold. In this order for the pairs of the vector form.
struct LumaIncrements {
    std::int16_t cb, cr, y, alpha;
};

/// A correction: the matrix, and what follows it. Sums have 64 bits in the plain forms: no element of the
/// second matrix reaches 2 to the power of 20.
struct Correction {
    CorrectionMatrix matrix;
    bool hasLut;                ///< else the matrix alone makes the result, and the next two do not count
    CorrectionMatrix behindLut; ///< its alpha does not count
    LumaIncrements lut[256];
    bool hasTables;              ///< else the next does not count
    std::uint8_t tables[4][256]; ///< of red, green, blue, alpha; at 16 bits from and to the upper bytes
};

/// In each kernel the output may be an input exactly, but may not partly overlap one. Rows need no alignment;
/// nothing past the count is read or written.
///
/// \param channels  red 1, green 2, blue 4, alpha 8: the others are copied.
template <class Sample>
using CorrectRow = void (*)(const Sample* in, Sample* out, std::size_t pixels, const Correction& correction,
                            unsigned channels);
/// Macropixels of 4:2:2.
///
/// \param back  The way from RGB, where there are tables.
using CorrectPairRow = void (*)(const std::uint8_t* in, std::uint8_t* out, std::size_t macropixels,
                                const Correction& correction, const EncodeTable& back);
/// \param table  256 bytes, by which each byte is replaced.
using ReplaceBytes = void (*)(const std::uint8_t* in, std::uint8_t* out, std::size_t bytes,
                              const std::uint8_t* table);
/// The corrected pixel by the mask, the old one by the rest.
///
/// \param mask  A sample a pixel.
template <class Sample>
using MixCorrectedRow = void (*)(const Sample* in, const Sample* corrected, const Sample* mask, Sample* out,
                                 std::size_t pixels, unsigned channels);

/// The kernels of one level for RGBA.
struct CorrectRows {
    CorrectRow<std::uint8_t> correct8[2][2][2]; ///< [with lut][with tables][streaming]
    CorrectRow<std::uint16_t> correct16[2][2][2];
    MixCorrectedRow<std::uint8_t> mix8[2]; ///< [streaming]
    MixCorrectedRow<std::uint16_t> mix16[2];
};

/// The kernels of one level for 4:2:2.
struct CorrectPairRows {
    CorrectPairRow pairs[2][2][2][2]; ///< [chroma first][with lut][with tables][streaming]
    ReplaceBytes replace[2];          ///< [streaming]
};

} // namespace vfil

/// \file
/// What the row kernels of the legalizer take, and the table of pointers. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// What a channel of RGB takes of chroma, 65536ths. The constant takes the offsets out, and has the half that
/// rounds.
struct ChannelForm {
    std::int32_t cb, cr, constant;
};

/// A sample of YCC, likewise.
struct SampleForm {
    std::int32_t red, green, blue, constant;
};

/// The matrices of a standard.
struct LegalParams {
    std::int32_t luma;            ///< in each channel, 65536ths
    ChannelForm red, green, blue; ///< red takes no Cb, and blue no Cr
    SampleForm y, cb, cr;
    // Of the colour differences of +-0.5 around 0, beside luma of 0 .. 1.
    double blueOfCb, redOfCr, greenOfCb, greenOfCr;
    double lumaFactor; ///< the part of its way to the legal range that luma moves: 0 .. 1
};

/// By how much a channel may be outside where it is told to be within a code, 65536ths: less than one by what
/// the rounding of the weights comes to.
inline constexpr std::int32_t kOneCode = 65536 - 512;
inline constexpr std::int32_t kMostChannel = 255 * 65536 + kOneCode;

/// What is done to pixels that are not legal.
enum class LegalRule { Clip, Gain, Saturation, LumaSaturation, Show };
inline constexpr int kLegalRules = 5;

/// Treats pairs of pixels that share chroma, of 4 bytes. The output may be the input exactly. Rows need no
/// alignment; nothing past the count is read or written.
using LegalRow = void (*)(const std::uint8_t* in, std::uint8_t* out, std::size_t pairs,
                          const LegalParams& params);

/// The kernels of one level: [rule][both pixels by the stored chroma][chroma first][streaming]. To show is
/// the same of either.
struct LegalRows {
    LegalRow rows[kLegalRules][2][2][2];
};

} // namespace vfil

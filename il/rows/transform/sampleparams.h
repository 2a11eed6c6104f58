/// \file
/// What the sampling kernels of the geometric transforms take. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// What an output pixel is made of, around its place in the input.
enum class SampleForm { Nearest, Bilinear, Bicubic };
inline constexpr std::size_t kSampleForms = 3;

/// A pixel of four samples or of one, of a byte or a word each.
enum class SamplePixel { FourBytes, FourWords, Byte, Word };
inline constexpr std::size_t kSamplePixels = 4;

/// The picture that is sampled. Pixels outside of the bounds read as the default pixel, one by one.
struct SampleSource {
    const unsigned char* pixels; ///< of pixel (0, 0)
    std::ptrdiff_t rowBytes;     ///< from a row to the next, not negative
    std::int32_t left, bottom;   ///< the first column and row that count; not negative
    std::int32_t right, top;     ///< the ones behind the last
    alignas(8) unsigned char defaultPixel[8];
};

/// Writes \p count pixels, sampled at (u[i], v[i]). Any coordinates will do: without a source, as NaN has
/// none, a pixel is the default one. Rows need no alignment.
using SampleRow = void (*)(const SampleSource& source, const double* u, const double* v, std::size_t count,
                           unsigned char* out);

/// The kernels of sampling, for one level.
struct SampleRows {
    SampleRow sample[kSampleForms][kSamplePixels];
};

/// Coordinates of 8-bit pixels are rounded to this fraction of a pixel.
inline constexpr int kFractionBits = 16;
inline constexpr double kFractions = 65536.0;

/// The Catmull-Rom weights of the four pixels around a fraction of 0 .. 65535, where 65536 stands for 1. Each
/// product is rounded, and what is below the stated places is lost: the weights are not quite those of the
/// polynomials, and sum to 65525 .. 65549.
struct CubicWeights {
    std::int32_t weight[4];
};

constexpr CubicWeights CubicWeightsOf(std::int64_t u)
{
    const std::int64_t h = (u + 1) >> 1;
    const std::int64_t c0 = (((((0x10000 - h) * u + 0x8000) >> 16) - 0x8000) * u + 0x8000) >> 16;
    const std::int64_t c1 =
        (((((((u - 0x27ff8 + h) >> 4) * u + 0x2000) >> 14) * u + 0x2000) >> 14) + 0x10000);
    const std::int64_t c2 =
        ((((((((0x20002 - (u + h)) >> 2) * u + 0x2000) >> 14) + 0x8002) >> 2) * u + 0x2000) >> 14);
    const std::int64_t c3 = (((((h - 0x8000) * u + 0x8000) >> 16) * u + 0x8000) >> 16);
    return {{static_cast<std::int32_t>(c0), static_cast<std::int32_t>(c1), static_cast<std::int32_t>(c2),
             static_cast<std::int32_t>(c3)}};
}

} // namespace vfil

/// \file
/// What the sampling kernels of the geometric transforms take. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// What an output pixel is made of, around its place in the input.
enum class SampleForm { Nearest, Bilinear, Bicubic };
constexpr std::size_t kSampleForms = 3;

/// A pixel of four samples or of one, of a byte or a word each.
enum class SamplePixel { FourBytes, FourWords, Byte, Word };
constexpr std::size_t kSamplePixels = 4;

/// The picture that is sampled. Pixels outside of the bounds read as the default pixel, one by one.
struct SampleSource {
    const unsigned char* pixels; ///< of pixel (0, 0)
    std::ptrdiff_t rowBytes;     ///< from a row to the next, not negative
    std::int32_t left, bottom;   ///< the first column and row that count; not negative
    std::int32_t right, top;     ///< the ones behind the last
    alignas(8) unsigned char defaultPixel[8];
};

/// Writes \p count pixels, sampled at (u[i], v[i]). Rows need no alignment.
using SampleKernel = void (*)(const SampleSource& source, const double* u, const double* v, std::size_t count,
                              unsigned char* out);

/// Places on a straight line, in fixed point of kStepBits.
struct SampleSteps {
    std::int64_t u, v;
    std::int64_t du, dv; ///< from a place to the next
};
constexpr int kStepBits = 40;

/// A coordinate of a line.
constexpr double StepAt(std::int64_t u, std::int64_t du, std::int64_t step)
{
    return static_cast<double>(u + step * du) * (1.0 / static_cast<double>(std::int64_t{1} << kStepBits));
}

/// The same at places on a line.
using StepKernel = void (*)(const SampleSource& source, const SampleSteps& steps, std::size_t count,
                            unsigned char* out);

/// A part of the plane: low <= u < high.
struct SampleBounds {
    double lowU, highU, lowV, highV;
};

/// How many of the first places lie in a part of the plane.
using CountInside = std::size_t (*)(const SampleBounds& bounds, const double* u, const double* v,
                                    std::size_t count);

/// The kernels of sampling, for one level.
struct SampleRows {
    /// At any places: without a source, as NaN has none, a pixel is the default one.
    SampleKernel sample[kSampleForms][kSamplePixels];
    /// At places whose pixels are all within the bounds, by kInsideMargin, of a source of less than 4 GiB.
    SampleKernel inside[kSampleForms][kSamplePixels];
    StepKernel steps[kSampleForms][kSamplePixels];
    CountInside countInside;
};

/// What places have to keep from the bounds for their rounding, and that of the arithmetic.
constexpr double kInsideMargin = 1.0 / 16384;

/// Coordinates of 8-bit pixels are rounded to this fraction of a pixel.
constexpr int kFractionBits = 16;
constexpr double kFractions = 65536.0;

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

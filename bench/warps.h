/// \file
/// The mappings that perspective and vector warp are measured with, for ours and for the peers.
#pragma once

#include "filters.h"

#include <array>
#include <string>
#include <vector>

namespace bench {

inline constexpr char kPerspectiveNearest[] = "perspective nearest";
inline constexpr char kPerspectiveBilinear[] = "perspective bilinear";
inline constexpr char kPerspectiveBicubic[] = "perspective bicubic";
inline constexpr char kWarpBilinear[] = "vector warp, by pixel";

/// From input to output, by rows: all four corners lean inwards, so that nearly all of the output is covered.
inline constexpr std::array<float, 9> kHomography = {1.05F,  0.12F, -60.0F,  0.04F, 1.08F,
                                                     -40.0F, 3e-5F, 4.5e-5F, 0.985F};

/// A field of vectors, a pair a pixel: where the pixel comes from when they are taken off.
struct Vectors {
    std::vector<double> x, y;
};
/// Waves of a few pixels, as a flow has them.
const Vectors& Waves();
/// Nothing moves.
const Vectors& Stillness();

} // namespace bench

/// \file
/// The transforms that are measured, for those who add them.
#pragma once

#include "filters.h"

#include <vfil/transform.h>

#include <array>

namespace bench {

struct Turn {
    const char* name;
    vfILInterpolationType type;
};
inline constexpr Turn kTurnNearest{"turn, nearest", VFIL_INTERP_NEAREST};
inline constexpr Turn kTurnBilinear{"turn, bilinear", VFIL_INTERP_BILINEAR};
inline constexpr Turn kTurnBicubic{"turn, bicubic", VFIL_INTERP_BICUBIC};
inline constexpr Turn kTurnPrefiltered{"turn, prefiltered", VFIL_INTERP_BILINEAR_PREFILTERED};
inline constexpr Turn kTurnSums{"turn, sums", VFIL_INTERP_SUM_BILINEAR};
inline constexpr std::array kTurns = {kTurnNearest, kTurnBilinear, kTurnBicubic, kTurnPrefiltered, kTurnSums};

/// Where the picture's points go, by 17 degrees about the centre: x' = m[0] x + m[1] y + m[2], y' = m[3] x +
/// m[4] y + m[5], of pixels whose centres are whole numbers.
std::array<double, 6> TurnOfPicture();

} // namespace bench

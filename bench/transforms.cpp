/// \file
/// The transforms that are measured.
#include "transforms.h"

#include <cmath>
#include <numbers>

namespace bench {

std::array<double, 6> TurnOfPicture()
{
    constexpr double kAngle = 17 * std::numbers::pi / 180;
    const double c = std::cos(kAngle);
    const double s = std::sin(kAngle);
    const double x = (static_cast<double>(kWidth) - 1) / 2;
    const double y = (static_cast<double>(kHeight) - 1) / 2;
    return {c, -s, x - c * x + s * y, s, c, y - s * x - c * y};
}

} // namespace bench

/// \file
/// Narrowing to 32 bits without wrapping, for boxes, vectors and coefficients.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace vfil {

/// The nearest value that 32 bits hold.
constexpr std::int32_t SaturateToInt32(std::int64_t value)
{
    using Limits = std::numeric_limits<std::int32_t>;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(value, Limits::min(), Limits::max()));
}

/// The whole part, saturated; 0 for NaN.
constexpr std::int32_t TruncateToInt32(double value)
{
    using Limits = std::numeric_limits<std::int32_t>;
    if (value != value) return 0;
    return static_cast<std::int32_t>(std::clamp<double>(value, Limits::min(), Limits::max()));
}

/// The nearest value that a float holds, other than infinity; NaN stays, as it compares with neither end.
constexpr float SaturateToFloat(double value)
{
    constexpr double kMost = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(value, -kMost, kMost));
}

} // namespace vfil

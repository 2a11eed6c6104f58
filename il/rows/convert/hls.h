/// \file
/// Hue, lightness and saturation of a colour in doubles. Included by the plain row kernels and the colour
/// value.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>

namespace vfil {

/// The angle of a colour that is no grey, as a part of a turn. On a tie the earlier of red, green, blue
/// counts as the largest.
inline double Hue(const std::array<double, 3>& rgb, double largest, double difference)
{
    const auto [r, g, b] = rgb;
    double sector;
    if (r == largest) {
        sector = (g - b) / difference;
    } else if (g == largest) {
        sector = (b - r) / difference + 2;
    } else {
        sector = (r - g) / difference + 4;
    }
    const double degrees = sector * 60;
    return (degrees < 0 ? degrees + 360 : degrees) * (1.0 / 360);
}

/// The colour of a hue whose largest component is \p largest and whose smallest is \p smallest.
inline std::array<double, 3> FromHue(double hue, double largest, double smallest)
{
    if (hue < 0 || hue > 1) hue -= std::floor(hue);
    double position = hue * 6;
    // A hue of 1 closes the circle. The test is turned round so that NaN fails it too.
    if (!(position < 6)) position = 0;
    const int sextant = static_cast<int>(position);
    const double rise = (largest - smallest) * (position - sextant);
    switch (sextant) {
    case 0:
        return {largest, smallest + rise, smallest};
    case 1:
        return {largest - rise, largest, smallest};
    case 2:
        return {smallest, largest, smallest + rise};
    case 3:
        return {smallest, largest - rise, largest};
    case 4:
        return {smallest + rise, smallest, largest};
    default:
        return {largest, smallest, largest - rise};
    }
}

/// Hue, lightness and saturation, each of 0 .. 1. Hue and saturation of a grey are 0.
inline std::array<double, 3> RgbToHls(const std::array<double, 3>& rgb)
{
    const auto [smallest, largest] = std::ranges::minmax(rgb);
    const double difference = largest - smallest;
    const double sum = largest + smallest;
    const double lightness = 0.5 * sum;
    if (difference == 0) return {0, lightness, 0};
    const double saturation = difference / (lightness > 0.5 ? 2 - sum : sum);
    return {saturation == 0 ? 0 : Hue(rgb, largest, difference), lightness, saturation};
}

/// The way back. A hue outside 0 .. 1 loses its whole part.
inline std::array<double, 3> HlsToRgb(const std::array<double, 3>& hls)
{
    const auto [hue, lightness, saturation] = hls;
    const double largest =
        lightness <= 0.5 ? (saturation + 1) * lightness : (saturation + lightness) - saturation * lightness;
    if (largest == 0) return {0, 0, 0};
    return FromHue(hue, largest, 2 * lightness - largest);
}

} // namespace vfil

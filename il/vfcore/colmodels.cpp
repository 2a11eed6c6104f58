/// \file
/// The formulas of the colour models, and their table.

#include "colmodels.h"

#include <vfil/color.h>

#include <algorithm>
#include <cmath>

namespace vfil {

namespace {

/// The angle of a colour that is no grey, as a part of a turn. On a tie the earlier of red, green, blue
/// counts as the largest.
double Hue(const Triple& rgb, double largest, double difference)
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
Triple FromHue(double hue, double largest, double smallest)
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

Triple Same(const Triple& rgb)
{
    return rgb;
}

Triple RgbToHls(const Triple& rgb)
{
    const auto [smallest, largest] = std::ranges::minmax(rgb);
    const double difference = largest - smallest;
    const double sum = largest + smallest;
    const double lightness = 0.5 * sum;
    if (difference == 0) return {0, lightness, 0};
    const double saturation = difference / (lightness > 0.5 ? 2 - sum : sum);
    return {saturation == 0 ? 0 : Hue(rgb, largest, difference), lightness, saturation};
}

Triple HlsToRgb(const Triple& hls)
{
    const auto [hue, lightness, saturation] = hls;
    const double largest =
        lightness <= 0.5 ? (saturation + 1) * lightness : (saturation + lightness) - saturation * lightness;
    if (largest == 0) return {0, 0, 0};
    return FromHue(hue, largest, 2 * lightness - largest);
}

Triple RgbToHsv(const Triple& rgb)
{
    const auto [smallest, largest] = std::ranges::minmax(rgb);
    if (largest == 0) return {0, 0, 0};
    const double difference = largest - smallest;
    const double saturation = difference / largest;
    return {saturation == 0 ? 0 : Hue(rgb, largest, difference), saturation, largest};
}

Triple HsvToRgb(const Triple& hsv)
{
    const auto [hue, saturation, value] = hsv;
    return FromHue(hue, value, value * (1 - saturation));
}

Triple Complement(const Triple& v)
{
    return {1 - v[0], 1 - v[1], 1 - v[2]};
}

template <const vfILColorMatrix& matrix>
Triple Transform(const Triple& v)
{
    Triple result;
    for (unsigned out = 0; out < 3; ++out) {
        result[out] = v[0] * matrix[out] + v[1] * matrix[4 + out] + v[2] * matrix[8 + out] + matrix[12 + out];
    }
    return result;
}

using Rows = std::array<Triple, 3>;

constexpr double Dot(const Triple& a, const Triple& b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

constexpr Triple Times(const Rows& m, const Triple& v)
{
    return {Dot(m[0], v), Dot(m[1], v), Dot(m[2], v)};
}

constexpr Triple Cross(const Triple& a, const Triple& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

/// The columns of an inverse are the cross products of the rows, over the determinant.
constexpr Rows Inverse(const Rows& m)
{
    const Rows columns = {Cross(m[1], m[2]), Cross(m[2], m[0]), Cross(m[0], m[1])};
    const double determinant = Dot(m[0], columns[0]);
    Rows inverse{};
    for (unsigned i = 0; i < 3; ++i) {
        for (unsigned j = 0; j < 3; ++j)
            inverse[i][j] = columns[j][i] / determinant;
    }
    return inverse;
}

/// The analogue video models: luma, and two colour differences that span -reach .. reach and are brought to 0
/// .. 1.
struct Analogue {
    Rows rows;
    double reach[2];
};

constexpr Analogue kYuv{{{{0.299, 0.587, 0.114}, {-0.147, -0.289, 0.436}, {0.615, -0.515, -0.1}}},
                        {0.436, 0.615}};
constexpr Analogue kYiq{{{{0.299, 0.587, 0.114}, {0.596, -0.274, -0.322}, {0.212, -0.523, 0.311}}},
                        {0.596, 0.523}};

template <const Analogue& model>
Triple RgbToAnalogue(const Triple& rgb)
{
    const auto [first, second] = model.reach;
    const auto [y, u, v] = Times(model.rows, rgb);
    return {y, (u + first) / (2 * first), (v + second) / (2 * second)};
}

/// Inverts the rows themselves, not with the rounded inverse that is published, so that a round trip is one.
template <const Analogue& model>
Triple AnalogueToRgb(const Triple& yuv)
{
    constexpr Rows kInverse = Inverse(model.rows);
    const auto [first, second] = model.reach;
    return Times(kInverse, {yuv[0], yuv[1] * (2 * first) - first, yuv[2] * (2 * second) - second});
}

constexpr ColorModel kModels[] = {
    {PXColorModel_RGB, Same, Same},
    {PXColorModel_HLS, RgbToHls, HlsToRgb},
    {PXColorModel_HSV, RgbToHsv, HsvToRgb},
    {PXColorModel_CMY, Complement, Complement},
    {PXColorModel_YCC, Transform<s_dfArrayRGBAtoYCCAOffset>, Transform<s_dfArrayYCCAOffsettoRGBA>},
    {PXColorModel_YCC709, Transform<s_dfArrayRGBAtoYCCA709Offset>, Transform<s_dfArrayYCCA709OffsettoRGBA>},
    {PXColorModel_YUV, RgbToAnalogue<kYuv>, AnalogueToRgb<kYuv>},
    {PXColorModel_YIQ, RgbToAnalogue<kYiq>, AnalogueToRgb<kYiq>},
};

} // namespace

const ColorModel* FindColorModel(PXColorModel id)
{
    const auto found = std::ranges::find(kModels, id, &ColorModel::id);
    return found != std::end(kModels) ? found : nullptr;
}

} // namespace vfil

/// \file
/// The formulas of the colour models, and their table.

#include "il/loops/convert/colmodels.h"

#include "il/rows/convert/hls.h"

#include <vfil/color.h>

#include <algorithm>

namespace vfil {

namespace {

Triple Same(const Triple& rgb)
{
    return rgb;
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

constexpr YccMatrices k601{s_dfArrayRGBAtoYCCAOffset, s_dfArrayYCCAOffsettoRGBA};
constexpr YccMatrices k709{s_dfArrayRGBAtoYCCA709Offset, s_dfArrayYCCA709OffsettoRGBA};

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

/// The analogue video models: luma, and two colour differences that become 0 .. 1 by an offset and a scale.
/// The scales are those that are published, in seven digits: a grey, whose differences are 0, is then not
/// quite at 0.5, so that rounding does not decide by the last bit which of two samples it packs to.
struct Analogue {
    Rows rows;
    double offset[2];
    double scale[2];
};

constexpr Analogue kYuv{{{{0.299, 0.587, 0.114}, {-0.147, -0.289, 0.436}, {0.615, -0.515, -0.1}}},
                        {0.436, 0.615},
                        {1.146789, 0.8130081}};
constexpr Analogue kYiq{{{{0.299, 0.587, 0.114}, {0.596, -0.274, -0.322}, {0.212, -0.523, 0.311}}},
                        {0.596, 0.523},
                        {0.8389262, 0.9560229}};

template <const Analogue& model>
Triple RgbToAnalogue(const Triple& rgb)
{
    const auto [y, u, v] = Times(model.rows, rgb);
    return {y, (u + model.offset[0]) * model.scale[0], (v + model.offset[1]) * model.scale[1]};
}

/// Inverts the rows themselves, not with the rounded inverse that is published, so that a round trip is one.
template <const Analogue& model>
Triple AnalogueToRgb(const Triple& yuv)
{
    constexpr Rows kInverse = Inverse(model.rows);
    return Times(kInverse, {yuv[0], yuv[1] / model.scale[0] - model.offset[0],
                            yuv[2] / model.scale[1] - model.offset[1]});
}

constexpr ColorModel kModels[] = {
    {PXColorModel_RGB, Same, Same},
    {PXColorModel_HLS, RgbToHls, HlsToRgb},
    {PXColorModel_HSV, RgbToHsv, HsvToRgb},
    {PXColorModel_CMY, Complement, Complement},
    {PXColorModel_YCC, Transform<k601.fromRgb>, Transform<k601.toRgb>},
    {PXColorModel_YCC709, Transform<k709.fromRgb>, Transform<k709.toRgb>},
    {PXColorModel_YUV, RgbToAnalogue<kYuv>, AnalogueToRgb<kYuv>},
    {PXColorModel_YIQ, RgbToAnalogue<kYiq>, AnalogueToRgb<kYiq>},
};

} // namespace

const YccMatrices& MatricesOf(PXColorModel model)
{
    return model == PXColorModel_YCC ? k601 : k709;
}

const ColorModel* FindColorModel(PXColorModel id)
{
    const auto found = std::ranges::find(kModels, id, &ColorModel::id);
    return found != std::end(kModels) ? found : nullptr;
}

} // namespace vfil

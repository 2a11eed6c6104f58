#include <vfil/color.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace {

using Matrix = std::array<double, 16>;

constexpr Matrix kRgb{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// From RGB to a space of luma and colour differences, by the luma weights of red and blue.
Matrix ToYcc(double red, double blue, bool studioRange)
{
    const double weights[] = {red, 1 - red - blue, blue};
    const double lumaScale = studioRange ? 219 / 255. : 1;
    const double chromaScale = studioRange ? 224 / 255. : 1;
    Matrix m{};
    for (std::size_t i = 0; i < 3; ++i) {
        m[4 * i] = lumaScale * weights[i];
        m[4 * i + 1] = chromaScale * ((i == 2) - weights[i]) / (2 - 2 * blue);
        m[4 * i + 2] = chromaScale * ((i == 0) - weights[i]) / (2 - 2 * red);
    }
    if (studioRange) m[12] = 16 / 255., m[13] = m[14] = 128 / 255.;
    m[15] = 1;
    return m;
}

TEST(ColorMatrix, EachLeadsFromOneSpaceToTheOther)
{
    const Matrix ycc = ToYcc(0.299, 0.114, false), yccStudio = ToYcc(0.299, 0.114, true);
    const Matrix ycc709 = ToYcc(0.2126, 0.0722, false), ycc709Studio = ToYcc(0.2126, 0.0722, true);
    struct Case {
        const char* name;
        const vfILColorMatrix& matrix;
        Matrix from, to; ///< each from RGB
        double tolerance;
    };
    // Published in five decimals, of whose errors the luma weights leave this much on the way back.
    constexpr double kThere = 5e-6, kBack = 2.9e-6;
    const Case cases[] = {
        {"RGBAtoYCCA", s_dfArrayRGBAtoYCCA, kRgb, ycc, kThere},
        {"RGBAtoYCCAOffset", s_dfArrayRGBAtoYCCAOffset, kRgb, yccStudio, kThere},
        {"RGBAtoYCCA709", s_dfArrayRGBAtoYCCA709, kRgb, ycc709, 1e-15},
        {"RGBAtoYCCA709Offset", s_dfArrayRGBAtoYCCA709Offset, kRgb, ycc709Studio, 1e-15},
        {"YCCAtoRGBA", s_dfArrayYCCAtoRGBA, ycc, kRgb, kBack},
        {"YCCAOffsettoRGBA", s_dfArrayYCCAOffsettoRGBA, yccStudio, kRgb, kBack},
        {"YCCA709toRGBA", s_dfArrayYCCA709toRGBA, ycc709, kRgb, 1e-15},
        {"YCCA709OffsettoRGBA", s_dfArrayYCCA709OffsettoRGBA, ycc709Studio, kRgb, 1e-15},
        {"601to709", s_dfArrayYCCA601toYCCA709, ycc, ycc709, 1e-15},
        {"709to601", s_dfArrayYCCA709toYCCA601, ycc709, ycc, 1e-15},
        {"601Offset", s_dfArrayYCCA601OffsettoYCCA709Offset, yccStudio, ycc709Studio, 1e-15},
        {"709Offset", s_dfArrayYCCA709OffsettoYCCA601Offset, ycc709Studio, yccStudio, 1e-15},
    };
    for (const Case& c : cases)
        for (std::size_t i = 0; i < 16; ++i) {
            // Such a coefficient stands in full range, where it is a whole number of the last decimal.
            const bool studio = c.to == yccStudio || c.from == yccStudio;
            const std::size_t component = c.to == kRgb ? i / 4 : i % 4;
            const double span = (studio ? (component == 0 ? 219 : 224) : 255) / 255.;
            const double units = 1e5 * c.matrix[i] * (c.to == kRgb ? span : 1 / span);
            EXPECT_NEAR(units, std::round(units), c.tolerance == 1e-15 || i >= 12 ? 1 : 1e-9) << c.name << i;
            double sum = 0;
            for (std::size_t k = 0; k < 4; ++k)
                sum += c.from[i / 4 * 4 + k] * c.matrix[4 * k + i % 4];
            EXPECT_NEAR(sum, c.to[i], c.tolerance) << c.name << " entry " << i;
        }
}

} // namespace

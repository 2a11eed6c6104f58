#include <vfil/color.h>

#include <gtest/gtest.h>

#include <cmath>

namespace {

struct Table {
    const char* name;
    const vfILColorMatrix& matrix;
    double printed[12]; ///< the published seven decimals, input by input, then the constants
};

const Table kTables[] = {
    {"RGBAtoYCCA",
     s_dfArrayRGBAtoYCCA,
     {0.299, -0.16874, 0.5, 0.587, -0.33126, -0.41869, 0.114, 0.5, -0.08131, 0, 0, 0}},
    {"RGBAtoYCCAOffset",
     s_dfArrayRGBAtoYCCAOffset,
     {0.2567882, -0.1482265, 0.4392157, 0.5041294, -0.2909892, -0.3677904, 0.0979059, 0.4392157, -0.0714252,
      0.0627451, 0.5019608, 0.5019608}},
    {"RGBAtoYCCA709",
     s_dfArrayRGBAtoYCCA709,
     {0.2126, -0.1145721, 0.5, 0.7152, -0.3854279, -0.4541529, 0.0722, 0.5, -0.0458471, 0, 0, 0}},
    {"RGBAtoYCCA709Offset",
     s_dfArrayRGBAtoYCCA709Offset,
     {0.1825859, -0.1006437, 0.4392157, 0.6142306, -0.338572, -0.3989422, 0.0620071, 0.4392157, -0.0402735,
      0.0627451, 0.5019608, 0.5019608}},
    {"YCCAtoRGBA", s_dfArrayYCCAtoRGBA, {1, 1, 1, 0, -0.34414, 1.772, 1.402, -0.71414, 0, 0, 0, 0}},
    {"YCCAOffsettoRGBA",
     s_dfArrayYCCAOffsettoRGBA,
     {1.1643836, 1.1643836, 1.1643836, 0, -0.3917665, 2.0172321, 1.5960268, -0.8129719, 0, -0.8742022,
      0.5316721, -1.0856308}},
    {"YCCA709toRGBA",
     s_dfArrayYCCA709toRGBA,
     {1, 1, 1, 0, -0.1873243, 1.8556, 1.5748, -0.4681243, 0, 0, 0, 0}},
    {"YCCA709OffsettoRGBA",
     s_dfArrayYCCA709OffsettoRGBA,
     {1.1643836, 1.1643836, 1.1643836, 0, -0.2132486, 2.1124018, 1.7927411, -0.5329093, 0, -0.9729451,
      0.3014827, -1.1334022}},
    {"YCCA601toYCCA709",
     s_dfArrayYCCA601toYCCA709,
     {1, 0, 0, -0.1181879, 1.0186397, 0.0750495, -0.2126851, 0.114618, 1.0253271, 0, 0, 0}},
    {"YCCA709toYCCA601",
     s_dfArrayYCCA709toYCCA601,
     {1, 0, 0, 0.1015791, 0.9898538, -0.072453, 0.1960763, -0.1106525, 0.9833978, 0, 0, 0}},
    {"YCCA601OffsettoYCCA709Offset",
     s_dfArrayYCCA601OffsettoYCCA709Offset,
     {1, 0, 0, -0.1155498, 1.0186397, 0.0750495, -0.2079376, 0.1146179, 1.0253271, 0.162378, -0.0668901,
      -0.0503851}},
    {"YCCA709OffsettoYCCA601Offset",
     s_dfArrayYCCA709OffsettoYCCA601Offset,
     {1, 0, 0, 0.0993117, 0.9898538, -0.072453, 0.1916995, -0.1106525, 0.9833978, -0.1460762, 0.0606362,
      0.0447022}},
};

TEST(ColorMatrix, AgreesWithThePublishedDecimals)
{
    for (const Table& table : kTables) {
        SCOPED_TRACE(table.name);
        for (std::size_t i = 0; i < 12; ++i)
            EXPECT_NEAR(table.matrix[i / 3 * 4 + i % 3], table.printed[i], 1.0e-7) << i;
        for (const std::size_t i : {3, 7, 11})
            EXPECT_EQ(table.matrix[i], 0) << i;
        EXPECT_EQ(table.matrix[15], 1);
    }
}

/// The matrix of \p first, then \p second, entry by entry.
double Product(const vfILColorMatrix& first, const vfILColorMatrix& second, std::size_t in, std::size_t out)
{
    long double sum = 0;
    for (std::size_t i = 0; i < 4; ++i)
        sum += static_cast<long double>(first[4 * in + i]) * second[4 * i + out];
    return static_cast<double>(sum);
}

TEST(ColorMatrix, ThePairsUndoEachOther)
{
    struct Pair {
        const vfILColorMatrix& there;
        const vfILColorMatrix& back;
        double tolerance;
    };
    const Pair pairs[] = {
        {s_dfArrayRGBAtoYCCA, s_dfArrayYCCAtoRGBA, 2e-5}, // both sides in five decimals
        {s_dfArrayRGBAtoYCCAOffset, s_dfArrayYCCAOffsettoRGBA, 2e-5},
        {s_dfArrayRGBAtoYCCA709, s_dfArrayYCCA709toRGBA, 1e-15},
        {s_dfArrayRGBAtoYCCA709Offset, s_dfArrayYCCA709OffsettoRGBA, 1e-15},
        {s_dfArrayYCCA601toYCCA709, s_dfArrayYCCA709toYCCA601, 1e-15},
        {s_dfArrayYCCA601OffsettoYCCA709Offset, s_dfArrayYCCA709OffsettoYCCA601Offset, 1e-15},
    };
    for (const Pair& pair : pairs) {
        for (std::size_t i = 0; i < 16; ++i) {
            EXPECT_NEAR(Product(pair.there, pair.back, i / 4, i % 4), i % 5 == 0, pair.tolerance);
        }
    }
}

TEST(ColorMatrix, FullPrecisionFollowsFromTheWeights)
{
    // Written out by hand: luma weights of red and blue, and their colour differences.
    const long double r = 0.2126L, g = 0.7152L, b = 0.0722L;
    const long double expected709[] = {
        r, -r / (2 - 2 * b), 0.5L, 0, g, -g / (2 - 2 * b), -g / (2 - 2 * r), 0, b, 0.5L, -b / (2 - 2 * r), 0,
    };
    const double kSpans[] = {219, 224, 224};
    for (std::size_t i = 0; i < 12; ++i) {
        EXPECT_NEAR(s_dfArrayRGBAtoYCCA709[i], static_cast<double>(expected709[i]), 1e-16) << i;
        if (i % 4 == 3) continue;
        const double scale = kSpans[i % 4] / 255;
        EXPECT_NEAR(s_dfArrayRGBAtoYCCA709Offset[i], static_cast<double>(expected709[i]) * scale, 1e-16) << i;
        EXPECT_NEAR(s_dfArrayRGBAtoYCCAOffset[i], s_dfArrayRGBAtoYCCA[i] * scale, 1e-16) << i;
        EXPECT_NEAR(s_dfArrayYCCAOffsettoRGBA[i], s_dfArrayYCCAtoRGBA[i] * 255 / kSpans[i / 4], 1e-15) << i;
    }
    // A 601 colour difference, unweighted and weighted again by 709.
    const long double red601 = 0.299L, blue601 = 0.114L, green601 = 1 - red601 - blue601;
    const long double lumaOfCr = r * (2 - 2 * red601) - g * red601 * (2 - 2 * red601) / green601;
    EXPECT_NEAR(s_dfArrayYCCA601toYCCA709[8], static_cast<double>(lumaOfCr), 1e-15);
    EXPECT_NEAR(s_dfArrayYCCA601toYCCA709[9], static_cast<double>(-lumaOfCr / (2 - 2 * b)), 1e-15);
}

} // namespace

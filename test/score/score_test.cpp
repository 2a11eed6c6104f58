/// \file
/// Figures of mattes against sums by their definitions, and mattes in every format.
#include "score/score.h"

#include <vfil/convert.h>
#include <vfil/host/picturefactory.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <random>

namespace vfil::score {

namespace {

// Many pixels at and beside the limits of the figures.
Matte RandomMatte(std::mt19937& random, long width, long height)
{
    Matte matte{.width = width, .height = height, .coverage = {}};
    for (long i = 0; i < width * height; ++i) {
        const long limits[] = {0, 1310, 3276, 62259, 64225, 65535};
        const long near = limits[random() % 6] + static_cast<long>(random() % 4) - 1;
        const long any = static_cast<long>(random() % 65536);
        matte.coverage.push_back(
            static_cast<std::uint16_t>(random() % 3 == 0 ? any : std::clamp(near, 0L, 65535L)));
    }
    return matte;
}

double Mean(const std::vector<double>& numbers)
{
    double sum = 0;
    for (const double number : numbers)
        sum += number;
    return numbers.empty() ? -1 : sum / static_cast<double>(numbers.size());
}

TEST(Score, AgreesWithTheDefinitionsFrameByFrameAndOverAll)
{
    std::mt19937 random(1);
    Score total;
    std::vector<double> squares, absolute, edge, left, lost;
    for (int frame = 0; frame < 40; ++frame) {
        const long width = 1 + static_cast<long>(random() % 30);
        const Matte matte = RandomMatte(random, width, 9);
        const Matte truth = RandomMatte(random, width, 9);
        const host::PicturePtr differences = Differences(matte, truth);
        for (std::size_t i = 0; i < matte.coverage.size(); ++i) {
            const double m = matte.coverage[i] / 65535.0;
            const double t = truth.coverage[i] / 65535.0;
            squares.push_back(65025 * (m - t) * (m - t));
            absolute.push_back(std::abs(m - t));
            if (t > 0.05 && t < 0.95) edge.push_back(255 * std::abs(m - t));
            if (t == 0) left.push_back(m > 0.02 ? 1 : 0);
            if (t == 1) lost.push_back(m < 0.98 ? 1 : 0);
            const long x = static_cast<long>(i) % width;
            const double shown = differences->Row(8 - static_cast<long>(i) / width)[x] - 128.0;
            EXPECT_EQ(shown == 0, m == t);
            EXPECT_GE(shown * (m - t), 0);
            EXPECT_NEAR(std::abs(shown), std::ceil(127 * std::abs(m - t) - 1e-9), 1e-9);
        }
        total += Compare(matte, truth);
        EXPECT_NEAR(total.MeanSquaredError().value(), Mean(squares), 1e-8);
        EXPECT_NEAR(total.SumOfAbsoluteDifferences(), Mean(absolute) * static_cast<double>(absolute.size()),
                    1e-8);
        EXPECT_NEAR(total.EdgeError().value_or(-1), Mean(edge), 1e-9);
        EXPECT_NEAR(total.ScreenLeftShare().value_or(-1), Mean(left), 1e-12);
        EXPECT_NEAR(total.SolidLostShare().value_or(-1), Mean(lost), 1e-12);
    }
    Matte wide{.width = 2, .height = 1, .coverage = {0, 0}};
    Matte tall{.width = 1, .height = 2, .coverage = {0, 0}};
    EXPECT_THROW(Compare(wide, tall), std::invalid_argument);
    EXPECT_FALSE(Compare(wide, wide).EdgeError() || Compare(wide, wide).SolidLostShare());
}

// Grey and alpha that differ in every row and column, brought to the YCC formats by the library's converter.
TEST(Matte, IsReadFromEveryFormat)
{
    host::RegisterPictureClass();
    const auto grey = [](long x, long y) { return 40 * y + 10 * (x / 2); };
    const auto alpha = [](long x, long y) { return 255 - 30 * y - 7 * x; };
    const auto paint = [&](const GUID& format) {
        host::PicturePtr picture = host::Picture::Create(format, 6, 5);
        const vfILFormatInfo& info = picture->FormatInfo();
        const int pixel = picture->PixelBytes();
        for (long y = 0; y < 5; ++y) {
            for (long i = 0; i < 6 * pixel; ++i) {
                const bool isAlpha = i % pixel / info.sampleBytes == 3;
                picture->Row(y)[i] =
                    static_cast<std::uint8_t>(isAlpha ? alpha(i / pixel, y) : grey(i / pixel, y));
            }
        }
        return picture;
    };
    const host::PicturePtr rgba = paint(PXFormat_RGBA32);
    int read = 0;
    for (std::size_t i = 0; vfILFormatAt(i) != nullptr; ++i) {
        const vfILFormatInfo& info = *vfILFormatAt(i);
        if (!HoldsMatte(info.id)) continue;
        SCOPED_TRACE(info.name);
        ++read;
        host::PicturePtr picture = info.ycc ? host::Picture::Create(info.id, 6, 5) : paint(info.id);
        if (info.ycc) {
            const host::PicturePtr input = info.sampleBytes == 2 ? paint(PXFormat_RGBA64) : rgba;
            vfILRGBA2YCCA converter;
            converter.SetInputImg(input.Get());
            converter.SetOutputImg(picture.Get());
            ASSERT_EQ(converter.Execute(), VFIL_SUCCESS);
        }
        const Matte luma = MatteOf(*picture, Channel::Luma);
        const Matte any = MatteOf(*picture);
        EXPECT_EQ(any.channel, info.alpha ? Channel::Alpha : Channel::Luma);
        for (long y = 0; y < 5; ++y) {
            // The way to full-rate YCC keeps the order of rows in memory.
            const long row = info.ycc && !info.subsampled ? y : 4 - y;
            for (long x = 0; x < 6; ++x) {
                EXPECT_LE(std::labs(luma.Row(row)[x] - 257 * grey(x, y)), info.ycc ? 300 : 0);
                EXPECT_EQ(any.Row(row)[x], info.alpha ? 257 * alpha(x, y) : luma.Row(row)[x]);
            }
        }
    }
    EXPECT_EQ(read, 24);
    const host::PicturePtr hls = host::Picture::Create(PXFormat_HLSA32, 1, 1);
    EXPECT_THROW(MatteOf(*hls), std::invalid_argument);
    std::uint8_t* row = rgba->Row(0);
    for (long y = 0; y < 5; ++y) {
        for (long x = 0; x < 6; ++x)
            rgba->Row(y)[4 * x + 3] = 255;
    }
    row[0] = 255;
    row[1] = row[2] = 0;
    const Matte opaque = MatteOf(*rgba);
    EXPECT_EQ(opaque.channel, Channel::Luma);
    EXPECT_NEAR(opaque.Row(4)[0], 65535 * 0.2126, 0.5);
    EXPECT_EQ(MatteOf(*rgba, Channel::Alpha).Row(4)[0], 65535);
}

} // namespace

} // namespace vfil::score

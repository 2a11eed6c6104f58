#include "il/loops/transform/warprun.h"
#include "support/guardedimage.h"
#include "support/processors.h"
#include "support/rowcheck.h"

#include <vfil/vectorwarp.h>

#include <cmath>
#include <functional>
#include <limits>

using namespace vfil;
using namespace vfil::test;

namespace {

constexpr Pixel kOpaqueBlack = {0, 0, 0, 255};

/// A field of vectors, made of a function of the pixel.
struct Field {
    using Function = std::function<std::array<double, 2>(double x, double y)>;

    Field(long w, long h, const Function& function) : width(w), height(h)
    {
        for (long i = 0; i < w * h; ++i) {
            const auto [vx, vy] = function(static_cast<double>(i % w), static_cast<double>(i / w));
            x.push_back(vx);
            y.push_back(vy);
        }
    }

    long width, height;
    std::vector<double> x, y;
};

enum Path { kExact, kFast };

void Warp(const Field& field, GuardedImage& in, GuardedImage& out, Path path, double factor = 1,
          bool simd = true)
{
    Switched<vfILVectorWarp> warp(simd);
    warp.SetVectors(field.x.data(), field.y.data());
    warp.SetWarpFactor(factor);
    warp.SetFastApproximation(path);
    warp.SetDefaultColor(vfILColor(0.2, 0.4, 0.6, 0.8));
    Connect(warp, &in, nullptr, &out);
    ASSERT_EQ(warp.Verify(), VFIL_SUCCESS);
    ASSERT_EQ(warp.Execute(), VFIL_SUCCESS);
    ASSERT_TRUE(out.AreGuardsIntact());
}

TEST(VectorWarp, WholeVectorsMovePixels)
{
    std::mt19937 random(1);
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_Mono8})
        for (const auto& [dx, dy] : {std::pair{0L, 0L}, {3L, -2L}, {-1L, 4L}})
            for (const Path path : {kExact, kFast})
                for (const double factor : {1.0, 2.0, path == kFast ? -0.5 : 0.25}) {
                    GuardedImage in(format, 13, 11), out(format, 13, 11), blank(format, 13, 11);
                    in.Randomise(random);
                    const Field still(13, 11, [](double, double) { return std::array{99.0, 99.0}; });
                    Warp(still, in, blank, kFast);
                    const Pixel none = path == kFast               ? blank.Get(0, 0)
                                       : format == PXFormat_RGBA32 ? kOpaqueBlack
                                                                   : Pixel{};
                    const Field field(13, 11, [dx = dx, dy = dy, factor](double, double) {
                        return std::array{static_cast<double>(dx) / factor, static_cast<double>(dy) / factor};
                    });
                    Warp(field, in, out, path, factor);
                    for (long y = 0; y < 11; ++y)
                        for (long x = 0; x < 13; ++x)
                            ASSERT_EQ(out.Get(x, y),
                                      in.Contains(x - dx, y - dy) ? in.Get(x - dx, y - dy) : none)
                                << x << ", " << y << " by " << dx << ", " << dy << " times " << factor;
                    Warp(field, in, in, path, factor);
                    ASSERT_EQ(in.Bytes(), out.Bytes()) << "in place";
                }
}

TEST(VectorWarp, TurnsAndZoomsLeaveNoHoles)
{
    constexpr double kTurns[][2] = {{0, 0.02},    {0.02, 0},  {0.02, 0.02},
                                    {-0.02, 0.1}, {0.3, 0.4}, {0.1, -0.3}};
    // The colour tells where a pixel is: twice its column, and thrice its row.
    GuardedImage in(PXFormat_RGBA32, 120, 80), out(PXFormat_RGBA32, 120, 80);
    for (long i = 0; i < 120 * 80; ++i)
        in.Set(i % 120, i / 120,
               {static_cast<int>(2 * (i % 120)), static_cast<int>(3 * (i / 120)), 255, 255});
    for (const auto& [turn, zoom] : kTurns) {
        const double a = (1 + zoom) * std::cos(turn);
        const double b = (1 + zoom) * std::sin(turn);
        const Field field(120, 80, [&](double x, double y) {
            return std::array{a * (x - 60.3) - b * (y - 40.7) + 60.3 - x,
                              b * (x - 60.3) + a * (y - 40.7) + 40.7 - y};
        });
        for (const bool simd : {false, true}) {
            Warp(field, in, out, kExact, 1, simd);
            for (long y = 0; y < 80; ++y)
                for (long x = 0; x < 120; ++x) {
                    const double dx = static_cast<double>(x) - 60.3;
                    const double dy = static_cast<double>(y) - 40.7;
                    const double u = 60.3 + (a * dx + b * dy) / (a * a + b * b);
                    const double v = 40.7 + (a * dy - b * dx) / (a * a + b * b);
                    if (u < 0.01 || v < 0.01 || u > 118.99 || v > 78.99) continue;
                    ASSERT_NEAR(out.Get(x, y)[0], 2 * u, 0.51)
                        << x << ", " << y << " of " << turn << ", " << zoom;
                    ASSERT_NEAR(out.Get(x, y)[1], 3 * v, 0.51)
                        << x << ", " << y << " of " << turn << ", " << zoom;
                    ASSERT_EQ(out.Get(x, y)[2], 255);
                }
        }
    }
}

TEST(VectorWarp, LaterCellsStandAndSomeAreNeverDrawn)
{
    std::mt19937 random(2);
    GuardedImage in(PXFormat_RGBA32, 16, 9), out(PXFormat_RGBA32, 16, 9);
    in.Randomise(random);
    // The right half moves over the left one, whose column 7 is torn across both.
    Warp(Field(16, 9, [](double x, double) { return std::array{x < 8 ? 0.0 : -6.0, 0.0}; }), in, out, kExact);
    for (long y = 0; y < 9; ++y) {
        EXPECT_EQ(out.Get(1, y), in.Get(1, y));
        for (long x = 3; x <= 9; ++x)
            EXPECT_EQ(out.Get(x, y), in.Get(x + 6, y)) << x;
        for (long x = 10; x < 16; ++x)
            EXPECT_EQ(out.Get(x, y), kOpaqueBlack) << x;
    }
    // Columns become rows: no cell has an extent in x.
    Warp(Field(16, 9, [](double x, double y) { return std::array{y - x, x - y}; }), in, out, kExact);
    for (long i = 0; i < 16 * 9; ++i)
        ASSERT_EQ(out.Get(i % 16, i / 16), kOpaqueBlack) << i;
}

TEST(VectorWarp, CellsWithoutAPlaceAreNotDrawn)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    std::mt19937 random(3);
    std::normal_distribution<double> normal;
    GuardedImage in(PXFormat_Mono8, 2, 2), out(PXFormat_Mono8, 2, 2);
    for (long i = 0; i < 4; ++i)
        in.Set(i % 2, i / 2, {255});
    for (int round = 0; round < 400; ++round) {
        const double size = round % 5 == 0 ? 1e299 : 0.4; // of the corners beside it
        Field field(2, 2, [&](double, double) {
            return std::array{size * normal(random), size * normal(random)};
        });
        (round % 2 == 0 ? field.x : field.y)[random() % 4] = round % 3 == 0 ? kInfinity : -kInfinity;
        Warp(field, in, out, kExact);
        ASSERT_EQ(out.Bytes(), std::vector<std::uint8_t>(4)) << round;
    }
}

/// How far the grid stands along the vectors in the input and in the output.
struct Factors {
    double first, second;
};

std::vector<std::uint8_t> Warped(Level level, const Field& field, const std::vector<std::uint8_t>& pixels,
                                 const Factors& factors)
{
    std::vector<std::uint8_t> out(pixels.size());
    const WarpRun run{.vectorsX = field.x.data(),
                      .vectorsY = field.y.data(),
                      .first = factors.first,
                      .second = factors.second,
                      .sourceWidth = field.width,
                      .sourceHeight = field.height,
                      .source = {pixels.data(),
                                 field.width * 4,
                                 0,
                                 0,
                                 static_cast<std::int32_t>(field.width),
                                 static_cast<std::int32_t>(field.height),
                                 {1, 2, 3, 4}},
                      .sample = FindSampleRow(false, SampleForm::Bilinear, SamplePixel::FourBytes),
                      .kernels = &WarpRowsAt(level),
                      .output = out.data(),
                      .width = field.width,
                      .height = field.height};
    const vfILVectorWarp processor;
    factors.second == 0 ? WarpByPixel<4>(processor, run) : WarpByMesh<4>(processor, run);
    return out;
}

TEST(VectorWarp, VectorsGiveThePlainBytes)
{
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    constexpr double kOdd[] = {kInfinity, -kInfinity, std::numeric_limits<double>::quiet_NaN(),
                               1e300,     -1e18,      60};
    constexpr long kSizes[][2] = {{1, 1}, {1, 9}, {7, 1}, {2, 2}, {5, 3}, {33, 21}, {300, 4}};
    constexpr Factors kFactors[] = {{0, 1}, {1, 0.5}, {1, 0}, {-0.7, 1.3}};
    std::mt19937 random(8);
    std::normal_distribution<double> normal;
    const auto odd = [&](double usual) { return random() % 20 == 0 ? kOdd[random() % 6] : usual; };
    const Field::Function functions[] = {
        [](double x, double y) {
            return std::array{3 * std::sin(x / 9 + y / 7), 2 * std::cos(x / 8 - y / 5)};
        },
        [&](double, double) {
            return std::array{normal(random) * 0.8, normal(random) * 0.8};
        },
        [&](double, double) {
            return std::array{normal(random) * 3, normal(random) * 3};
        },
        [&](double, double) {
            return std::array{odd(0.3), odd(1)};
        },
        [](double x, double y) {
            return std::array{-0.45 * x, 0.7 * y};
        },
        [](double x, double y) {
            return std::array{2.6 * y - x, 1.1 * x - y};
        },
        // Still, and moved by whole pixels, across the edges as well.
        [](double x, double y) {
            return std::array{x < 20 ? 0.0 : 2.0, y < 9 ? -1.0 : std::floor(x / 90)};
        },
    };
    for (const auto& size : kSizes)
        for (const auto& function : functions)
            for (const Factors& factors : kFactors) {
                const Field field(size[0], size[1], function);
                GuardedImage in(PXFormat_RGBA32, size[0], size[1]);
                in.Randomise(random);
                const auto expected = Warped(Level::Plain, field, in.Bytes(), factors);
                for (const Level level : VectorLevels()) {
                    ASSERT_NE(WarpRowsAt(level).cells, WarpRowsAt(Below(level)).cells);
                    ASSERT_EQ(Warped(level, field, in.Bytes(), factors), expected)
                        << size[0] << " x " << size[1] << ", field " << &function - functions << ", level "
                        << static_cast<int>(level) << ", factors " << factors.first << ", " << factors.second;
                }
            }
}

TEST(VectorWarp, RefusalsAndSizes)
{
    GuardedImage in(PXFormat_RGBA32, 6, 5), out(PXFormat_RGBA32, 9, 3), words(PXFormat_RGBA64, 6, 5);
    const Field field(6, 5, [](double, double) { return std::array{0.0, 0.0}; });
    vfILVectorWarp warp;
    Connect(warp, &in, nullptr, &out);
    EXPECT_EQ(warp.Execute(), VFIL_FAILURE) << "no vectors";
    EXPECT_EQ(warp.GetLastError().GetErrorCode(), 0x10010U);
    warp.SetVectors(field.x.data(), field.y.data());
    for (const int approximate : {0, 1}) {
        warp.SetFastApproximation(approximate);
        EXPECT_EQ(warp.Execute(), VFIL_SUCCESS);
        for (long i = 0; i < 9 * 3; ++i)
            EXPECT_EQ(out.Get(i % 9, i / 9), in.Contains(i % 9, i / 9) ? in.Get(i % 9, i / 9)
                                             : approximate != 0        ? Pixel{}
                                                                       : kOpaqueBlack);
    }
    EXPECT_TRUE(out.AreGuardsIntact());
    vfILVectorWarp wide;
    Connect(wide, &words, nullptr, &words);
    EXPECT_EQ(wide.Verify(), VFIL_FAILURE);
    EXPECT_EQ(wide.GetLastError().GetErrorCode(), 0x10034U);
    EXPECT_EQ(wide.Execute(), VFIL_FAILURE);
}

} // namespace

/// \file
/// The slicers against a brute-force cut and values by hand, and the two operations on polygons in space.
#include "cellarea.h"

#include <vfil/pixelcoverage.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>

namespace vfil::test {
namespace {

/// The areas in a square of pixels from (first, first).
std::vector<double> Areas(const Outline& outline, long first, long size)
{
    IncrementalPixelCoverage2D coverage;
    coverage.Initialize(outline.Size(), outline.x.data(), outline.y.data(), outline.SignedArea() > 0 ? 1 : 0,
                        first);
    std::vector<double> areas;
    for (long row = first; row < first + size; ++row) {
        EXPECT_EQ(coverage.GetCurrentY(), row);
        coverage.StartHorizontalPass(first);
        for (long column = first; column < first + size; ++column) {
            EXPECT_EQ(coverage.GetCurrentX(), column);
            areas.push_back(coverage.GetAreaAndAdvance());
        }
    }
    return areas;
}

TEST(Coverage, IsTheAreaOfABruteForceCut)
{
    std::mt19937 random(1);
    int cut = 0;
    for (int round = 0; round < 600; ++round) {
        const Outline outline = RandomOutline(random, 3 + round % 20, 9);
        if (outline.Size() < 3) continue;
        const std::vector<double> areas = Areas(outline, -5, 20);
        for (std::size_t i = 0; i < areas.size(); ++i) {
            const auto expected =
                CellArea(outline, static_cast<long>(i % 20) - 5, static_cast<long>(i / 20) - 5);
            ASSERT_NEAR(areas[i], static_cast<double>(expected), 1e-14) << round << " of " << outline.Size();
            cut += expected > 0 && expected < 1 ? 1 : 0;
        }
        // A walk may begin anywhere.
        const long later = static_cast<long>(random() % 9);
        EXPECT_NEAR(Areas(outline, later, 1)[0], static_cast<double>(CellArea(outline, later, later)), 1e-14);
    }
    EXPECT_GT(cut, 5000);
}

TEST(Coverage, OfBoxesIsExact)
{
    std::mt19937 random(2);
    const auto any = [&] { return static_cast<double>(random() % 8192) / 1024; };
    for (int round = 0; round < 500; ++round) {
        const double x[2] = {any(), any()};
        const double y[2] = {any(), any()};
        const Outline outline{{x[0], x[1], x[1], x[0]}, {y[0], y[0], y[1], y[1]}};
        const std::vector<double> areas = Areas(outline, 0, 9);
        for (std::size_t i = 0; i < areas.size(); ++i)
            ASSERT_EQ(areas[i], CellArea(outline, static_cast<long>(i % 9), static_cast<long>(i / 9)));
    }
    EXPECT_EQ(Areas({{2.5, 3.5, 3.5, 2.5}, {0.5, 0.5, 1.5, 1.5}}, 1, 3),
              (std::vector<double>{0, 0, 1, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Areas({{0.75, 1.75, 1.75, 0.75}, {0.75, 0.75, 1.75, 1.75}}, 1, 2),
              (std::vector<double>{0.5625, 0.1875, 0.1875, 0.0625}));
}

using Vertices = std::vector<std::pair<double, double>>;

std::vector<Vertices> Bands(const Outline& outline, int reversed, long rows)
{
    IncrementalPixelCoverage1D slicer;
    slicer.Initialize(outline.Size(), outline.x.data(), outline.y.data(), reversed, 0);
    std::vector<Vertices> bands;
    for (long row = 0; row < rows; ++row) {
        EXPECT_EQ(slicer.GetCurrentY(), row);
        double x[IncrementalPixelCoverage1D::kMaxBandVertices];
        double y[IncrementalPixelCoverage1D::kMaxBandVertices];
        const long count = slicer.GetPolygonAndIncrement(x, y);
        bands.emplace_back();
        for (long i = 0; i < count; ++i)
            bands.back().emplace_back(x[i], y[i]);
    }
    return bands;
}

TEST(Coverage, BandsGoUpTheLeftSideAndDownTheRight)
{
    // A triangle's top comes once; a level top has both its ends.
    EXPECT_EQ(Bands({{2, 4, 0}, {1, 3, 3}}, 1, 5),
              (std::vector<Vertices>{{},
                                     {{1.5, 1.5}, {2, 1}, {2.5, 1.5}},
                                     {{0.5, 2.5}, {1.5, 1.5}, {2.5, 1.5}, {3.5, 2.5}},
                                     {{0, 3}, {0.5, 2.5}, {3.5, 2.5}, {4, 3}},
                                     {}}));
    EXPECT_EQ(Bands({{0, 0, 1, 1}, {0, 1, 1, 0}}, 0, 4),
              (std::vector<Vertices>{
                  {{0, 0.5}, {0, 0}, {1, 0}, {1, 0.5}}, {{0, 1}, {0, 0.5}, {1, 0.5}, {1, 1}}, {}, {}}));
}

TEST(Coverage, NothingComesOfWhatIsNoPolygon)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double far = std::numeric_limits<double>::max();
    const std::vector<double> many(23, 1.0);
    for (const Outline& outline :
         {Outline{}, Outline{{0, 2}, {0, 2}}, Outline{{0, 1, nan}, {0, 0, 2}},
          Outline{{0, 1, 2}, {0, 0, -std::numeric_limits<double>::infinity()}}, Outline{many, many},
          Outline{{1, 1, 1}, {0, 1, 2}}, Outline{{0, 1, 2}, {1, 1, 1}}})
        EXPECT_EQ(Areas(outline, 0, 3), std::vector<double>(9));
    // Of no use, but harmless.
    Areas({{-far, far, far, -far}, {-far, far, -far, far}}, 0, 3);
    IncrementalPixelCoverage2D coverage;
    EXPECT_EQ(coverage.GetAreaAndAdvance(), 0);
}

struct Space {
    std::vector<double> x, y, z;
};

TEST(ClipPolygon, KeepsThePositiveSide)
{
    const Space square{{0, 4, 4, 0}, {0, 0, 2, 2}, {1, 1, 1, 1}};
    struct Case {
        std::vector<std::array<double, 4>> planes;
        int changed;
        Space left;
    };
    for (const Case& c :
         std::vector<Case>{{{{1, 0, 0, 0.5}, {-1, 0, 0, 4}}, 0, square},
                           {{{1, 0, 0, 0.0005}}, 0, square},
                           {{{1, 0, -5, 0}}, 1, {}},
                           {{{-1, 0, 0, 0.001}}, 1, {}},
                           {{{-1, 0, 0, 2}, {1, 0, 0, 0}}, 1, {{0, 2, 2, 0}, {0, 0, 2, 2}, {1, 1, 1, 1}}},
                           {{{-1, 0, 1, 0}}, 1, {{0, 1, 1, 0}, {0, 0, 2, 2}, {1, 1, 1, 1}}},
                           {{{1, 0, 0, -1}, {0, -1, 0, 1}}, 1, {{1, 1, 4, 4}, {1, 0, 0, 1}, {1, 1, 1, 1}}},
                           {{{1, 1, 0, -1}}, 1, {{0, 1, 4, 4, 0}, {1, 0, 0, 2, 2}, {1, 1, 1, 1, 1}}}}) {
        Space left = square;
        for (auto* values : {&left.x, &left.y, &left.z})
            values->resize(4 + c.planes.size());
        long n = 4;
        std::vector<double> planes(4 * c.planes.size());
        std::memcpy(planes.data(), c.planes.data(), planes.size() * sizeof(double));
        EXPECT_EQ(vfILClipPolygon(n, left.x.data(), left.y.data(), left.z.data(),
                                  reinterpret_cast<const double(*)[4]>(planes.data()),
                                  static_cast<long>(c.planes.size())),
                  c.changed);
        for (auto* values : {&left.x, &left.y, &left.z})
            values->resize(static_cast<std::size_t>(n));
        EXPECT_EQ(left.x, c.left.x);
        EXPECT_EQ(left.y, c.left.y);
        EXPECT_EQ(left.z, c.left.z);
    }
}

TEST(PolygonArea, IsThatOfThePlaneItLiesIn)
{
    const Space triangle{{1, 0, 0}, {0, 2, 0}, {0, 0, 2}};
    EXPECT_DOUBLE_EQ(vfILPolygonArea(3, triangle.x.data(), triangle.y.data(), triangle.z.data()),
                     std::sqrt(6.0));
    EXPECT_EQ(vfILPolygonArea(2, triangle.x.data(), triangle.y.data(), triangle.z.data()), 0);
}

} // namespace
} // namespace vfil::test

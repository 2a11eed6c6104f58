/// \file
/// Mappings from the numbers by which people describe them: where points go, by formulas of their own.
#include "catalogue/mapping.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace {

using namespace vfil::catalogue;

constexpr double kNear = 1e-9;

MapPoint At(const AffineMap& m, MapPoint p)
{
    return {m.a * p.x + m.b * p.y + m.c, m.d * p.x + m.e * p.y + m.f};
}

MapPoint At(const Homography& m, MapPoint p)
{
    const double w = m[6] * p.x + m[7] * p.y + m[8];
    return {(m[0] * p.x + m[1] * p.y + m[2]) / w, (m[3] * p.x + m[4] * p.y + m[5]) / w};
}

void ExpectAt(const MapPoint& point, double x, double y)
{
    EXPECT_NEAR(point.x, x, kNear * (1 + std::abs(x)));
    EXPECT_NEAR(point.y, y, kNear * (1 + std::abs(y)));
}

// y is up: a positive angle turns the right end of a row up.
TEST(Mapping, TurnsScalesShearsAndShiftsInThisOrder)
{
    const struct {
        AffineParts parts;
        MapPoint from;
        MapPoint to;
    } cases[] = {
        {{.rotation = 90}, {8, 2}, {4, 6}},
        {{.rotation = -450}, {8, 2}, {4, -2}},
        {{.rotation = 30}, {4, 2}, {4, 2}},
        {{.rotation = 30}, {6, 2}, {4 + std::sqrt(3), 3}},
        {{.scale = {2, -1}}, {5, 3}, {6, 1}},
        {{.shear = {0.5, 0}}, {4, 4}, {5, 4}},
        {{.shear = {0, 0.5}}, {6, 2}, {6, 3}},
        {{.scale = {2, 1}, .rotation = 90}, {5, 2}, {4, 4}},
        {{.scale = {3, 1}, .shear = {0, 1}}, {5, 2}, {7, 5}},
        {{.rotation = 180, .translation = {10, 20}, .about = MapPoint{0, 0}}, {1, 2}, {9, 18}},
    };
    for (const auto& c : cases) {
        const MapPoint to = At(AffineOf(c.parts, 9, 5), c.from);
        ExpectAt(to, c.to.x, c.to.y);
    }
}

// Of a picture of 4 x 3 the middle lies between pixels after a turn, in one axis.
TEST(Mapping, QuarterTurnsKeepWholePixels)
{
    for (const double angle : {90.0, 180.0, 270.0, -90.0, 720.0}) {
        const MapPoint corner = At(AffineOf({.rotation = angle}, 4, 3), {0, 0});
        EXPECT_EQ(corner.x, std::trunc(corner.x)) << angle;
        EXPECT_EQ(corner.y, std::trunc(corner.y)) << angle;
    }
    const Extent extent = ExtentOf(AffineOf({.rotation = 90}, 4, 3), 4, 3);
    EXPECT_EQ(extent.right - extent.left, 3);
    EXPECT_EQ(extent.top - extent.bottom, 4);
}

TEST(Mapping, TheLeastScaleIsTheShortestImageOfAUnitVector)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> number(-3, 3);
    for (int i = 0; i < 50; ++i) {
        const AffineMap map{number(random), number(random), 0, number(random), number(random), 0};
        double least = 1e9;
        for (int k = 0; k < 3600; ++k) {
            const double angle = k * 3.14159265358979 / 3600;
            const MapPoint image = At(map, {std::cos(angle), std::sin(angle)});
            least = std::min(least, std::hypot(image.x, image.y));
        }
        EXPECT_NEAR(LeastScale(map), least, 5e-3);
    }
}

TEST(Mapping, ConvexMeansOnceAround)
{
    EXPECT_TRUE(AreConvex({0, 0, 4, 0, 5, 5, 0, 4}));
    EXPECT_TRUE(AreConvex({0, 4, 5, 5, 4, 0, 0, 0})) << "mirrored";
    EXPECT_FALSE(AreConvex({0, 0, 4, 0, 0, 4, 4, 4})) << "crossed";
    EXPECT_FALSE(AreConvex({0, 0, 4, 0, 1, 1, 0, 4})) << "hollow";
    EXPECT_FALSE(AreConvex({0, 0, 2, 0, 4, 0, 0, 4})) << "three on a line";
    EXPECT_FALSE(AreConvex({0, 0, 0, 0, 4, 4, 0, 4})) << "two in one";
}

TEST(Mapping, AHomographyHitsItsCornersAndKeepsLines)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<double> number(-300, 300);
    int tried = 0;
    while (tried < 200) {
        Corners corners{};
        for (double& c : corners)
            c = number(random);
        if (!AreConvex(corners)) continue;
        ++tried;
        const Homography map = *HomographyOf(corners, 41, 31);
        const MapPoint from[4] = {{0, 0}, {40, 0}, {40, 30}, {0, 30}};
        for (std::size_t i = 0; i < 4; ++i)
            ExpectAt(At(map, from[i]), corners[2 * i], corners[2 * i + 1]);
        // The diagonals cross where those of the picture do.
        const MapPoint middle = At(map, {20, 15});
        for (const std::size_t i : {0ul, 1ul}) {
            const MapPoint a{corners[2 * i], corners[2 * i + 1]};
            const MapPoint b{corners[2 * i + 4], corners[2 * i + 5]};
            const double off = (b.x - a.x) * (middle.y - a.y) - (b.y - a.y) * (middle.x - a.x);
            EXPECT_NEAR(off / std::hypot(b.x - a.x, b.y - a.y), 0, 1e-6);
        }
    }
    EXPECT_FALSE(HomographyOf({0, 0, 1, 0, 1, 1, 0, 1}, 1, 5));
}

TEST(Mapping, WhatIsNotBeforeTheCameraHasNoExtent)
{
    const Homography floor = Normalized({2, 0, 0, 0, 2, 0, 0, 0.1, 2});
    EXPECT_EQ(floor[8], 1);
    EXPECT_DOUBLE_EQ(floor[7], 0.05);
    const auto extent = ExtentOf(floor, 11, 11);
    ASSERT_TRUE(extent);
    ExpectAt({extent->right, extent->top}, 10.5 / 0.975, 10.5 / 1.525);
    EXPECT_FALSE(ExtentOf(Homography{1, 0, 0, 0, 1, 0, 0, -0.1, 1}, 11, 11)) << "over the horizon";
    EXPECT_EQ(Normalized({0, 4, 0, 4, 0, 0, 0, 0, 1e-9})[1], 1) << "next to no last number";
}

// Sides of whole pixels, in the middle, edges on edges.
TEST(Mapping, FittingAndFillingLandOnWholePixels)
{
    for (const long width : {7, 451, 1920}) {
        for (const bool fill : {false, true}) {
            const AffineMap map = AffineOnto({640, 360}, fill, width, 300);
            const Extent extent = ExtentOf(map, width, 300);
            for (const double edge : {extent.left, extent.right, extent.bottom, extent.top})
                EXPECT_NEAR(edge + 0.5, std::round(edge + 0.5), kNear * 1000) << width;
            const double across = extent.right - extent.left;
            const double up = extent.top - extent.bottom;
            EXPECT_NEAR(fill ? std::min(across / 640, up / 360) : std::max(across / 640, up / 360), 1, kNear);
            EXPECT_NEAR(across / static_cast<double>(width), up / 300, 0.08) << "scaled alike";
            EXPECT_NEAR(extent.left + extent.right, 639, 1.001);
        }
    }
}

} // namespace

#include <vfil/geometry.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace {

constexpr long kMin = std::numeric_limits<std::int32_t>::min();
constexpr long kMax = std::numeric_limits<std::int32_t>::max();

template <class Vector>
testing::AssertionResult Is(const Vector& v, double x, double y)
{
    if (v[0] == x && v[1] == y) return testing::AssertionSuccess();
    return testing::AssertionFailure() << '(' << v[0] << ", " << v[1] << ')';
}

TEST(Vector2, ConvertsByTruncationAndSaturates)
{
    vfILVector2l v;
    EXPECT_TRUE(Is(v = -1.9f, -1, -1));
    EXPECT_TRUE(Is(v = vfILVector2f(2.9f, -0.9f), 2, 0));
    EXPECT_TRUE(Is(v = vfILVector2f(1e30f, -1e30f), kMax, kMin));
    EXPECT_TRUE(Is(v = vfILVector2f(std::nanf(""), INFINITY), 0, kMax));
    EXPECT_TRUE(Is(vfILVector2l(kMax, kMin) + vfILVector2l(1, -1), kMax, kMin));
    EXPECT_TRUE(Is(vfILVector2l(kMin, kMax) - vfILVector2l(1, -1), kMin, kMax));
}

TEST(Vector2, ReckonsInTheTypeOfTheResult)
{
    vfILVector2l l(5, -7);
    vfILVector2f f(1.75f, -2.5f);
    EXPECT_TRUE(Is(l - vfILVector2l(1, 2), 4, -9));
    EXPECT_TRUE(Is(l + f, 6.75f, -9.5f));
    EXPECT_TRUE(Is(l - f, 3.25f, -4.5f));
    EXPECT_TRUE(Is(f + l, 6.75f, -9.5f));
    EXPECT_TRUE(Is(f - l, -3.25f, 4.5f));
    EXPECT_TRUE(Is(l += f, 6, -9));
    EXPECT_TRUE(Is(l -= vfILVector2f(-1.75f, 0), 7, -9));
    EXPECT_TRUE(Is(f += l, 8.75f, -11.5f));
    EXPECT_TRUE(Is(f -= vfILVector2f(1, 0.5f), 7.75f, -12.0f));
    EXPECT_TRUE(Is(vfILVector2l(3, -4) * 0.5f, 1.5f, -2.0f));
    EXPECT_EQ(vfILVector2l(3, -4) * vfILVector2l(5, 6), -9.0f);
    EXPECT_EQ(vfILVector2l(1, 2) * vfILVector2f(0.5f, -0.25f), 0.0f);
    EXPECT_EQ(vfILVector2f(0.5f, -0.25f) * vfILVector2l(1, 4), -0.5f);
    const vfILVector2l lowest(kMin, kMin);
    EXPECT_EQ(lowest * lowest, std::ldexp(1.0f, 63));
    EXPECT_EQ(lowest * vfILVector2l(kMax, kMax), -std::ldexp(1.0f, 63));
}

TEST(Box, SpecialBoxes)
{
    const vfILBbox2l box(2, 3, 4, 5);
    EXPECT_EQ(vfILBbox2l(0, 0, 5, 0).IsNull(), 1);
    EXPECT_EQ(vfILBbox2l(7, 8, -1, 9) | box, box);
    EXPECT_EQ(box | vfILBbox2l(7, 8, 9, -1), box);
    EXPECT_EQ(vfILBbox2l(7, 8, -1, 9) | vfILBbox2l(1, 2, 3, 0), vfILBbox2l(1, 2, 3, 0)) << "both null";
    EXPECT_EQ(vfILBbox2l(0, 0, 0, 5) & box, vfILBbox2l(0, 0, 0, 0)) << "of a null box";
    EXPECT_EQ(box & vfILBbox2l(20, 30, 1, 1), vfILBbox2l(20, 30, 0, 0)) << "of boxes apart";
    EXPECT_EQ(vfILBbox2l(10, 20, kMax, kMax) & vfILBbox2l(0, 0, 50, 60), vfILBbox2l(10, 20, 40, 40));
    EXPECT_EQ(vfILBbox2l(kMin, 0, 1, 1) | vfILBbox2l(kMax, 0, 1, 1), vfILBbox2l(kMin, 0, kMax, 1));
    EXPECT_EQ(vfILBbox2l(kMin, kMin, 1, 1) & vfILBbox2l(kMax, kMax, 1, 1), vfILBbox2l(kMax, kMax, 0, 0));
}

bool Has(const vfILBbox2l& box, long x, long y)
{
    return x >= box.GetOffsetX() && x - box.GetOffsetX() < box.GetSizeX() && y >= box.GetOffsetY() &&
           y - box.GetOffsetY() < box.GetSizeY();
}

TEST(Box, CommonPartHasThePixelsOfBothAndTheHullTheOuterEdges)
{
    std::mt19937 random(1);
    const auto pick = [&](long low, long high) {
        return std::uniform_int_distribution<long>(low, high)(random);
    };
    const auto box = [&] { return vfILBbox2l(pick(-6, 6), pick(-6, 6), pick(1, 8), pick(1, 8)); };
    for (int round = 0; round < 4000; ++round) {
        const vfILBbox2l a = box(), b = box(), cut = a & b, hull = a | b;
        ASSERT_TRUE((vfILBbox2l(a) &= b) == cut && (vfILBbox2l(a) |= b) == hull);
        for (long y = -8; y <= 16; ++y)
            for (long x = -8; x <= 16; ++x)
                ASSERT_EQ(Has(cut, x, y), Has(a, x, y) && Has(b, x, y)) << "round " << round;
        for (int i = 0; i < 2; ++i) {
            const auto end = [i](const vfILBbox2l& of) { return of.GetOffset()[i] + of.GetSize()[i]; };
            ASSERT_EQ(hull.GetOffset()[i], std::min(a.GetOffset()[i], b.GetOffset()[i]));
            ASSERT_EQ(end(hull), std::max(end(a), end(b)));
        }
    }
}

} // namespace

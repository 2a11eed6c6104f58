#include <vfil/geometry.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <string>

namespace {

constexpr long kMin = std::numeric_limits<std::int32_t>::min();
constexpr long kMax = std::numeric_limits<std::int32_t>::max();

std::string Text(const vfILBbox2l& box)
{
    std::ostringstream text;
    text << '(' << box.GetOffsetX() << ", " << box.GetOffsetY() << ") " << box.GetSizeX() << " x "
         << box.GetSizeY();
    return text.str();
}

template <class Vector>
testing::AssertionResult Is(const Vector& v, double x, double y)
{
    if (v[0] == x && v[1] == y) return testing::AssertionSuccess();
    return testing::AssertionFailure() << '(' << v[0] << ", " << v[1] << ')';
}

testing::AssertionResult Is(const vfILBbox2l& box, long x, long y, long w, long h)
{
    if (box == vfILBbox2l(x, y, w, h)) return testing::AssertionSuccess();
    return testing::AssertionFailure() << Text(box);
}

TEST(Vector2, AssignsFloatsByTruncationAndSaturation)
{
    vfILVector2l v;
    EXPECT_TRUE(Is(v, 0, 0));
    EXPECT_TRUE(Is(v = -1.9f, -1, -1));
    EXPECT_TRUE(Is(v = vfILVector2f(2.9f, -0.9f), 2, 0));
    EXPECT_TRUE(Is(v = vfILVector2f(1e30f, -1e30f), kMax, kMin));
    EXPECT_TRUE(Is(v = vfILVector2f(std::nanf(""), INFINITY), 0, kMax));
    EXPECT_TRUE(Is(vfILVector2l(kMin, kMax), kMin, kMax));
    if constexpr (sizeof(long) > 4) {
        EXPECT_TRUE(Is(vfILVector2l(kMax + 1L, kMin - 1L), kMax, kMin));
    }
}

TEST(Vector2, AddsAndSubtractsInTheTypeOfTheResult)
{
    vfILVector2l l(5, -7);
    vfILVector2f f(1.75f, -2.5f);
    EXPECT_TRUE(Is(l + vfILVector2l(1, 2), 6, -5));
    EXPECT_TRUE(Is(l - vfILVector2l(1, 2), 4, -9));
    EXPECT_TRUE(Is(l + f, 6.75f, -9.5f));
    EXPECT_TRUE(Is(l - f, 3.25f, -4.5f));
    EXPECT_TRUE(Is(f + l, 6.75f, -9.5f));
    EXPECT_TRUE(Is(f - l, -3.25f, 4.5f));
    EXPECT_TRUE(Is(l += f, 6, -9));
    EXPECT_TRUE(Is(l -= f, 5, -7));
    EXPECT_TRUE(Is(l += vfILVector2f(-1.75f, 0), 4, -7));
    EXPECT_TRUE(Is(l -= vfILVector2f(-1.75f, 0), 5, -7));
    EXPECT_TRUE(Is(l -= vfILVector2l(5, 5), 0, -12));
    EXPECT_TRUE(Is(f += l, 1.75f, -14.5f));
    EXPECT_TRUE(Is(f -= vfILVector2f(1, 0.5f), 0.75f, -15.0f));
    EXPECT_TRUE(Is(vfILVector2l(kMax, kMin) + vfILVector2l(1, -1), kMax, kMin));
    EXPECT_TRUE(Is(vfILVector2l(kMin, kMax) - vfILVector2l(1, -1), kMin, kMax));
}

TEST(Vector2, MultipliesWithoutOverflow)
{
    const vfILVector2l lowest(kMin, kMin);
    EXPECT_EQ(vfILVector2l(3, -4) * vfILVector2l(5, 6), -9.0f);
    EXPECT_EQ(lowest * lowest, std::ldexp(1.0f, 63));
    EXPECT_EQ(lowest * vfILVector2l(kMax, kMax), -std::ldexp(1.0f, 63));
    EXPECT_EQ(vfILVector2l(1, 2) * vfILVector2f(0.5f, -0.25f), 0.0f);
    EXPECT_EQ(vfILVector2f(0.5f, -0.25f) * vfILVector2l(1, 4), -0.5f);
    EXPECT_TRUE(Is(vfILVector2l(3, -4) * 0.5f, 1.5f, -2.0f));
}

TEST(Box, NullBoxesAndBoxesApart)
{
    const vfILBbox2l null(0, 0, 0, 5);
    const vfILBbox2l box(2, 3, 4, 5);
    EXPECT_EQ(null.IsNull(), 1);
    EXPECT_EQ(vfILBbox2l(0, 0, 5, -1).IsNull(), 1);
    EXPECT_EQ(vfILBbox2l(0, 0, 1, 1).IsNull(), 0);
    EXPECT_TRUE(Is(box & null, 0, 0, 0, 0));
    EXPECT_TRUE(Is(null & box, 0, 0, 0, 0));
    EXPECT_TRUE(Is(null | box, 2, 3, 4, 5));
    EXPECT_TRUE(Is(box | null, 2, 3, 4, 5));
    EXPECT_TRUE(Is(null | vfILBbox2l(7, 8, -1, 9), 7, 8, -1, 9));
    EXPECT_TRUE(Is(box & vfILBbox2l(6, 4, 9, 2), 6, 4, 0, 2));
    EXPECT_TRUE(Is(box & vfILBbox2l(20, 30, 1, 1), 20, 30, 0, 0));
}

TEST(Box, EdgesBeyond32Bits)
{
    EXPECT_TRUE(Is(vfILBbox2l(10, 20, kMax, kMax) & vfILBbox2l(0, 0, 50, 60), 10, 20, 40, 40));
    EXPECT_TRUE(Is(vfILBbox2l(kMax, 0, kMax, 1) & vfILBbox2l(kMax, 0, 2, 1), kMax, 0, 2, 1));
    EXPECT_TRUE(Is(vfILBbox2l(kMin, 0, 1, 1) | vfILBbox2l(kMax, 0, 1, 1), kMin, 0, kMax, 1));
    EXPECT_TRUE(Is(vfILBbox2l(kMin, kMin, 1, 1) & vfILBbox2l(kMax, kMax, 1, 1), kMax, kMax, 0, 0));
}

bool Has(const vfILBbox2l& box, long x, long y)
{
    return x >= box.GetOffsetX() && x - box.GetOffsetX() < box.GetSizeX() && y >= box.GetOffsetY() &&
           y - box.GetOffsetY() < box.GetSizeY();
}

/// The smallest box around the pixels of -8 .. 16 for which the predicate holds; null without any.
template <class Predicate>
vfILBbox2l Around(Predicate holds)
{
    long x0 = kMax, y0 = kMax, x1 = kMin, y1 = kMin;
    for (long y = -8; y <= 16; ++y) {
        for (long x = -8; x <= 16; ++x) {
            if (!holds(x, y)) continue;
            x0 = std::min(x0, x);
            y0 = std::min(y0, y);
            x1 = std::max(x1, x);
            y1 = std::max(y1, y);
        }
    }
    return x1 < x0 ? vfILBbox2l() : vfILBbox2l(x0, y0, x1 - x0 + 1, y1 - y0 + 1);
}

TEST(Box, CommonPartAndHullAreThoseOfThePixels)
{
    std::mt19937 random(1);
    const auto pick = [&](long low, long high) {
        return std::uniform_int_distribution<long>(low, high)(random);
    };
    const auto box = [&] { return vfILBbox2l(pick(-6, 6), pick(-6, 6), pick(-1, 8), pick(-1, 8)); };
    for (int round = 0; round < 4000; ++round) {
        const vfILBbox2l a = box(), b = box();
        SCOPED_TRACE(Text(a) + " and " + Text(b));
        const vfILBbox2l common = Around([&](long x, long y) { return Has(a, x, y) && Has(b, x, y); });
        const vfILBbox2l hull = Around([&](long x, long y) { return Has(a, x, y) || Has(b, x, y); });
        vfILBbox2l cut = a, joined = a;
        cut &= b;
        joined |= b;
        ASSERT_EQ(cut.IsNull(), common.IsNull());
        ASSERT_TRUE(common.IsNull() || cut == common);
        ASSERT_EQ(joined.IsNull(), hull.IsNull());
        ASSERT_TRUE(hull.IsNull() || joined == hull);
    }
}

} // namespace

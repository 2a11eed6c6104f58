#include <vfil/transfo4.h>

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>

namespace {

using Point = HmPoint3<double>;

Point Mapped(const HmTransfo4& transfo, Point point)
{
    transfo.MapInPlace(point);
    return point;
}

void ExpectNear(const Point& a, const Point& b, double tolerance)
{
    EXPECT_NEAR(a.x, b.x, tolerance);
    EXPECT_NEAR(a.y, b.y, tolerance);
    EXPECT_NEAR(a.z, b.z, tolerance);
}

TEST(Transfo4, PointMeetsTheLastStepFirst)
{
    const double rows[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 5, 6, 7, 1};
    HmTransfo4 doubled;
    doubled.Scale(2, 3, 4).PostMultiply(doubled);
    struct {
        const char* name;
        HmTransfo4 transfo;
        Point from, to;
    } const cases[] = {
        {"the fourth row moves", HmTransfo4(rows), {1, 2, 3}, {6, 8, 10}},
        {"scale, then translation",
         HmTransfo4().Translate(10, 20, 30).Scale(2, 3, 4),
         {1, 1, 1},
         {12, 23, 34}},
        {"by itself", doubled, {1, 1, 1}, {4, 9, 16}},
        {"x to y about z", HmTransfo4().Rotate(90, 0, 0, 2), {1, 0, 5}, {0, 1, 5}},
        {"y to z about x", HmTransfo4().Rotate(90, 3, 0, 0), {5, 1, 0}, {5, 0, 1}},
        {"z to x about y", HmTransfo4().Rotate(-270, 0, 1, 0), {0, 5, 1}, {1, 5, 0}},
        {"no axis", HmTransfo4().Rotate(33, 0, 0, 0), {1, 2, 3}, {1, 2, 3}},
        {"a third of a turn about the diagonal", HmTransfo4().Rotate(120, 7, 7, 7), {1, 2, 3}, {3, 1, 2}},
        {"z, then y, then x", HmTransfo4().RotateXYZ({90, 90, 90}), {1, 0, 0}, {0, 0, 1}},
        {"reset", HmTransfo4(rows).ResetToIdentity(), {1, 2, 3}, {1, 2, 3}},
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.name);
        ExpectNear(Mapped(test.transfo, test.from), test.to, 1e-14);
    }
    // No rounding is left of a quarter turn.
    EXPECT_EQ(HmTransfo4().Rotate(450, 0, 0, 1).GetMatrixPtr()[0], 0.0);
}

TEST(Transfo4, ExtractedStepsMakeItAgain)
{
    std::mt19937 random(4);
    std::uniform_real_distribution<double> any(-1, 1);
    for (int round = 0; round < 2000; ++round) {
        const auto angle = [&] {
            return round % 3 == 0 ? 90.0 * std::floor(any(random) * 4) : any(random) * 360;
        };
        const auto size = [&] { return round % 5 == 0 && any(random) > 0 ? 0.0 : any(random) * 3; };
        HmTransfo4 transfo;
        transfo.Translate(any(random), any(random), any(random))
            .RotateXYZ({angle(), angle(), angle()})
            .Scale(size(), size(), size());
        Point scale, rotation, translation;
        transfo.ExtractTransforms(scale, rotation, translation);
        EXPECT_GE(scale.x, 0);
        EXPECT_GE(scale.y, 0);
        HmTransfo4 again;
        again.Translate(translation.x, translation.y, translation.z)
            .RotateXYZ(rotation)
            .Scale(scale.x, scale.y, scale.z);
        for (int i = 0; i < 16; ++i)
            ASSERT_NEAR(again.GetMatrixPtr()[i], transfo.GetMatrixPtr()[i], 1e-9) << round << " at " << i;
    }
}

} // namespace

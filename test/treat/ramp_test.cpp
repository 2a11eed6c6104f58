/// \file
/// Ramps against a model of its own: of a pixel by itself, the index from whole numbers, the colour from the
/// two stops around it.
#include "support/allocations.h"
#include "support/framemodel.h"
#include "support/processors.h"

#include <vfil/colorgrade.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <map>

using namespace vfil::test;

namespace {

using Colour = std::array<double, 4>;
using Ramp = Switched<vfILColorGradeImg>;
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

vfILColor Of(const Colour& c)
{
    return {c[0], c[1], c[2], c[3]};
}

int HalfToEven(double value)
{
    const double below = std::floor(value);
    const double rest = value - below;
    const bool up = rest > 0.5 || (rest == 0.5 && std::fmod(below, 2) != 0);
    return static_cast<int>(below) + (up ? 1 : 0);
}

/// What lies i of n - 1 steps from one colour to another.
Colour Along(const Colour& from, const Colour& to, long i, long n)
{
    if (n <= 1) return from;
    Colour made;
    for (std::size_t c = 0; c < 4; ++c)
        made[c] = static_cast<double>(i) * (to[c] - from[c]) * (1 / static_cast<double>(n - 1)) + from[c];
    return made;
}

struct Scene {
    vfILRampType type = VFIL_RAMP_LINEAR;
    std::map<long, Colour> stops;
    long x = 0, y = 0, dx = 0, dy = 0;
    double ratio = 1;
    bool inverted = false;
    std::array<Colour, 4> corners{}; ///< lower left, lower right, upper right, upper left
    vfILBbox2l roi;
    vfILVector2l offset;
    unsigned long mode = VFIL_MODE_RGBA;

    void Set(vfILColorGradeImg& p, IPXImage* out) const
    {
        p.SetType(type);
        for (const auto& [weight, colour] : stops)
            p.SetColor(Of(colour), weight);
        p.SetVector(x, y, dx, dy);
        p.SetRatio(ratio);
        p.SetInvertFlag(inverted ? 1 : 0);
        p.SetColorLL(Of(corners[0]));
        p.SetColorLR(Of(corners[1]));
        p.SetColorUR(Of(corners[2]));
        p.SetColorUL(Of(corners[3]));
        p.SetOutputImg(out);
        p.SetROI(roi);
        p.SetOutputOffset(offset);
        p.SetProcessingMode(mode);
    }
    /// Where a pixel of the plane lies: the largest index that is not beyond it.
    long Index(long px, long py, long last) const
    {
        if (type == VFIL_RAMP_RADIAL) {
            const double height = static_cast<double>(py - y) * ratio;
            const auto width = static_cast<double>(px - x);
            const double distance = std::sqrt(width * width + height * height);
            return distance < static_cast<double>(last) ? static_cast<long>(distance) : last;
        }
        const long dot = (px - x) * dx + (py - y) * dy, square = dx * dx + dy * dy;
        if (dot <= 0) return 0;
        const double guess = static_cast<double>(dot) / std::sqrt(static_cast<double>(square));
        long index = std::clamp(static_cast<long>(guess) - 2, 0L, last);
        while (index < last && (index + 1) * (index + 1) * square <= dot * dot)
            ++index;
        return index;
    }
    Colour At(long tx, long ty) const
    {
        if (type == VFIL_RAMP_SQUARE) {
            const long height = roi.GetSizeY();
            return Along(Along(corners[0], corners[3], ty, height), Along(corners[1], corners[2], ty, height),
                         tx, roi.GetSizeX());
        }
        const auto n = static_cast<long>(std::ceil(std::sqrt(static_cast<double>(dx * dx + dy * dy))));
        const long index = Index(roi.GetOffsetX() + tx, roi.GetOffsetY() + ty, n - 1);
        std::map<long, Colour> ordered;
        for (const auto& [weight, colour] : stops)
            ordered[inverted ? 99 - weight : weight] = colour;
        auto next = ordered.begin();
        while (next != ordered.end() && n * next->first / 100 <= index)
            ++next;
        if (next == ordered.begin()) return next->second;
        const auto& [weight, colour] = *std::prev(next);
        if (next == ordered.end()) return colour;
        const long place = n * weight / 100;
        return Along(colour, next->second, index - place, n * next->first / 100 - place);
    }
    Snapshot Expected(const GuardedImage& out) const
    {
        Snapshot expected(out);
        for (long ty = 0; ty < roi.GetSizeY(); ++ty)
            for (long tx = 0; tx < roi.GetSizeX(); ++tx) {
                if (!IsRowTreated(mode, offset[1] + ty)) continue;
                Pixel pixel{};
                const Colour colour = At(tx, ty);
                for (std::size_t c = 0; c < static_cast<std::size_t>(out.Format().channels); ++c)
                    pixel[c] = HalfToEven(colour[c] * out.Format().Full());
                expected.At(offset[0] + tx, offset[1] + ty) = pixel;
            }
        return expected;
    }
};

/// Colours of few and of many values, so that ties come up, too.
Colour RandomColour(std::mt19937& random)
{
    Colour colour;
    for (double& c : colour)
        c = random() % 3 ? static_cast<double>(random() % 11) / 10
                         : static_cast<double>(random() % 256) / 255;
    return colour;
}

Scene RandomScene(std::mt19937& random, const GuardedImage& out)
{
    Scene s;
    s.type = static_cast<vfILRampType>(RandomIn(random, 1, 3));
    for (long count = RandomIn(random, 2, 6); static_cast<long>(s.stops.size()) < count;)
        s.stops[random() % 3 ? RandomIn(random, 0, 99) : 99 * RandomIn(random, 0, 1)] = RandomColour(random);
    for (Colour& corner : s.corners)
        corner = RandomColour(random);
    const long reach = random() % 3 ? 12 : 400;
    s.x = RandomIn(random, -9, 20);
    s.y = RandomIn(random, -9, 9);
    s.dx = random() % 4 ? RandomIn(random, -reach, reach) : 0;
    s.dy = random() % 4 ? RandomIn(random, -reach, reach) : 0;
    if (s.dx == 0 && s.dy == 0) s.dx = 3 * s.type - 4;
    if (s.type == VFIL_RAMP_RADIAL && std::abs(s.dx) < 2) s.dx = 4;
    constexpr double kRatios[] = {1, 1, 0.5, 3, 0.1, 1e-9, 1e300};
    s.ratio = kRatios[random() % 7];
    s.inverted = random() % 3 == 0;
    const long width = RandomIn(random, 1, out.Width()), height = RandomIn(random, 1, out.Height());
    s.roi = {RandomIn(random, -5, 5), RandomIn(random, -5, 5), width, height};
    s.offset =
        vfILVector2l{RandomIn(random, 0, out.Width() - width), RandomIn(random, 0, out.Height() - height)};
    s.mode |= RandomFieldBits(random);
    return s;
}

TEST(ColorGrade, IsTheModelsInAllFormats)
{
    std::mt19937 random(21);
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16})
        for (int round = 0; round < 500; ++round) {
            GuardedImage out(format, RandomIn(random, 1, round % 3 ? 40 : 150), RandomIn(random, 1, 7));
            out.Randomise(random);
            const Scene scene = RandomScene(random, out);
            Ramp p(random() % 2);
            scene.Set(p, &out);
            const Snapshot expected = scene.Expected(out);
            ASSERT_EQ(p.Execute(), VFIL_SUCCESS) << std::hex << p.GetLastError().GetErrorCode();
            ASSERT_EQ(Difference(expected, out), "")
                << out.Format().name << " type " << scene.type << ", vector " << scene.x << ' ' << scene.y
                << ' ' << scene.dx << ' ' << scene.dy << ", ratio " << scene.ratio << ", stops "
                << scene.stops.size();
        }
}

// Pictures whose results go around the cache: long rows, in which sums of steps would drift.
TEST(ColorGrade, IsTheModelsInLargePictures)
{
    std::mt19937 random(22);
    for (int round = 0; round < 3; ++round) {
        GuardedImage out(PXFormat_RGBA32, 3000, 300);
        Scene scene = RandomScene(random, out);
        scene.type = static_cast<vfILRampType>(round + 1);
        scene.roi = {0, 0, 3000, 300};
        scene.offset = vfILVector2l{0, 0};
        scene.dx = 2000;
        scene.dy = 900;
        scene.ratio = 1;
        for (Colour& corner : scene.corners)
            corner = {0.1, 0.2, 0.7, 1};
        scene.corners[2] = {1, 0.5, 0, 0.3};
        Ramp p(true);
        scene.Set(p, &out);
        const Snapshot expected = scene.Expected(out);
        ASSERT_EQ(p.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(Difference(expected, out), "") << "type " << round + 1;
    }
}

TEST(ColorGrade, OneColourAndNone)
{
    GuardedImage out(PXFormat_RGBA32, 3, 2);
    for (const vfILRampType type : {VFIL_RAMP_LINEAR, VFIL_RAMP_RADIAL}) {
        vfILColorGradeImg p;
        p.SetOutputImg(&out);
        p.SetType(type);
        p.SetVector(0, 0, 2, 0);
        ASSERT_EQ(p.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(out.Get(2, 1), (Pixel{0, 0, 0, 255}));
        p.SetColor({0.7, 0.5, 0.1, 0.3}, 63);
        ASSERT_EQ(p.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(out.Get(0, 1), (Pixel{179, 128, 26, 77})) << "half away from zero";
        p.SetColor({0.7, 0.5, 0.1, 0.3}, 64);
        ASSERT_EQ(p.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(out.Get(0, 1), (Pixel{178, 128, 26, 76})) << "half to even";
    }
    // 256 colours: the last stop is number 253, in either direction.
    GuardedImage row(PXFormat_Mono8, 256, 1);
    vfILColorGradeImg p;
    p.SetOutputImg(&row);
    p.SetVector(0, 0, 256, 0);
    p.SetColor({0, 1, 1, 1}, 0);
    p.SetColor({1, 0, 0, 0}, 99);
    for (const bool inverted : {false, true}) {
        p.SetInvertFlag(inverted ? 1 : 0);
        ASSERT_EQ(p.Execute(), VFIL_SUCCESS);
        const int first = inverted ? 255 : 0;
        EXPECT_EQ(row.Get(0, 0)[0], first);
        EXPECT_EQ(row.Get(251, 0)[0], std::abs(254 - first));
        EXPECT_EQ(row.Get(252, 0)[0], 255 - first);
        EXPECT_EQ(row.Get(255, 0)[0], 255 - first);
    }
}

TEST(ColorGrade, StopsAndAngles)
{
    vfILColorGradeImg p;
    EXPECT_EQ(p.GetAngle(), 0);
    p.SetColor({1, 0, 0, 0}, 99);
    p.SetColor({0, 1, 0, 0}, 99);
    p.SetColor({0, 0, 1, 0}, 100);
    p.SetColor({0, 0, 1, 0}, -1);
    EXPECT_EQ(p.GetColor(99), vfILColor(0, 1, 0, 0));
    const vfILColorGradeImg copy(p);
    EXPECT_EQ(p.DelColor(99), 1);
    EXPECT_EQ(p.DelColor(99), 0);
    EXPECT_EQ(p.DelColor(100), 0);
    EXPECT_EQ(p.IsWeightOccupied(99) + p.IsWeightOccupied(-1) + p.IsWeightOccupied(100), 0);
    EXPECT_EQ(copy.IsWeightOccupied(99), 1) << "a copy has stops of its own";
    EXPECT_EQ(p.GetColor(99), vfILColor(0, 0, 0, 1));
    const long angles[][3] = {{0, 0, 270},   {0, 9, 90},     {0, -1, 270}, {5, 0, 0},
                              {-5, 0, 180},  {9, 9, 45},     {1, -1, 315}, {-3, -3, 225},
                              {1000, -1, 0}, {100, -1, 359}, {2, 3, 56},   {-1000, -1, 180}};
    for (const auto& [dx, dy, angle] : angles) {
        p.SetVector(7, 8, dx, dy);
        EXPECT_EQ(p.GetAngle(), angle) << dx << ' ' << dy;
    }
}

TEST(ColorGrade, StopsAfterARowAndRefusesWithoutMemory)
{
    for (const int type : {1, 2, 3}) {
        GuardedImage out(PXFormat_Mono16, 4, 4);
        vfILColorGradeImg p;
        p.SetOutputImg(&out);
        p.SetType(static_cast<vfILRampType>(type));
        p.SetVector(0, 0, 3, 3);
        for (const long weight : {0, 99})
            p.SetColor({1, 1, 1, 1}, weight);
        for (const auto set : {&vfILColorGradeImg::SetColorLL, &vfILColorGradeImg::SetColorLR,
                               &vfILColorGradeImg::SetColorUR, &vfILColorGradeImg::SetColorUL})
            (p.*set)({1, 1, 1, 1});
        g_pollsLeft = 1;
        p.SetInterruptFct(StopAfterPolls, nullptr);
        ASSERT_EQ(p.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(out.Get(3, 1)[0], 65535);
        EXPECT_EQ(out.Get(0, 2)[0], 0);
        p.SetInterruptFct(nullptr, nullptr);
        ASSERT_EQ(p.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(out.Get(0, 2)[0], 65535);
        if (type != VFIL_RAMP_SQUARE) {
            EXPECT_GE(CountRefusedRuns(p, out), 1);
            p.SetVector(0, 0, std::numeric_limits<long>::min(), 2'000'000'000);
            EXPECT_EQ(p.Execute(), VFIL_FAILURE);
            EXPECT_EQ(p.GetLastError().GetErrorCode(), 0x10001U);
        }
    }
}

// Each refusal with everything that would be refused later, too.
TEST(ColorGrade, RefusesInOrder)
{
    GuardedImage out(PXFormat_RGBA32, 4, 4), empty(PXFormat_RGBA32), other(PXFormat_BGRA32, 4, 4);
    vfILColorGradeImg p;
    const vfILColor bad(0, kNaN, 0, 0), good(0, 0, 0, 1);
    p.SetROI({0, 0, 4, 4});
    p.SetOutputOffset({0, 1});
    p.SetProcessingMode(VFIL_MODE_RGB);
    p.SetType(static_cast<vfILRampType>(4));
    p.SetRatio(kNaN);
    p.SetInvertFlag(2);
    for (const auto set : {&vfILColorGradeImg::SetColorLL, &vfILColorGradeImg::SetColorLR,
                           &vfILColorGradeImg::SetColorUR, &vfILColorGradeImg::SetColorUL})
        (p.*set)(bad);
    p.SetColor(bad, 50);
    p.SetDefaultColor(bad);
    const auto fails = [&](unsigned long code) {
        EXPECT_EQ(p.Verify(), VFIL_FAILURE);
        EXPECT_EQ(p.Execute(), VFIL_FAILURE) << "Execute verifies";
        EXPECT_EQ(p.GetLastError().GetErrorCode(), code);
    };
    fails(0x20002), p.SetProcessingMode(VFIL_MODE_RGBA | VFIL_MODE_EVEN_ROWS);
    fails(0x10002), p.SetOutputImg(&empty);
    fails(0x10003), p.SetOutputImg(&other);
    fails(0x1000D), p.SetOutputImg(&out);
    fails(0x1000A), p.SetOutputOffset({0, 0});
    fails(0x1003E), p.SetType(VFIL_RAMP_LINEAR);
    fails(0x1003F), p.SetType(VFIL_RAMP_RADIAL);
    p.SetVector(5, 5, 1, -1);
    fails(0x1003F), p.SetVector(5, 5, 0, -2);
    fails(0x10045), p.SetRatio(0);
    fails(0x10045), p.SetType(VFIL_RAMP_LINEAR);
    p.SetVector(9, 9, 0, 1);
    fails(0x10045), p.SetRatio(std::numeric_limits<double>::infinity());
    fails(0x10047), p.SetInvertFlag(1);
    fails(0x10041), p.SetColorLL(good);
    fails(0x10042), p.SetColorLR(good);
    fails(0x10043), p.SetColorUR(good);
    fails(0x10040), p.SetColorUL(good);
    fails(0x10044), p.DelColor(50);
    EXPECT_EQ(p.Verify(), VFIL_SUCCESS);
    p.SetColor(good, 1), p.SetColor(good, 2);
    for (const vfILRampType type : {VFIL_RAMP_LINEAR, VFIL_RAMP_RADIAL, VFIL_RAMP_SQUARE}) {
        p.SetType(type);
        p.SetVector(1, 1, 0, 2);
        EXPECT_EQ(p.Execute(), VFIL_SUCCESS) << "an infinite ratio";
    }
}

} // namespace

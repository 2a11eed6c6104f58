/// \file
/// Sharpening against its definition, and what comes in its way.
#include "support/allocations.h"
#include "support/filterscene.h"

#include <vfil/host/picturefactory.h>

#include <vfil/edges.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace vfil::test;

namespace {

struct Settings {
    float rx, ry, degree;
    vfILSharpenType type;
    double sensitivity;
};

/// The weighted sum of the window, or its middle where no edge is.
int Expected(const Settings& by, long rx, long ry, const WindowSample& at, int full)
{
    std::vector<float> weights;
    for (long y = -ry; y <= ry; ++y)
        for (long x = -rx; x <= rx; ++x) {
            const bool inside =
                static_cast<float>(x * x) * by.ry * by.ry + static_cast<float>(y * y) * by.rx * by.rx <=
                by.rx * by.rx * by.ry * by.ry;
            weights.push_back(inside ? -by.degree : 0);
        }
    const auto count = static_cast<double>(std::count(weights.begin(), weights.end(), -by.degree));
    weights[weights.size() / 2] = static_cast<float>((count - 1) * static_cast<double>(by.degree) + 1);
    float sum = 0;
    for (std::size_t i = 0; i < weights.size(); ++i)
        sum += weights[i] * static_cast<float>(
                                at(static_cast<long>(i) % (2 * rx + 1), static_cast<long>(i) / (2 * rx + 1)));
    const int sharp = static_cast<int>(std::clamp(sum + 0.5F, 0.0F, static_cast<float>(full)));
    if (by.type == VFIL_SHARPEN_PLAIN) return sharp;
    const auto near = [&](long x, long y) { return at(rx + x, ry + y); };
    const int gx = near(1, -1) + near(1, 0) / 2 + near(1, 1) - near(-1, -1) - near(-1, 0) / 2 - near(-1, 1);
    const int gy = near(-1, 1) + near(0, 1) / 2 + near(1, 1) - near(-1, -1) - near(0, -1) / 2 - near(1, -1);
    const long threshold = std::lround((1 - by.sensitivity) * full);
    return std::min(std::abs(gx) + std::abs(gy), full) > threshold ? sharp : near(0, 0);
}

void Set(vfILSharpenImg& sharpen, const Settings& by)
{
    sharpen.SetRadius(by.rx, by.ry);
    sharpen.SetDegree(by.degree);
    sharpen.SetType(by.type);
    sharpen.SetEdgeSensitivity(by.sensitivity);
}

TEST(Sharpen, FollowsItsDefinition)
{
    const float radii[] = {1, 2, 1.9F, 3.25F, 0.5F, 0}, degrees[] = {1, 0.5F, 0.125F, 0.01F};
    for (unsigned seed = 0; seed < 600; ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        Settings by{radii[random() % 6], radii[random() % 6], degrees[random() % 4],
                    random() % 2 ? VFIL_SHARPEN_EDGES : VFIL_SHARPEN_PLAIN,
                    static_cast<double>(random() % 5) / 4};
        if (by.rx < 1 && by.ry < 1) by.rx = 1;
        const long rx = std::max(1L, static_cast<long>(by.rx)), ry = std::max(1L, static_cast<long>(by.ry));
        FilterScene scene(random, *kFilterFormats[random() % 4], RandomIn(random, 1, 40),
                          RandomIn(random, 1, 7));
        vfILSharpenImg sharpen;
        Set(sharpen, by);
        scene.Arrange(sharpen);
        const Snapshot expected = scene.Expected(
            rx, ry, [&](const WindowSample& at) { return Expected(by, rx, ry, at, scene.format.Full()); });
        ASSERT_EQ(sharpen.Execute(), VFIL_SUCCESS);
        ASSERT_EQ(Difference(expected, *scene.output), "");
        EXPECT_EQ(sharpen.GetRadiusY(), by.ry);
        EXPECT_EQ(sharpen.GetProcessingMode(), scene.regions.mode);
    }
}

// Without an effect the picture is copied as it is, whatever the mask and the channels say.
TEST(Sharpen, CopiesWithoutDegreeOrRadius)
{
    std::mt19937 random(1);
    GuardedImage in(PXFormat_RGBA32, 7, 5), mask(PXFormat_Mono8, 3, 2);
    in.Randomise(random);
    for (const Settings& by :
         {Settings{5, 5, 0, VFIL_SHARPEN_PLAIN, 1}, Settings{0.9F, 0.9F, 1, VFIL_SHARPEN_EDGES, 1}}) {
        GuardedImage out(PXFormat_RGBA32, 7, 5);
        vfILSharpenImg sharpen;
        Set(sharpen, by);
        sharpen.SetInputImg(&in);
        sharpen.SetOutputImg(&out);
        sharpen.SetMask({1, 1, 3, 2}, &mask, PXImageChannel_MONO);
        ASSERT_EQ(sharpen.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(Difference(Snapshot(in), out), "");
    }
}

TEST(Sharpen, VerifyChecksInOrder)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    GuardedImage picture(PXFormat_RGBA32, 3, 3), other(PXFormat_HLSA32, 3, 3);
    const struct {
        unsigned long code;
        GuardedImage* image;
        Settings by;
    } cases[] = {{0x10001, &picture, {2, 2, 1, VFIL_SHARPEN_EDGES, 0}}, // no factory
                 {0, &picture, {2, 2, 1, VFIL_SHARPEN_EDGES, 0}},
                 {0x1000D, &other, {2, 2, kNaN, VFIL_SHARPEN_PLAIN, 0}},
                 {0x10023, &picture, {kNaN, 2, kNaN, VFIL_SHARPEN_PLAIN, 0}},
                 {0x10025, &picture, {2, 2, kNaN, vfILSharpenType{3}, 2}},
                 {0x10026, &picture, {2, 2, kNaN, VFIL_SHARPEN_PLAIN, 2}},
                 {0x10026, &picture, {2, 2, 1.01F, VFIL_SHARPEN_PLAIN, 1}},
                 {0x1002A, &picture, {2, 2, 1, VFIL_SHARPEN_PLAIN, -0.01}}};
    for (const auto& c : cases) {
        vfILSharpenImg sharpen;
        Set(sharpen, c.by);
        EXPECT_EQ(CodeOf(sharpen, *c.image), c.code) << "case " << &c - cases;
        vfil::host::RegisterPictureClass();
    }
}

// Kernel, padded input, sharpened picture; and the kernel of a radius beyond all memory.
TEST(Sharpen, ShortMemoryLeavesTheOutputAlone)
{
    std::mt19937 random(1);
    GuardedImage picture(PXFormat_RGBA32, 9, 8);
    picture.Randomise(random);
    const Snapshot before(picture);
    vfILSharpenImg sharpen;
    sharpen.SetInputImg(&picture);
    sharpen.SetOutputImg(&picture);
    Set(sharpen, {1e9F, 1e9F, 0.5F, VFIL_SHARPEN_EDGES, 1});
    EXPECT_EQ(sharpen.Execute(), VFIL_FAILURE);
    EXPECT_EQ(sharpen.GetLastError().GetErrorCode(), 0x10001U);
    EXPECT_EQ(Difference(before, picture), "");
    sharpen.SetRadius(2);
    EXPECT_GE(CountRefusedRuns(sharpen, picture), 3);
    sharpen.SetRadius(3, std::numeric_limits<float>::quiet_NaN());
    EXPECT_EQ(sharpen.Execute(), VFIL_SUCCESS) << "what Verify refuses does no harm";
}

} // namespace

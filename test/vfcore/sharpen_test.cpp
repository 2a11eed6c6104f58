/// \file
/// Sharpening against its definition, and what comes in its way.
#include "support/spatialmodel.h"

#include <vfil/edges.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <new>

using namespace vfil::test;

namespace {

/// Buffers of runs that can still be had.
int g_allocations = std::numeric_limits<int>::max();

} // namespace

// The form by which runs allocate. What it gives comes from the common one, as operator delete expects.
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    return g_allocations-- <= 0 || bytes >= std::size_t{1} << 30 ? nullptr : operator new[](bytes);
}

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

void Connect(vfILSharpenImg& sharpen, const Settings& by, GuardedImage& input, GuardedImage& output)
{
    sharpen.SetInputImg(&input);
    sharpen.SetOutputImg(&output);
    sharpen.SetRadius(by.rx, by.ry);
    sharpen.SetDegree(by.degree);
    sharpen.SetType(by.type);
    sharpen.SetEdgeSensitivity(by.sensitivity);
    sharpen.SetEdgeMode(VFIL_EDGE_MIRROR);
}

TEST(Sharpen, FollowsItsDefinition)
{
    const GUID formats[] = {PXFormat_RGBA32, PXFormat_Mono8, PXFormat_RGBA64, PXFormat_Mono16};
    const float radii[] = {1, 2, 1.9F, 3.25F, 0.5F, 0}, degrees[] = {1, 0.5F, 0.125F, 0.01F};
    for (unsigned seed = 0; seed < 600; ++seed) {
        std::mt19937 random(seed);
        const FormatCase& format = FormatOf(formats[random() % 4]);
        GuardedImage input(format.id, RandomIn(random, 1, 40), RandomIn(random, 1, 7));
        GuardedImage separate(format.id, input.Width(), input.Height());
        GuardedImage mask(format.sampleBytes == 1 ? PXFormat_Mono8 : PXFormat_Mono16, input.Width(),
                          input.Height());
        for (GuardedImage* image : {&input, &separate, &mask})
            image->Randomise(random);
        GuardedImage& output = random() % 3 ? separate : input;
        Settings by{radii[random() % 6], radii[random() % 6], degrees[random() % 4],
                    random() % 2 ? VFIL_SHARPEN_EDGES : VFIL_SHARPEN_PLAIN,
                    static_cast<double>(random() % 5) / 4};
        if (by.rx < 1 && by.ry < 1) by.rx = 1;

        SpatialCase run;
        run.edgeMode = VFIL_EDGE_MIRROR;
        run.radiusX = std::max(1L, static_cast<long>(by.rx));
        run.radiusY = std::max(1L, static_cast<long>(by.ry));
        run.regions.roi = vfILBbox2l(0, 0, input.Width(), input.Height());
        run.regions.mode = random() % 2 ? random() % 16 : VFIL_MODE_RGBA | VFIL_MODE_ODD_ROWS;
        if (random() % 3 == 0) {
            run.regions.maskBox = run.regions.roi;
            run.regions.mask = &mask;
        }
        const Snapshot expected = ModelSpatialRun(run, input, output, [&](const WindowSample& at) {
            return Expected(by, run.radiusX, run.radiusY, at, format.Full());
        });
        vfILSharpenImg sharpen;
        Connect(sharpen, by, input, output);
        sharpen.SetProcessingMode(run.regions.mode);
        if (run.regions.mask) sharpen.SetMask(run.regions.maskBox, &mask, PXImageChannel_MONO);
        ASSERT_EQ(sharpen.Execute(), VFIL_SUCCESS);
        ASSERT_EQ(Difference(expected, output), "") << "seed " << seed;
        EXPECT_EQ(sharpen.GetRadiusY(), by.ry);
        EXPECT_EQ(sharpen.GetProcessingMode(), run.regions.mode);
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
        Connect(sharpen, by, in, out);
        sharpen.SetMask({1, 1, 3, 2}, &mask, PXImageChannel_MONO);
        ASSERT_EQ(sharpen.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(Difference(Snapshot(in), out), "");
    }
}

/// Makes no pictures; there only has to be one.
struct Factory final : IClassFactory {
    HRESULT QueryInterface(const IID&, void** object) override
    {
        *object = this;
        return S_OK;
    }
    unsigned long AddRef() override { return 1; }
    unsigned long Release() override { return 1; }
    HRESULT CreateInstance(IUnknown*, const IID&, void**) override { return E_FAIL; }
};

TEST(Sharpen, VerifyChecksInOrder)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    GuardedImage picture(PXFormat_RGBA32, 3, 3), other(PXFormat_HLSA32, 3, 3);
    const auto codeOf = [&](const Settings& by, GuardedImage& image) {
        vfILSharpenImg sharpen;
        Connect(sharpen, by, image, image);
        return sharpen.Verify() == VFIL_SUCCESS ? 0 : sharpen.GetLastError().GetErrorCode();
    };
    const Settings good{2, 2, 1, VFIL_SHARPEN_EDGES, 0};
    EXPECT_EQ(codeOf(good, picture), 0x10001U);
    Factory factory;
    unsigned long cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(CLSID_PXImage, &factory, &cookie), S_OK);
    EXPECT_EQ(codeOf(good, picture), 0U);
    EXPECT_EQ(codeOf({2, 2, kNaN, VFIL_SHARPEN_PLAIN, 0}, other), 0x1000DU);
    EXPECT_EQ(codeOf({kNaN, 2, kNaN, VFIL_SHARPEN_PLAIN, 0}, picture), 0x10023U);
    EXPECT_EQ(codeOf({2, 2, kNaN, vfILSharpenType{3}, 2}, picture), 0x10025U);
    EXPECT_EQ(codeOf({2, 2, kNaN, VFIL_SHARPEN_PLAIN, 2}, picture), 0x10026U);
    EXPECT_EQ(codeOf({2, 2, 1.01F, VFIL_SHARPEN_PLAIN, 1}, picture), 0x10026U);
    EXPECT_EQ(codeOf({2, 2, 1, VFIL_SHARPEN_PLAIN, -0.01}, picture), 0x1002AU);
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
}

// Each buffer in turn can't be had, and so can't the kernel of a radius beyond all memory; nothing is
// written.
TEST(Sharpen, ShortMemoryLeavesTheOutputAlone)
{
    std::mt19937 random(1);
    GuardedImage picture(PXFormat_RGBA32, 9, 8);
    picture.Randomise(random);
    const Snapshot before(picture);
    const auto run = [&](float radius, float ry) {
        vfILSharpenImg sharpen;
        Connect(sharpen, {radius, ry, 0.5F, VFIL_SHARPEN_EDGES, 1}, picture, picture);
        const vfILStatus status = sharpen.Execute();
        EXPECT_EQ(sharpen.GetLastError().GetErrorCode(), status == VFIL_SUCCESS ? 0U : 0x10001U);
        return status;
    };
    EXPECT_EQ(run(1e9F, 1e9F), VFIL_FAILURE);
    int failures = 0;
    for (g_allocations = 0; run(2, 2) != VFIL_SUCCESS; g_allocations = failures) {
        EXPECT_EQ(Difference(before, picture), "");
        ASSERT_LT(++failures, 20);
    }
    g_allocations = std::numeric_limits<int>::max();
    EXPECT_GE(failures, 3) << "kernel, padded input, sharpened picture";
    const float nan = std::numeric_limits<float>::quiet_NaN();
    EXPECT_EQ(run(3, nan), VFIL_SUCCESS) << "what Verify refuses does no harm";
}

} // namespace

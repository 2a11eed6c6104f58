/// \file
/// The frame of the transforms: which output pixels it treats, what it refuses, and when it stops.
#include "il/loops/transform/effectbox.h"

#include "il/loops/transform/pyramid.h"
#include "support/guardedimage.h"
#include "support/processors.h"

#include <vfil/affine.h>
#include <vfil/host/picturefactory.h>

#include <gtest/gtest.h>

#include <functional>
#include <limits>

using namespace vfil;
using namespace vfil::test;

namespace {

constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();

TEST(Transform, EffectBoxes)
{
    struct Case {
        const char* name;
        std::array<float, 8> corners;
        vfILBbox2l expected;
    };
    const vfILBbox2l roi(-5, 2, 20, 10);
    const Case cases[] = {
        {"whole numbers count one more on either side", {-1, 4, 2, 4, 2, 6, -1, 6}, {-2, 4, 6, 4}},
        {"a fraction is cut off", {0.9F, 3.5F, 2.1F, 3.5F, 2.1F, 5.2F, 0.9F, 5.2F}, {0, 3, 4, 4}},
        {"below zero", {-3.5F, 3, -1.5F, 3, -1.5F, 5, -3.5F, 5}, {-4, 3, 4, 4}},
        {"any corner first, and the other way round", {2, 6, 2, 4, -1, 4, -1, 6}, {-2, 4, 6, 4}},
        {"cut by the region", {-50, -50, 500, -50, 500, 5, -50, 5}, {-5, 2, 20, 5}},
        {"beside the region", {30, 4, 40, 4, 40, 6, 30, 6}, {}},
        {"folded", {0, 4, 9, 4, 0, 6, 9, 6}, roi},
        {"a corner within", {0, 4, 9, 4, 2, 5, 0, 9}, roi},
        {"no area", {1, 4, 1, 4, 1, 4, 1, 4}, roi},
        {"huge", {-3e38F, -3e38F, 3e38F, -3e38F, 3e38F, 3e38F, -3e38F, 3e38F}, roi},
        {"nowhere", {kNaN, 4, 9, 4, 9, 6, 0, 6}, roi},
    };
    for (const auto& [name, c, expected] : cases) {
        const vfILVector2f corners[] = {{c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}, {c[6], c[7]}};
        EXPECT_EQ(EffectBox(corners, roi), expected) << name;
    }
    EXPECT_TRUE(SourceBox(7, 5, {3, 4, 0, 0}).IsNull());
    EXPECT_TRUE(SourceBox(7, 5, {~0UL, 2, 0, 0}).IsNull());
    EXPECT_EQ(SourceBox(7, 5, {3, 1, 2, 1}), vfILBbox2l(3, 2, 3, 2));
}

TEST(Transform, PairsOfPixelsStayWhole)
{
    const vfILBbox2l output(10, 0, 9, 4);
    struct Case {
        long x, width, alignedX, alignedWidth;
    };
    for (const auto& [x, width, alignedX, alignedWidth] : {Case{12, 4, 12, 4},
                                                           {13, 3, 12, 4},
                                                           {13, 4, 12, 6},
                                                           {12, 3, 12, 4},
                                                           {12, 7, 12, 6},
                                                           {10, 9, 10, 8}}) {
        vfILBbox2l effect(x - 7, 1, width, 2), atOutput(x, 1, width, 2);
        AlignToPairs(effect, atOutput, output);
        EXPECT_EQ(atOutput, vfILBbox2l(alignedX, 1, alignedWidth, 2)) << x << ", " << width;
        EXPECT_EQ(effect, vfILBbox2l(alignedX - 7, 1, alignedWidth, 2)) << x << ", " << width;
    }
    const auto low = [](long x, long width) { return MarginsOf({x, 0, width, 4}, 1, true).low; };
    const auto high = [](long x, long width) { return MarginsOf({x, 0, width, 4}, 1, true).high; };
    EXPECT_EQ(low(4, 3), 2);
    EXPECT_EQ(low(3, 3), 1);
    EXPECT_EQ(high(4, 3), 2);
    EXPECT_EQ(high(3, 3), 1);
}

TEST(Transform, LevelsOfThePyramid)
{
    EXPECT_EQ(CountLevels(0, 5), 0);
    EXPECT_EQ(CountLevels(1, 1), 1);
    EXPECT_EQ(CountLevels(720, 486), 11);
    const auto is = [](double size, long level, double fraction) {
        const LevelChoice choice = ChooseLevel(size, 4);
        EXPECT_EQ(choice.level, level) << size;
        EXPECT_NEAR(choice.fraction, fraction, 1e-12) << size;
    };
    is(FootprintSize(2, 2), 0, 0); // a pixel of its own size
    is(0.5, 0, 0);
    is(1.5, 0, 0.5);
    is(3, 1, 0.5);
    is(7, 2, 0.75);
    is(8, 3, 0);
    is(1e300, 3, 0);
    is(std::numeric_limits<double>::quiet_NaN(), 3, 0);
}

/// Pictures to connect, and a map that is right before a case spoils it.
struct Bench {
    GuardedImage in{PXFormat_RGBA32, 6, 4};
    GuardedImage out{PXFormat_RGBA32, 6, 4};
    GuardedImage wide{PXFormat_RGBA64, 6, 4};
    GuardedImage bgra{PXFormat_BGRA32, 6, 4};
    GuardedImage bgraOut{PXFormat_BGRA32, 6, 4};
    GuardedImage mono{PXFormat_Mono8, 6, 4};
    vfILAffineTransform p;

    Bench()
    {
        Map(1, 0, 0, 0, 1, 0);
        Connect(p, &in, nullptr, &out);
    }
    void Map(float a, float b, float c, float d, float e, float f)
    {
        const float map[] = {a, b, c, d, e, f};
        p.SetCoefficients(map);
    }
};

TEST(Transform, Verify)
{
    struct Case {
        const char* name;
        unsigned long code;
        std::function<void(Bench&)> spoil;
    };
    const Case cases[] = {
        {"good", 0, [](Bench&) {}},
        {"no input", 0x1000B, [](Bench& b) { b.p.SetInputImg(nullptr); }},
        {"target hangs over", 0x1000A, [](Bench& b) { b.p.SetOutputOffset(vfILVector2l(1, 0)); }},
        {"opacity", 0x1006E, [](Bench& b) { b.p.SetOpacity(kNaN); }},
        {"crop", 0x10069, [](Bench& b) { b.p.SetCropping(4, 3, 0, 0); }},
        {"all is cropped", 0, [](Bench& b) { b.p.SetCropping(4, 2, 0, 0); }},
        {"formats differ", 0x1000E, [](Bench& b) { b.p.SetInputImg(&b.wide); }},
        {"a channel less", 0x20002, [](Bench& b) { b.p.SetProcessingMode(VFIL_MODE_RGB); }},
        {"a mask", 0x20001,
         [](Bench& b) {
             b.p.SetMask({0, 0, 6, 4}, &b.mono, PXImageChannel_MONO);
         }},
        {"a mask box", 0x20001,
         [](Bench& b) {
             b.p.SetMask({0, 0, 5, 4}, nullptr, PXImageChannel_MONO);
         }},
        {"filtering level", 0x1000F, [](Bench& b) { b.p.SetFilteringLevel(-0.1); }},
        {"filtering level NaN", 0x1000F, [](Bench& b) { b.p.SetFilteringLevel(kNaN); }},
        {"singular", 0x10010, [](Bench& b) { b.Map(2, 1, 0, 4, 2, 0); }},
        {"a point", 0x10010, [](Bench& b) { b.Map(0, 0, 0, 0, 0, 0); }},
        {"NaN", 0x10010, [](Bench& b) { b.Map(kNaN, 0, 0, 0, 1, 0); }},
        {"infinite", 0x10010, [](Bench& b) { b.Map(INFINITY, 0, 0, 0, 1, 0); }},
        {"too far for floats", 0x10010, [](Bench& b) { b.Map(1, 0, 1e12F, 0, 1, 0); }},
        {"tiny", 0, [](Bench& b) { b.Map(1e-9F, 0, 0, 0, 1e-9F, 0); }},
        {"large", 0, [](Bench& b) { b.Map(1e9F, 0, 0, 0, 1e9F, 0); }},
        {"type 0", 0x1000F, [](Bench& b) { b.p.SetInterpolationType(vfILInterpolationType{}); }},
        {"pan and zoom", 0x1000F, [](Bench& b) { b.p.SetInterpolationType(VFIL_INTERP_PANZOOM); }},
        {"format", 0x1000D, [](Bench& b) { Connect(b.p, &b.bgra, nullptr, &b.bgraOut); }},
    };
    for (const Case& c : cases) {
        Bench bench;
        c.spoil(bench);
        EXPECT_EQ(bench.p.Verify() == VFIL_SUCCESS, c.code == 0) << c.name;
        if (c.code != 0) {
            EXPECT_EQ(bench.p.GetLastError().GetErrorCode(), c.code) << c.name;
        }
    }
}

TEST(Transform, CornersThatAreNoQuadrilateral)
{
    constexpr std::array<float, 8> kGood = {0, 0, 50, 5, 45, 40, 3, 35};
    const std::array<float, 8> bad[] = {
        {0, 0, 45, 40, 50, 5, 3, 35}, // crossing
        {0, 0, 50, 5, 10, 10, 3, 35}, // a corner within
        {0, 0, 50, 5, 50, 5, 3, 35},  // two in one place
        {0, 0, 1, 1, 2, 2, 3, 3},     // a line
        {0, 0, 50, kNaN, 45, 40, 3, 35}, {0, 0, INFINITY, 5, 45, 40, 3, 35}, {},
    };
    GuardedImage in(PXFormat_RGBA32, 6, 4), out(PXFormat_RGBA32, 60, 50);
    vfILBilinearTransform transform;
    Connect(transform, &in, nullptr, &out);
    transform.SetCoefficients(kGood.data());
    EXPECT_EQ(transform.Verify(), VFIL_SUCCESS);
    for (const auto& corners : bad) {
        transform.SetCoefficients(corners.data());
        EXPECT_EQ(transform.Verify(), VFIL_FAILURE);
        EXPECT_EQ(transform.GetLastError().GetErrorCode(), 0x10010U);
        EXPECT_NE(transform.Execute(), VFIL_SUCCESS);
    }
}

int s_left = 0;

/// Stops the run when it is asked for the last time.
int CountDown()
{
    return s_left-- <= 0;
}

TEST(Transform, StopsAfterARow)
{
    const float identity[] = {1, 0, 0, 0, 1, 0};
    for (int asked = 0; asked < 6; ++asked) {
        GuardedImage in(PXFormat_Mono8, 3, 4), out(PXFormat_Mono8, 3, 6);
        for (long y = 0; y < 4; ++y)
            in.Set(1, y, {200, 0, 0, 0});
        for (long y = 0; y < 6; ++y)
            out.Set(1, y, {77, 0, 0, 0});
        vfILAffineTransform transform;
        transform.SetCoefficients(identity);
        Connect(transform, &in, nullptr, &out);
        transform.SetInterruptFct(CountDown, nullptr);
        s_left = asked;
        ASSERT_EQ(transform.Execute(), VFIL_SUCCESS);
        // The first question comes before anything, the others after each row.
        for (long y = 0; y < 4; ++y)
            EXPECT_EQ(out.Get(1, y)[0], y < asked ? 200 : 77) << "row " << y << " of " << asked;
        EXPECT_EQ(out.Get(1, 5)[0], asked == 0 ? 77 : 0);
    }
}

/// As of a host that lends no class of pictures.
class NoFactory final : public IClassFactory {
public:
    HRESULT QueryInterface(const IID&, void** object) override
    {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    unsigned long AddRef() override { return 1; }
    unsigned long Release() override { return 1; }
    HRESULT CreateInstance(IUnknown*, const IID&, void**) override { return E_OUTOFMEMORY; }
};

/// The host is told when the processor is made, and again when a run wants a pyramid.
TEST(Transform, PyramidsNeedPictures)
{
    const float identity[] = {1, 0, 0, 0, 1, 0};
    GuardedImage in(PXFormat_Mono8, 3, 4), out(PXFormat_Mono8, 3, 4);
    NoFactory none;
    unsigned long cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(CLSID_PXImage, &none, &cookie), S_OK);
    vfILAffineTransform transform;
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
    transform.SetCoefficients(identity);
    transform.SetInterpolationType(VFIL_INTERP_BILINEAR_PREFILTERED);
    Connect(transform, &in, nullptr, &out);
    EXPECT_EQ(transform.GetLastError().GetErrorCode(), 0x10001U);
    transform.SetLastError({});
    EXPECT_NE(transform.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(transform.GetLastError().GetErrorCode(), 0x10001U);
}

} // namespace

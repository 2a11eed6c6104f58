#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

using namespace vfil::test;

namespace {

/// Three pictures of one size, full of noise.
struct Pictures {
    GuardedImage a, b, out;

    Pictures(const GUID& format, long width, long height, std::mt19937& random)
        : a(format, width, height), b(format, width, height), out(format, width, height)
    {
        for (GuardedImage* image : {&a, &b, &out})
            image->Randomise(random);
    }
};

// Values worked out by hand, so that a slip that the model shares with the library shows.
TEST(Composite, TheModelGivesWhatHandsGive)
{
    struct Case {
        Pixel back, front;
        double strength;
        bool premultiplied;
        Pixel expected;
    };
    const Case cases[] = {
        {{10, 20, 30, 40}, {200, 100, 0, 255}, 1.0, false, {200, 100, 0, 255}},
        {{100, 200, 255, 128}, {9, 9, 9, 0}, 1.0, false, {50, 100, 128, 128}},
        {{100, 200, 255, 128}, {50, 60, 70, 128}, 1.0, true, {100, 160, 197, 192}},
        {{255, 0, 100, 255}, {0, 255, 100, 255}, 0.5, false, {127, 128, 100, 255}},
    };
    for (const Case& c : cases) {
        LayerSetup setup;
        setup.strength = c.strength;
        setup.aPremultiplied = setup.bPremultiplied = c.premultiplied;
        setup.mode = VFIL_MODE_RGBA;
        EXPECT_EQ(LayerPixel(setup, c.back, c.front), c.expected);
    }
}

TEST(Composite, OverOn422GivesTheModelsPixels)
{
    std::mt19937 random(422);
    for (int round = 0; round < 600; ++round) {
        LayerSetup setup = RandomSetup(random, Layer::Over, 255);
        setup.mode |= VFIL_MODE_RGB | RandomFieldBits(random);
        Pictures p(round % 5 ? PXFormat_YCCA422_601 : PXFormat_YCCA422_709,
                   RandomIn(random, 1, round % 4 < 2 ? 9 : 90), RandomIn(random, 1, 5), random);
        const auto choice = random() % 6;
        GuardedImage& output = choice == 1 ? p.a : choice == 2 ? p.b : p.out;
        Switched<vfILOverImage> over(round % 2);
        Connect(over, &p.a, &p.b, &output);
        Configure(over, setup);
        const Snapshot a(p.a), b(p.b);
        Snapshot expected(output);
        for (long y = 0; y < a.height; ++y) {
            if (!IsRowTreated(setup.mode, y)) continue;
            const std::vector<Pixel> rowA(&a.At(0, y), &a.At(0, y) + a.width);
            const std::vector<Pixel> rowB(&b.At(0, y), &b.At(0, y) + a.width);
            const std::vector<Pixel> pixels = OverRow422(setup, rowA, rowB);
            std::copy(pixels.begin(), pixels.end(), &expected.At(0, y));
        }
        ASSERT_EQ(over.Verify(), VFIL_SUCCESS);
        ASSERT_EQ(over.Execute(), VFIL_SUCCESS);
        ASSERT_EQ(Difference(expected, output), "") << "round " << round;
    }
}

TEST(Composite, PremultipliedFlagsFollowThePictures)
{
    std::mt19937 random;
    Pictures p(PXFormat_RGBA32, 1, 1, random);
    vfILAtopImage atop;
    atop.SetImgAPremultiplied(1);
    EXPECT_EQ(atop.GetImgAPremultiplied(), 0) << "no picture is connected";
    EXPECT_EQ(atop.GetOutputImgPremultiplied(), 1);
    p.a.SetImageState(PXImageState_PREMULTIPLIED, -1);
    p.b.failGetImageState = true;
    p.out.failSetImageState = true;
    atop.SetInputImgA(&p.a);
    atop.SetImgBPremultiplied(1);
    EXPECT_EQ(atop.GetImgBPremultiplied(), 0) << "no front is connected";
    atop.SetInputImgB(&p.b);
    atop.SetOutputImg(&p.out);
    atop.SetOutputPremultiplied(1);
    EXPECT_EQ(atop.GetImgAPremultiplied(), 1);
    EXPECT_EQ(atop.GetImgBPremultiplied(), 0) << "a picture without the state";
    EXPECT_EQ(atop.GetOutputImgPremultiplied(), 0) << "the picture refused";
    p.out.failSetImageState = false;
    atop.SetOutputPremultiplied(1);
    EXPECT_EQ(atop.GetOutputImgPremultiplied(), 1);
    atop.SetImgBPremultiplied(1);
    atop.SetInputImgB(nullptr);
    atop.SetImgAPremultiplied(0);
    EXPECT_EQ(atop.GetImgAPremultiplied(), 0) << "a later call overrides the picture";
    EXPECT_EQ(atop.GetImgBPremultiplied(), 0);
}

// An unverified strength, or one that 4:2:2 lets pass, stays within the arithmetic's tables.
TEST(Composite, WildStrengthIsClamped)
{
    std::mt19937 random(5);
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_YCCA422_601})
        for (const bool simd : {false, true}) {
            Pictures p(format, 19, 2, random);
            Switched<vfILOverImage> over(simd);
            Connect(over, &p.a, &p.b, &p.out);
            over.SetProcessingMode(VFIL_MODE_RGBA);
            const auto run = [&](double strength) {
                over.SetExtraTransparency(strength);
                EXPECT_EQ(over.Execute(), VFIL_SUCCESS);
                return p.out.Bytes();
            };
            EXPECT_EQ(run(1.5), run(1.0));
            EXPECT_EQ(run(-3.0), run(0.0));
            EXPECT_EQ(run(std::numeric_limits<double>::quiet_NaN()), run(0.0));
        }
}

} // namespace

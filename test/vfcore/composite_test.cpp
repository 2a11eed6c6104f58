#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <limits>

using namespace vfil::test;

namespace {

/// Three pictures of one size, full of noise. The output may be an input.
struct Pictures {
    GuardedImage a, b, separateOutput;
    GuardedImage& out;

    Pictures(const GUID& format, long width, long height, std::mt19937& random, unsigned long inPlace = 0)
        : a(format, width, height), b(format, width, height), separateOutput(format, width, height),
          out(inPlace == 1   ? a
              : inPlace == 2 ? b
                             : separateOutput)
    {
        for (GuardedImage* image : {&a, &b, &separateOutput})
            image->Randomise(random);
    }

    template <class Processor>
    void Connect(Processor& processor)
    {
        processor.SetInputImgA(&a);
        processor.SetInputImgB(&b);
        processor.SetOutputImg(&out);
        processor.SetDominantInput(&a);
    }
};

// Values worked out by hand, so that a slip that the model shares with the library shows.
TEST(Composite, OverByHand)
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
    for (const Case& c : cases)
        for (const bool simd : {false, true}) {
            std::mt19937 random;
            Pictures p(PXFormat_RGBA32, 1, 1, random);
            p.a.Set(0, 0, c.back);
            p.b.Set(0, 0, c.front);
            Switched<vfILOverImage> over(simd);
            p.Connect(over);
            over.SetImgAPremultiplied(c.premultiplied);
            over.SetImgBPremultiplied(c.premultiplied);
            over.SetExtraTransparency(c.strength);
            over.SetProcessingMode(VFIL_MODE_RGBA);
            ASSERT_EQ(over.Execute(), VFIL_SUCCESS);
            EXPECT_EQ(p.out.Get(0, 0), c.expected);
        }
}

TEST(Composite, OverOn422GivesTheModelsPixels)
{
    std::mt19937 random(422);
    for (int round = 0; round < 600; ++round) {
        LayerSetup setup = RandomSetup(random, Layer::Over, 255);
        setup.mode |= VFIL_MODE_RGB | RandomFieldBits(random);
        const bool simd = round % 2;
        const long width = RandomIn(random, 1, round % 4 < 2 ? 9 : 90);
        const long height = RandomIn(random, 1, 5);
        SCOPED_TRACE(setup);
        Pictures p(round % 5 ? PXFormat_YCCA422_601 : PXFormat_YCCA422_709, width, height, random,
                   random() % 6);
        Switched<vfILOverImage> over(simd);
        p.Connect(over);
        Configure(over, setup);
        Snapshot expected(p.out);
        const Snapshot a(p.a);
        const Snapshot b(p.b);
        for (long y = 0; y < height; ++y) {
            if (!IsRowTreated(setup.mode, y)) continue;
            const auto row = [&](const Snapshot& s) {
                return std::vector<Pixel>(&s.At(0, y), &s.At(0, y) + width);
            };
            const std::vector<Pixel> pixels = OverRow422(setup, row(a), row(b));
            for (long x = 0; x < width; ++x)
                expected.At(x, y) = pixels[static_cast<std::size_t>(x)];
        }
        ASSERT_EQ(over.Verify(), VFIL_SUCCESS);
        ASSERT_EQ(over.Execute(), VFIL_SUCCESS);
        ASSERT_EQ(Difference(expected, p.out), "");
    }
}

TEST(Composite, PremultipliedFlagsFollowThePictures)
{
    std::mt19937 random;
    Pictures p(PXFormat_RGBA32, 1, 1, random);
    vfILAtopImage atop;
    atop.SetImgAPremultiplied(1);
    atop.SetImgBPremultiplied(1);
    atop.SetOutputPremultiplied(0);
    EXPECT_EQ(atop.GetImgAPremultiplied(), 0) << "no picture is connected";
    EXPECT_EQ(atop.GetImgBPremultiplied(), 0);
    EXPECT_EQ(atop.GetOutputImgPremultiplied(), 1);

    p.a.SetImageState(PXImageState_PREMULTIPLIED, 1);
    p.Connect(atop);
    EXPECT_EQ(atop.GetImgAPremultiplied(), 1);
    EXPECT_EQ(atop.GetImgBPremultiplied(), 0);
    EXPECT_EQ(atop.GetOutputImgPremultiplied(), 0);

    atop.SetImgAPremultiplied(0);
    EXPECT_EQ(atop.GetImgAPremultiplied(), 0) << "a later call overrides the picture";
    long state = 0;
    p.a.GetImageState(PXImageState_PREMULTIPLIED, &state);
    EXPECT_EQ(state, 1) << "the picture of an input is left alone";

    p.out.failSetImageState = true;
    atop.SetOutputPremultiplied(1);
    EXPECT_EQ(atop.GetOutputImgPremultiplied(), 0) << "the picture refused";
    p.out.failSetImageState = false;
    atop.SetOutputPremultiplied(1);
    EXPECT_EQ(atop.GetOutputImgPremultiplied(), 1);

    p.a.failGetImageState = true;
    atop.SetImgAPremultiplied(1);
    atop.SetInputImgA(&p.a);
    EXPECT_EQ(atop.GetImgAPremultiplied(), 0) << "a picture without the state";
    atop.SetImgBPremultiplied(1);
    atop.SetInputImgB(nullptr);
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
            p.Connect(over);
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

#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace vfil::test;

namespace {

const std::array<const GUID*, 4> kPointFormats{&PXFormat_RGBA32, &PXFormat_RGBA64, &PXFormat_Mono8, &PXFormat_Mono16};

std::string Text(const vfILBbox2l& box)
{
    std::ostringstream text;
    text << box.GetSizeX() << 'x' << box.GetSizeY() << '+' << box.GetOffsetX() << '+' << box.GetOffsetY();
    return text.str();
}

/// A size that is mostly small, sometimes past a vector and past the length from which rows are copied otherwise.
long RandomWidth(std::mt19937& random)
{
    return random() % 8 ? RandomIn(random, 0, 8) : RandomIn(random, 9, 100);
}

/// One run of random regions: the pictures, the boxes and the mask.
struct Scene {
    const FormatCase& format;
    GuardedImage a;
    GuardedImage b;
    GuardedImage separateOutput;
    GuardedImage* output = &separateOutput; ///< or an input
    std::unique_ptr<GuardedImage> ownMask;
    PXImageChannel maskChannel = PXImageChannel_MONO;
    FrameCase run;

    Scene(std::mt19937& random, const GUID& id)
        : format(FormatOf(id)), a(id, RandomWidth(random), RandomIn(random, 0, 7)),
          b(id, RandomWidth(random), RandomIn(random, 0, 7)),
          separateOutput(id, 1 + RandomWidth(random), RandomIn(random, 1, 8))
    {
        for (GuardedImage* image : {&a, &b, &separateOutput}) image->Randomise(random);
        const int full = format.Full();
        run.defaultPixel = format.channels == 1 ? Pixel{full, 0, 0, 0} : Pixel{full, 0, full / 5, full / 5 * 3};
        run.mode = random() % 3 ? random() % 16 : static_cast<unsigned long>(VFIL_MODE_RGBA);
        run.mode |= RandomFieldBits(random);
    }

    void OutputInto(GuardedImage& image)
    {
        if (image.Width() > 0 && image.Height() > 0) output = &image;
    }

    /// A region of interest that may hang over the input, and a place for it within the output.
    void PlaceRegions(std::mt19937& random)
    {
        const long width = RandomIn(random, 1, output->Width());
        const long height = RandomIn(random, 1, output->Height());
        const bool atStart = random() % 4 == 0;
        run.outputOffset = atStart ? vfILVector2l(0, 0)
                                   : vfILVector2l(RandomIn(random, 0, output->Width() - width),
                                                  RandomIn(random, 0, output->Height() - height));
        const long x = random() % 3 ? RandomIn(random, -3, 5) : run.outputOffset[0];
        const long y = random() % 3 ? RandomIn(random, -3, 5) : run.outputOffset[1];
        run.roi = vfILBbox2l(x, y, width, height);
        run.inputOffset = vfILVector2l(RandomIn(random, -4, 4), RandomIn(random, -4, 4));
        if (random() % 3 == 0) run.inputOffset = vfILVector2l(0, 0);
    }

    /// None, a box, or a box with a mono or a four-channel picture of the output's depth.
    void PlaceMask(std::mt19937& random, bool needed)
    {
        const auto kind = needed ? 2 : random() % 4;
        if (kind == 0) return;
        run.maskBox = vfILBbox2l(RandomIn(random, -2, 3), RandomIn(random, -2, 3), RandomIn(random, 1, 40),
                                 RandomIn(random, 1, 9));
        if (kind == 1) return;
        const bool mono = random() % 2;
        const GUID& id = format.sampleBytes == 1 ? (mono ? PXFormat_Mono8 : PXFormat_RGBA32)
                                                 : (mono ? PXFormat_Mono16 : PXFormat_RGBA64);
        ownMask = std::make_unique<GuardedImage>(id, run.maskBox.GetSizeX(), run.maskBox.GetSizeY());
        ownMask->Randomise(random);
        run.mask = ownMask.get();
        if (!mono) ChooseMaskChannel(random() % 4);
    }

    void ChooseMaskChannel(std::size_t channel)
    {
        run.maskChannel = channel;
        maskChannel = static_cast<PXImageChannel>(1 << channel);
    }

    /// Masks the output by its own alpha, which then is not processed.
    void MaskByOwnAlpha()
    {
        const vfILVector2l place = run.dominantB ? run.inputOffset : vfILVector2l(0, 0);
        run.roi.SetOffset(run.outputOffset + place);
        run.maskBox = vfILBbox2l(place[0], place[1], output->Width(), output->Height());
        run.mask = output;
        run.mode &= ~static_cast<unsigned long>(VFIL_MODE_ALPHA);
        ChooseMaskChannel(3);
    }

    void Connect(vfILImgProc& processor) const
    {
        processor.SetOutputImg(output);
        processor.SetROI(run.roi);
        processor.SetOutputOffset(run.outputOffset);
        processor.SetDefaultColor(vfILColor(1.0, 0.0, 0.2, 0.6));
        processor.SetMask(run.maskBox, const_cast<GuardedImage*>(run.mask), maskChannel);
        processor.SetProcessingMode(run.mode);
    }

    /// Runs and compares all three pictures with what the model foretells.
    void Check(vfILImgProc& processor, const PixelRule& rule, const GuardedImage& second)
    {
        std::ostringstream text;
        text << format.name << " A " << a.Width() << 'x' << a.Height() << " B " << b.Width() << 'x' << b.Height()
             << " at " << run.inputOffset[0] << ',' << run.inputOffset[1] << " output " << output->Width() << 'x'
             << output->Height() << (output == &a ? " is A" : output == &b ? " is B" : "") << " roi " << Text(run.roi)
             << " to " << run.outputOffset[0] << ',' << run.outputOffset[1] << " mask " << Text(run.maskBox)
             << (run.mask ? " picture" : "") << " channel " << run.maskChannel << " mode " << std::hex << run.mode
             << " dominant " << (run.dominantB ? 'B' : 'A');
        SCOPED_TRACE(text.str());
        ASSERT_EQ(processor.Verify(), VFIL_SUCCESS) << std::hex << processor.GetLastError().GetErrorCode();
        const Snapshot expected = ModelRun(run, a, second, *output, rule);
        const std::vector<std::uint8_t> beforeA = a.Bytes();
        const std::vector<std::uint8_t> beforeB = b.Bytes();
        ASSERT_EQ(processor.Execute(), VFIL_SUCCESS);
        ASSERT_EQ(Difference(expected, *output), "");
        ASSERT_TRUE(output == &a || a.Bytes() == beforeA) << "A was written";
        ASSERT_TRUE(output == &b || b.Bytes() == beforeB) << "B was written";
        ASSERT_TRUE(output != &separateOutput || a.readRegionCalls + b.readRegionCalls == 0) << "needless copies";
    }
};

enum class Monadic { Probe, Invert, Grayscale, Copy };

std::unique_ptr<vfILMonadicPixelProc> MakeMonadic(Monadic kind, bool simd)
{
    switch (kind) {
    case Monadic::Probe: return std::make_unique<Switched<ProbeMonadic>>(simd);
    case Monadic::Invert: return std::make_unique<Switched<vfILInvertImg>>(simd);
    case Monadic::Grayscale: return std::make_unique<Switched<vfILGrayscaleImg>>(simd);
    default: return std::make_unique<Switched<vfILCopyImg>>(simd);
    }
}

Pixel MonadicPixel(Monadic kind, const Scene& scene, const Pixel& in, int mask)
{
    const int full = scene.format.Full();
    Pixel processed = in;
    if (kind == Monadic::Copy) return in;
    if (kind == Monadic::Grayscale) {
        const int grey = Grey(in);
        return SelectAndMix(full, 4, VFIL_MODE_RGB, in, {grey, grey, grey, in[3]}, mask);
    }
    for (int& v : processed) v = kind == Monadic::Invert ? full - v : ProbeMonadic::Rule(v, full);
    return SelectAndMix(full, scene.format.channels, scene.run.mode, in, processed, mask);
}

class MonadicRegions : public testing::TestWithParam<int> {};

TEST_P(MonadicRegions, FollowTheBoxes)
{
    const auto kind = static_cast<Monadic>(GetParam());
    std::mt19937 random(static_cast<unsigned>(100 + GetParam()));
    for (int round = 0; round < 1500; ++round) {
        Scene scene(random, *kPointFormats[random() % (kind == Monadic::Grayscale ? 2 : 4)]);
        if (random() % 3 == 0) scene.OutputInto(scene.a);
        scene.PlaceRegions(random);
        if (kind == Monadic::Grayscale) scene.run.mode |= VFIL_MODE_RGB;
        const bool ownAlpha = scene.output == &scene.a && scene.format.channels == 4 && random() % 4 == 0;
        scene.run.inputOffset = vfILVector2l(0, 0);
        if (ownAlpha) scene.MaskByOwnAlpha();
        else scene.PlaceMask(random, false);
        const auto processor = MakeMonadic(kind, round % 2);
        processor->SetInputImg(&scene.a);
        scene.Connect(*processor);
        scene.Check(*processor, [&](const Pixel& in, const Pixel&, int mask) {
            return MonadicPixel(kind, scene, in, mask);
        }, scene.a);
        if (HasFatalFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Frame, MonadicRegions, testing::Range(0, 4));

enum class Dyadic { Probe, Layer, Mix };

class DyadicRegions : public testing::TestWithParam<int> {};

TEST_P(DyadicRegions, FollowTheBoxes)
{
    const auto kind = static_cast<Dyadic>(GetParam());
    std::mt19937 random(static_cast<unsigned>(200 + GetParam()));
    for (int round = 0; round < 2000; ++round) {
        Scene scene(random, *kPointFormats[random() % (kind == Dyadic::Probe ? 4 : 2)]);
        FrameCase& run = scene.run;
        GuardedImage* back = &scene.a;
        GuardedImage* front = &scene.b;
        if (random() % 8 == 0) front = back;
        run.dominantB = kind != Dyadic::Mix && front != back && random() % 2;
        if (random() % 2) scene.OutputInto(random() % 2 ? scene.a : scene.b);
        scene.PlaceRegions(random);
        const GuardedImage* dominant = run.dominantB ? front : back;
        const bool ownAlpha = kind == Dyadic::Probe && scene.output == dominant && scene.format.channels == 4;
        if (ownAlpha && random() % 3 == 0) scene.MaskByOwnAlpha();
        else scene.PlaceMask(random, kind == Dyadic::Mix);

        const auto layer = static_cast<Layer>(random() % kLayers);
        LayerSetup setup = RandomSetup(random, layer, scene.format.Full());
        setup.dominantB = run.dominantB;
        setup.mode = run.mode;
        std::unique_ptr<vfILDyadicPixelProc> processor = std::make_unique<Switched<ProbeDyadic>>(round % 2);
        const auto connect = [&](auto& proc) {
            proc.SetInputImgA(back);
            proc.SetInputImgB(front);
        };
        connect(*processor);
        if (kind == Dyadic::Mix) {
            processor = std::make_unique<Switched<vfILCompositeImg>>(round % 2);
            connect(*processor);
            run.mode |= VFIL_MODE_RGBA;
        }
        if (kind == Dyadic::Layer) {
            auto comp = MakeLayer(layer, round % 2);
            connect(*comp);
            Configure(*comp, setup);
            processor = std::move(comp);
        }
        processor->SetDominantInput(run.dominantB ? front : back);
        processor->SetInputOffset(run.inputOffset);
        scene.Connect(*processor);
        const int full = scene.format.Full();
        scene.Check(*processor, [&](const Pixel& a, const Pixel& b, int mask) {
            if (kind == Dyadic::Layer) return LayerPixel(setup, a, b);
            if (kind == Dyadic::Mix) return CompositePixel(full, 1.0, VFIL_ALPHA_COMPUTED, a, b, mask);
            Pixel processed;
            for (std::size_t c = 0; c < 4; ++c) processed[c] = ProbeDyadic::Rule(a[c], b[c], full);
            return SelectAndMix(full, scene.format.channels, run.mode, a, processed, mask);
        }, *front);
        if (HasFatalFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Frame, DyadicRegions, testing::Range(0, 3));

// A mask box far to the right reaches beyond 32 bits; it still is everything from its offset on.
TEST(Frame, MaskBoxAtTheEndOfTheNumbers)
{
    std::mt19937 random(3);
    GuardedImage in(PXFormat_Mono8, 6, 1);
    GuardedImage out(PXFormat_Mono8, 6, 1);
    in.Randomise(random);
    vfILInvertImg invert;
    invert.SetInputImg(&in);
    invert.SetOutputImg(&out);
    invert.SetMask({4, 0, 0x7FFFFFFF, 0x7FFFFFFF}, nullptr, PXImageChannel_MONO);
    ASSERT_EQ(invert.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(out.Get(3, 0), in.Get(3, 0));
    EXPECT_EQ(out.Get(4, 0)[0], 255 - in.Get(4, 0)[0]);
}

// Without SetROI the region follows the output; once set it stays.
TEST(Frame, RegionFollowsTheOutputUntilItIsSet)
{
    GuardedImage small(PXFormat_Mono8, 3, 2);
    GuardedImage large(PXFormat_Mono8, 7, 5);
    vfILInvertImg invert;
    EXPECT_EQ(invert.GetROI(), vfILBbox2l(0, 0, -1, -1));
    invert.SetOutputImg(&small);
    EXPECT_EQ(invert.GetROI(), vfILBbox2l(0, 0, 3, 2));
    invert.SetOutputImg(&large);
    EXPECT_EQ(invert.GetROI(), vfILBbox2l(0, 0, 7, 5));
    invert.SetROI({1, 1, 2, 2});
    invert.SetOutputImg(&small);
    EXPECT_EQ(invert.GetROI(), vfILBbox2l(1, 1, 2, 2));
}

} // namespace

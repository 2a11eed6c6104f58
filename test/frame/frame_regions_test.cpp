#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace vfil::test;

namespace {

/// Lays clear and solid stretches over a picture, past which a fast loop may jump.
void LayRuns(GuardedImage& image, std::mt19937& random)
{
    const int full = image.Format().Full();
    for (long y = 0; y < image.Height(); ++y)
        for (long x = 0, end = 0; x < image.Width(); x = end) {
            end = std::min(image.Width(), x + RandomIn(random, 1, 50));
            const auto kind = random() % 5;
            for (long i = x; i < end; ++i) {
                Pixel pixel = image.Get(i, y);
                if (kind < 2) pixel[3] = kind == 0 ? 0 : full;
                if (kind == 2 || kind == 3) pixel.fill(kind == 2 ? 0 : full);
                image.Set(i, y, pixel);
            }
        }
}

const GUID& RandomFormat(std::mt19937& random, int kind)
{
    static constexpr std::array<const GUID*, 4> kFormatIds{&PXFormat_RGBA32, &PXFormat_RGBA64,
                                                           &PXFormat_Mono8, &PXFormat_Mono16};
    const bool takesMono = kind != kGrayscale && kind <= kProbeDyadic;
    return *kFormatIds[random() % (takesMono ? 4 : 2)];
}

/// One run of an operator on random pictures, regions and masks. A third of the runs take whole pictures.
class Scene {
public:
    Scene(int operatorKind, unsigned seed);
    void Check();

private:
    vfILBbox2l RandomSize(long least);
    void PlaceRegions();
    void PlaceMask();
    void MaskByOwnAlpha();
    void ChooseMaskChannel(std::size_t channel);
    void MakeConfigured();
    Pixel Processed(const Pixel& p, const Pixel& q, int mask) const;

    std::mt19937 random;
    const int kind;
    const FormatCase& format;
    const bool whole;
    const bool simd;
    const vfILBbox2l size;
    GuardedImage a, b, separateOutput;
    GuardedImage* front = &b;
    GuardedImage* output = &separateOutput; ///< or an input
    std::unique_ptr<GuardedImage> ownMask;
    PXImageChannel maskChannel = PXImageChannel_MONO;
    FrameCase run;
    LayerSetup setup;
    std::unique_ptr<vfILImgProc> processor;
};

Scene::Scene(int operatorKind, unsigned seed)
    : random(seed), kind(operatorKind), format(FormatOf(RandomFormat(random, kind))),
      whole(random() % 3 == 0), simd(random() % 2), size(0, 0, RandomIn(random, 1, 140), 2), a(format.id),
      b(format.id), separateOutput(format.id)
{
    for (GuardedImage* image : {&a, &b, &separateOutput}) {
        const vfILBbox2l box = RandomSize(image == &separateOutput ? 1 : 0);
        image->SetDimensions(box.GetSizeX(), box.GetSizeY());
        image->Randomise(random);
        if (random() % 3) LayRuns(*image, random);
    }
    const bool monadic = kind <= kProbeMonadic;
    if (monadic || random() % 8 == 0) front = &a;
    GuardedImage& input = random() % 2 ? a : *front;
    if (random() % 3 == 0 && input.Width() > 0 && input.Height() > 0) output = &input;
    run.dominantB = kind != kMix && front != &a && random() % 2;
    setup = RandomSetup(random, static_cast<Layer>(kind - kFirstLayer), format.Full());
    setup.dominantB = run.dominantB;
    if (kind == kMix) setup.mode = VFIL_MODE_RGBA;
    if (kind == kGrayscale) setup.mode |= VFIL_MODE_RGB;
    setup.mode |= RandomFieldBits(random);
    run.mode = setup.mode;
    const int full = format.Full();
    if (random() % 4) // else transparent black, which nobody sets
        run.defaultPixel =
            format.channels == 1 ? Pixel{full, 0, 0, 0} : Pixel{full, 0, full / 5, full / 5 * 3};
    PlaceRegions();
    const bool samplesMask = kind < kFirstLayer && kind != kMix && kind != kCopy;
    const bool intoDominant = output == (run.dominantB ? front : &a);
    if (samplesMask && intoDominant && format.channels == 4 && random() % 3 == 0)
        MaskByOwnAlpha();
    else
        PlaceMask();
    MakeConfigured();
}

/// Mostly small, sometimes past a vector and past the length from which rows are copied another way.
vfILBbox2l Scene::RandomSize(long least)
{
    if (whole) return size;
    return {0, 0, random() % 8 ? RandomIn(random, least, 8) : RandomIn(random, 9, 100),
            RandomIn(random, least, 7)};
}

/// A region of interest that may hang over the input, and a place for it within the output.
void Scene::PlaceRegions()
{
    run.roi = vfILBbox2l(0, 0, output->Width(), output->Height());
    if (whole) return;
    run.roi.SetSize(RandomIn(random, 1, output->Width()), RandomIn(random, 1, output->Height()));
    const auto place = [this](long space) { return random() % 4 ? RandomIn(random, 0, space) : 0; };
    run.outputOffset = vfILVector2l(place(output->Width() - run.roi.GetSizeX()),
                                    place(output->Height() - run.roi.GetSizeY()));
    run.roi.SetOffset(random() % 3 ? RandomIn(random, -3, 5) : run.outputOffset[0],
                      random() % 3 ? RandomIn(random, -3, 5) : run.outputOffset[1]);
    if (kind > kProbeMonadic && random() % 3)
        run.inputOffset = vfILVector2l(RandomIn(random, -4, 4), RandomIn(random, -4, 4));
}

/// None, a box, or a box with a mono or a four-channel picture of the output's depth.
void Scene::PlaceMask()
{
    const auto choice = kind == kMix ? 3 : random() % 4;
    if (choice == 0) return;
    if (!whole || choice == 1)
        run.maskBox = vfILBbox2l(RandomIn(random, -2, 3), RandomIn(random, -2, 3), RandomIn(random, 1, 40),
                                 RandomIn(random, 1, 9));
    else
        run.maskBox = size;
    if (choice == 1) return;
    const bool mono = random() % 2;
    const GUID& id = format.sampleBytes == 1 ? (mono ? PXFormat_Mono8 : PXFormat_RGBA32)
                                             : (mono ? PXFormat_Mono16 : PXFormat_RGBA64);
    ownMask = std::make_unique<GuardedImage>(id, run.maskBox.GetSizeX(), run.maskBox.GetSizeY());
    ownMask->Randomise(random);
    run.mask = ownMask.get();
    if (!mono) ChooseMaskChannel(random() % 4);
}

void Scene::ChooseMaskChannel(std::size_t channel)
{
    run.maskChannel = channel;
    maskChannel = static_cast<PXImageChannel>(1 << channel);
}

/// Masks the output by its own alpha, which then is not processed.
void Scene::MaskByOwnAlpha()
{
    const vfILVector2l place = run.dominantB ? run.inputOffset : vfILVector2l(0, 0);
    run.roi.SetOffset(run.outputOffset + place);
    run.maskBox = vfILBbox2l(place[0], place[1], output->Width(), output->Height());
    run.mask = output;
    run.mode &= ~static_cast<unsigned long>(VFIL_MODE_ALPHA);
    ChooseMaskChannel(3);
}

void Scene::MakeConfigured()
{
    processor = MakeProcessor(kind, simd);
    Connect(*processor, &a, front, output);
    if (auto* dyadic = dynamic_cast<vfILDyadicImgProc*>(processor.get())) {
        const bool overruled = kind == kMix && random() % 2; // which takes A, whatever it is told
        dyadic->SetDominantInput(run.dominantB || overruled ? front : &a);
        dyadic->SetInputOffset(run.inputOffset);
    }
    if (auto* mix = dynamic_cast<vfILCompositeImg*>(processor.get())) {
        mix->SetAlpha(setup.strength);
        mix->SetAlphaMode(setup.alphaMode);
    }
    if (auto* layer = dynamic_cast<vfILCompImg*>(processor.get())) Configure(*layer, setup);
    processor->SetROI(run.roi);
    processor->SetOutputOffset(run.outputOffset);
    if (run.defaultPixel != Pixel{}) processor->SetDefaultColor(vfILColor(1.0, 0.0, 0.2, 0.6));
    if (run.maskBox != FrameCase().maskBox)
        processor->SetMask(run.maskBox, const_cast<GuardedImage*>(run.mask), maskChannel);
    if (random() % 3 == 0)
        processor = kOperators[static_cast<std::size_t>(kind)].copy(*processor, simd, random() % 2);
    processor->SetProcessingMode(run.mode);
}

Pixel Scene::Processed(const Pixel& p, const Pixel& q, int mask) const
{
    const int full = format.Full();
    if (kind >= kFirstLayer) return LayerPixel(setup, p, q);
    if (kind == kMix) return CompositePixel(full, setup.strength, setup.alphaMode, p, q, mask);
    if (kind == kCopy) return p;
    const int grey = Grey(p);
    if (kind == kGrayscale) return SelectAndMix(full, 4, VFIL_MODE_RGB, p, {grey, grey, grey, p[3]}, mask);
    Pixel processed{};
    for (std::size_t c = 0; c < 4; ++c) {
        if (kind == kInvert) processed[c] = full - p[c];
        if (kind == kProbeMonadic) processed[c] = ProbeMonadic::Rule(p[c], full);
        if (kind == kProbeDyadic) processed[c] = ProbeDyadic::Rule(p[c], q[c], full);
    }
    return SelectAndMix(full, format.channels, run.mode, p, processed, mask);
}

/// Runs and compares all three pictures with what the model foretells.
void Scene::Check()
{
    SCOPED_TRACE(ClassOf(*processor));
    ASSERT_EQ(processor->Verify(), VFIL_SUCCESS) << std::hex << processor->GetLastError().GetErrorCode();
    const Snapshot expected =
        ModelRun(run, a, *front, *output,
                 [this](const Pixel& p, const Pixel& q, int mask) { return Processed(p, q, mask); });
    const std::vector<std::uint8_t> beforeA = a.Bytes();
    const std::vector<std::uint8_t> beforeB = b.Bytes();
    ASSERT_EQ(processor->Execute(), VFIL_SUCCESS);
    ASSERT_EQ(Difference(expected, *output), "");
    ASSERT_TRUE(output == &a || a.Bytes() == beforeA) << "A was written";
    ASSERT_TRUE(output == &b || b.Bytes() == beforeB) << "B was written";
    ASSERT_TRUE(output != &separateOutput || a.readRegionCalls + b.readRegionCalls == 0) << "needless copies";
    if (!whole || !ownMask) return; // without a treated pixel no state is reported
    long state = 0;
    output->GetImageState(PXImageState_PREMULTIPLIED, &state);
    ASSERT_EQ(state, kind >= kFirstLayer && IsLayerResultPremultiplied(setup));
}

class EveryOperator : public testing::TestWithParam<int> {};

TEST_P(EveryOperator, FollowsTheBoxesAndTheModel)
{
    for (unsigned round = 0; round < 1000; ++round) {
        const unsigned seed = 1000 * static_cast<unsigned>(GetParam()) + round;
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Scene(GetParam(), seed).Check();
        if (HasFatalFailure()) return;
    }
}

INSTANTIATE_TEST_SUITE_P(Frame, EveryOperator, testing::Range(0, kKinds));

// Asking may cost a host a lock or a look-up: a run, with all its fills, asks each picture once, and one that
// is input, mask and output at a time as well.
TEST_P(EveryOperator, AsksEachPictureOnce)
{
    for (const bool inPlace : {false, true}) {
        GuardedImage a(PXFormat_RGBA64, 6, 4), b(PXFormat_RGBA64, 5, 4), out(PXFormat_RGBA64, 8, 6);
        GuardedImage mask(PXFormat_Mono16, 4, 3);
        const auto used = MakeProcessor(GetParam(), true);
        Connect(*used, &a, &b, inPlace ? &a : &out);
        used->SetMask({1, 1, 4, 3}, &mask, PXImageChannel_MONO);
        ASSERT_EQ(used->Verify(), VFIL_SUCCESS);
        for (GuardedImage* image : {&a, &b, &out, &mask})
            image->asked = {};
        ASSERT_EQ(used->Execute(), VFIL_SUCCESS);
        const GuardedImage::Asked once{1, 1, 1, 1, 1}, never{};
        EXPECT_EQ(a.asked, once);
        EXPECT_EQ(b.asked, GetParam() <= kProbeMonadic ? never : once);
        EXPECT_EQ(out.asked, inPlace ? never : once);
        EXPECT_EQ(mask.asked, once);
    }
}

// Without SetROI the region follows the output; once set it stays.
TEST(Frame, RegionFollowsTheOutputUntilItIsSet)
{
    GuardedImage small(PXFormat_Mono8, 3, 2);
    GuardedImage large(PXFormat_Mono8, 7, 5);
    vfILInvertImg invert;
    invert.SetOutputImg(&large);
    invert.SetOutputImg(&small);
    invert.SetOutputImg(nullptr);
    EXPECT_EQ(invert.GetROI(), vfILBbox2l(0, 0, 3, 2));
    invert.SetROI({1, 1, 2, 2});
    vfILInvertImg copy(invert);
    copy.SetOutputImg(&large);
    EXPECT_EQ(copy.GetROI(), vfILBbox2l(1, 1, 2, 2));
}

} // namespace

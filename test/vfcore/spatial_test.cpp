#include "support/spatialmodel.h"

#include "il/vfcore/windowloop.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <new>

using namespace vfil::test;

namespace {

/// What runs allocate. Buffers of `failFrom` bytes and more can't be had.
struct Allocations {
    std::size_t failFrom = std::size_t{1} << 30;
    int count = 0;
    std::size_t largest = 0;
} g_allocations;

} // namespace

// The form by which runs allocate. What it gives comes from the common one, as operator delete expects.
void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    if (bytes >= g_allocations.failFrom) return nullptr;
    ++g_allocations.count;
    g_allocations.largest = std::max(g_allocations.largest, bytes);
    return operator new[](bytes);
}

namespace {

/// One sample of a window, or a sum in which no two samples weigh the same.
struct ProbeRule {
    long x = 0, y = 0;          ///< the sample
    long width = 0, height = 0; ///< of the sum, 0 for the sample

    template <class At>
    int Of(const At& at, int full) const
    {
        if (width == 0) return at(x, y);
        unsigned sum = 0;
        for (long i = 0; i < width * height; ++i)
            sum += static_cast<unsigned>(at(i % width, i / width)) * static_cast<unsigned>(2 * i + 1);
        return static_cast<int>(sum & static_cast<unsigned>(full));
    }
};

/// A filter of a rule.
class Probe : public vfILMonadicSpatialProc {
public:
    ProbeRule rule;
    int effects = 0; ///< calls of DoEffect

    Probe() = default;
    Probe(IPXImage* input, IPXImage* output)
    {
        SetInputImg(input);
        SetOutputImg(output);
    }
    void Arrange(bool simd, bool inBands)
    {
        m_simdAvailable = simd;
        if (inBands) AllowBands();
    }
    std::vector<vfILBbox2l> Boxes() const
    {
        return {m_validBox, m_outputBox, m_maskedBox, m_validOutBox, m_effectBox};
    }

protected:
    vfILStatus DoEffect() override
    {
        ++effects;
        CheckSkipLine();
        vfil::PointFormats::Visit(OutputFormat(), [this](auto format) {
            using Sample = typename decltype(format)::Sample;
            vfil::RunWindowOp<decltype(format)>(*this, Run(), [this](const auto& window) {
                return static_cast<Sample>(rule.Of(window, vfil::Arith<Sample>::kFull));
            });
        });
        return VFIL_SUCCESS;
    }

private:
    /// A leaf that goes on from row to row with SkipLine has the pointers of the same rows.
    void CheckSkipLine()
    {
        const vfILWindowRun& run = Run();
        void *out = run.output.first, *in = run.windows.first, *mask = run.mask.first;
        int parity = m_firstRowEven;
        for (long row = 0, y = run.processBox.GetOffsetY(); row < run.processBox.GetSizeY(); ++row, ++y) {
            void** const maskPlace = mask || y % 2 ? &mask : nullptr;
            const int skipped = SkipLine(parity, &out, &in, maskPlace);
            ASSERT_EQ(skipped, !IsRowTreated(GetProcessingMode(), y));
            if (!skipped) {
                out = static_cast<char*>(out) + run.output.step;
                in = static_cast<char*>(in) + run.windows.step;
                if (mask) mask = static_cast<char*>(mask) + run.mask.step;
            }
            ASSERT_EQ(out, run.output.first + (row + 1) * run.output.step);
            ASSERT_EQ(in, run.windows.first + (row + 1) * run.windows.step);
            ASSERT_EQ(mask, mask ? run.mask.first + (row + 1) * run.mask.step : nullptr);
        }
    }
};

const GUID& FormatOfSamples(int sampleBytes, bool mono)
{
    if (sampleBytes == 1) return mono ? PXFormat_Mono8 : PXFormat_RGBA32;
    return mono ? PXFormat_Mono16 : PXFormat_RGBA64;
}

/// One run on random pictures, regions, masks and radii.
struct Scene {
    explicit Scene(unsigned seed);
    void PlaceRegions();
    void PlaceMask();
    void Check();

    std::mt19937 random;
    const FormatCase& format;
    const bool tall; ///< rows long enough, by the radius, and enough of them for bands
    GuardedImage input, separateOutput;
    GuardedImage* output = &separateOutput;
    std::unique_ptr<GuardedImage> mask;
    SpatialCase run;
    Probe probe;
};

Scene::Scene(unsigned seed)
    : random(seed), format(FormatOf(FormatOfSamples(1 + random() % 2, random() % 2))),
      tall(random() % 8 == 0), input(format.id), separateOutput(format.id)
{
    for (GuardedImage* image : {&input, &separateOutput}) {
        image->SetDimensions(RandomIn(random, image == &separateOutput, tall ? 3 : 9),
                             tall ? RandomIn(random, 30, 60) : RandomIn(random, 1, 8));
        image->Randomise(random);
    }
    if (random() % 3 == 0 && input.Width() > 0) output = &input;
    run.edgeMode = static_cast<vfILEdgeMode>(RandomIn(random, 1, 4));
    run.radiusX = tall ? RandomIn(random, 18000, 20000) : RandomIn(random, 0, random() % 4 ? 3 : 25);
    run.radiusY = RandomIn(random, 0, tall || random() % 4 ? 2 : 20);
    const int part = format.Full() / 5;
    const bool mono = format.channels == 1;
    run.regions.defaultPixel = mono ? Pixel{part * 5} : Pixel{part * 5, 0, part, part * 3};
    run.edgePixel = mono ? Pixel{part} : Pixel{part, part * 5, 0, part * 4};
    run.regions.mode = random() % 3 ? random() % 16 : VFIL_MODE_RGBA;
    if (random() % 2) run.regions.mode |= (random() % 4) * VFIL_MODE_ODD_ROWS;
    const long width = 2 * run.radiusX + 1, height = 2 * run.radiusY + 1;
    probe.rule = {RandomIn(random, 0, width - 1), RandomIn(random, 0, height - 1)};
    if (width * height < 100 && random() % 2) probe.rule = {0, 0, width, height};
    probe.Arrange(random() % 2, random() % 2);
    probe.SetInputImg(&input);
    probe.SetOutputImg(output);
    probe.SetDefaultColor(vfILColor(1.0, 0.0, 0.2, 0.6));
    probe.SetRadius(static_cast<float>(run.radiusX), static_cast<float>(run.radiusY) + 0.875F);
    probe.SetEdgeMode(run.edgeMode);
    probe.SetEdgeColor(vfILColor(0.2, 1.0, 0.0, 0.8));
    PlaceRegions();
    PlaceMask();
}

void Scene::PlaceRegions()
{
    FrameCase& at = run.regions;
    const bool whole = random() % 3 == 0;
    long size[2] = {output->Width(), output->Height()};
    long target[2], offset[2];
    for (int axis : {0, 1}) {
        const long space = whole ? 0 : RandomIn(random, 0, size[axis] - 1);
        size[axis] -= space;
        target[axis] = random() % 4 ? RandomIn(random, 0, space) : 0;
        offset[axis] = random() % 3 ? RandomIn(random, -3, 5) : target[axis];
    }
    at.roi = vfILBbox2l(offset[0], offset[1], size[0], size[1]);
    at.outputOffset = vfILVector2l(target[0], target[1]);
    probe.SetROI(at.roi);
    probe.SetOutputOffset(at.outputOffset);
}

/// None, a box, or a box with a mono or a four-channel picture.
void Scene::PlaceMask()
{
    const auto choice = random() % 4;
    FrameCase& at = run.regions;
    PXImageChannel channel = PXImageChannel_MONO;
    if (choice > 0)
        at.maskBox = vfILBbox2l(RandomIn(random, -2, 3), RandomIn(random, -2, 3), RandomIn(random, 1, 12),
                                RandomIn(random, 1, tall ? 60 : 9));
    if (choice > 1) {
        const bool mono = random() % 2;
        mask = std::make_unique<GuardedImage>(FormatOfSamples(format.sampleBytes, mono),
                                              at.maskBox.GetSizeX(), at.maskBox.GetSizeY());
        mask->Randomise(random);
        at.mask = mask.get();
        at.maskChannel = mono ? 0 : random() % 4;
        if (!mono) channel = static_cast<PXImageChannel>(1 << at.maskChannel);
    }
    probe.SetMask(at.maskBox, mask.get(), channel);
}

void Scene::Check()
{
    Probe copy(probe); // has all but the mode
    copy.SetProcessingMode(run.regions.mode);
    ASSERT_EQ(copy.Verify(), VFIL_SUCCESS) << std::hex << copy.GetLastError().GetErrorCode();
    const Snapshot expected = ModelSpatialRun(run, input, *output, [&](const WindowSample& sample) {
        return probe.rule.Of(sample, format.Full());
    });
    const std::vector<std::uint8_t> before = input.Bytes();
    g_allocations = {};
    ASSERT_EQ(copy.Execute(), VFIL_SUCCESS);
    ASSERT_EQ(Difference(expected, *output), "");
    ASSERT_TRUE(output == &input || input.Bytes() == before) << "the input was written";
    const vfILBbox2l& roi = run.regions.roi;
    const long most =
        (roi.GetSizeX() + 2 * run.radiusX) * (roi.GetSizeY() + 2 * run.radiusY) + roi.GetSizeX();
    ASSERT_LE(g_allocations.largest, static_cast<std::size_t>(most * format.pixelBytes));
    ASSERT_LE(g_allocations.count, output == &input && !(copy.Boxes()[0] == copy.Boxes()[2]) ? 2 : 1);
}

TEST(Spatial, FollowsTheWindowsAndTheModel)
{
    for (unsigned seed = 0; seed < 6000 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        Scene(seed).Check();
    }
}

// What the model says of a row of 0 1 2 from -7 to 9, - being the edge colour.
TEST(Spatial, ModelRepeatsTheRow)
{
    const std::pair<vfILEdgeMode, const char*> cases[] = {{VFIL_EDGE_COLOR, "-------012-------"},
                                                          {VFIL_EDGE_WRAP, "20120120120120120"},
                                                          {VFIL_EDGE_CLAMP, "00000000122222222"},
                                                          {VFIL_EDGE_MIRROR, "00122100122100122"}};
    for (const auto& [mode, expected] : cases) {
        std::string row;
        for (long x = -7; x <= 9; ++x)
            row += "-012"[EdgeIndex(mode, x, 3) + 1];
        EXPECT_EQ(row, expected);
    }
}

// An empty effect box stays where it is; the others are moved once.
TEST(Spatial, BoxesAreInOutputCoordinates)
{
    GuardedImage in(PXFormat_Mono8, 6, 5), out(PXFormat_Mono8, 6, 4);
    Probe probe(&in, &out);
    probe.SetROI({4, 3, 5, 4});
    probe.SetOutputOffset({1, 0});
    const vfILBbox2l valid(1, 0, 2, 2), whole(1, 0, 5, 4), masked(2, 0, 1, 2);
    probe.SetMask({5, 0, 9, 9}, nullptr, PXImageChannel_MONO);
    ASSERT_EQ(probe.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(probe.Boxes(), (std::vector{valid, whole, masked, valid, masked}));
    probe.SetMask({-3, -3, 2, 2}, nullptr, PXImageChannel_MONO);
    ASSERT_EQ(probe.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(probe.Boxes(), (std::vector<vfILBbox2l>{valid, whole, {1, 0, 0, 0}, valid, {4, 3, 0, 0}}));
    EXPECT_EQ(probe.effects, 1);
}

TEST(Spatial, VerifyChecksInOrder)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    GuardedImage in(PXFormat_RGBA32, 4, 4), out(PXFormat_RGBA32, 4, 4), wide(PXFormat_RGBA64, 4, 4);
    const struct {
        unsigned long code;
        float rx, ry;
        int mode;
        double green;
    } cases[] = {{0, 1073741824.0F, 0.0F, 4, 7.0},       {0, 0.0F, 0.9F, 1, 1.0},
                 {0x10023, -0.25F, 0.0F, 9, 7.0},        {0x10023, 0.0F, kNaN, 1, 0.0},
                 {0x10023, kNaN, 1.0F, 1, 0.0},          {0x10023, 0.0F, 1073741952.0F, 1, 0.0},
                 {0x10023, INFINITY, 0.0F, 2, 0.0},      {0x10020, 1.0F, 1.0F, 0, 7.0},
                 {0x10020, 1.0F, 1.0F, 5, 7.0},          {0x10048, 1.0F, 1.0F, 1, 1.0001},
                 {0x10048, 0.0F, 0.0F, 1, double{kNaN}}, {0x1000E, kNaN, 0.0F, 0, 7.0}};
    for (const auto& c : cases) {
        Probe probe(c.code == 0x1000E ? &wide : &in, &out);
        probe.SetRadius(c.rx, c.ry);
        probe.SetEdgeMode(static_cast<vfILEdgeMode>(c.mode));
        probe.SetEdgeColor(vfILColor(0, c.green, 0, 0));
        const unsigned long code = probe.Verify() == VFIL_SUCCESS ? 0 : probe.GetLastError().GetErrorCode();
        EXPECT_EQ(code, c.code) << "case " << &c - cases;
    }
}

// Radii that need more memory than there is, sizes beyond all integers, and radii that Verify would refuse.
TEST(Spatial, RunsThatCannotBeHadLeaveTheOutputAlone)
{
    std::mt19937 random(1);
    GuardedImage picture(PXFormat_RGBA64, 9, 8);
    picture.Randomise(random);
    const Snapshot before(picture);
    const std::pair<float, float> radii[] = {{40.0F, 40.0F}, {9e6F, 9e6F},      {1e9F, 1e9F},  {1e9F, 0.0F},
                                             {0.0F, 2e9F},   {3e38F, INFINITY}, {-7.0F, 1.0F}, {0.0F, -2e9F}};
    for (const bool shifted : {false, true})
        for (const auto& [rx, ry] : radii) {
            Probe probe(&picture, &picture);
            probe.SetROI({0, 0, 8, 8});
            if (shifted) probe.SetMask({0, 0, 5, 5}, nullptr, PXImageChannel_MONO);
            probe.SetOutputOffset({shifted, 0});
            probe.SetRadius(rx, ry);
            g_allocations.failFrom = 40000;
            EXPECT_EQ(probe.Execute(), VFIL_FAILURE) << rx << ' ' << ry;
            g_allocations = {};
            EXPECT_EQ(probe.GetLastError().GetErrorCode(), rx >= 0 && ry >= 0 ? 0x10001U : 0U);
            EXPECT_EQ(Difference(before, picture), "");
        }
}

int g_polls = 0;
int g_stopAtPoll = 0;

/// Fires once, and only once.
int StopOnce()
{
    return ++g_polls == g_stopAtPoll;
}

// A band holds a part of the picture, and none begins after the interrupt.
TEST(Spatial, BandsSaveMemoryAndEndWithTheInterrupt)
{
    constexpr long kRows = 100, kWidth = 20000, kBandRows = 24;
    GuardedImage in(PXFormat_Mono8, kWidth, kRows), out(PXFormat_Mono8, kWidth, kRows);
    for (long y = 0; y < kRows; ++y)
        in.Set(1, y, {7});
    for (const long rows : {1L, 20L, kBandRows, kRows}) {
        out.SetDimensions(kWidth, kRows);
        Probe probe(&in, &out);
        probe.rule = {1, 1};
        probe.SetRadius(1.0F);
        probe.Arrange(true, true);
        g_polls = 0;
        g_stopAtPoll = static_cast<int>(rows) + 1; // one poll between the stages, one a row
        probe.SetInterruptFct(StopOnce, nullptr);
        g_allocations = {};
        ASSERT_EQ(probe.Execute(), VFIL_SUCCESS);
        EXPECT_LT(g_allocations.largest, static_cast<std::size_t>(kWidth * kRows / 2));
        EXPECT_EQ(probe.effects, (rows + kBandRows - 1) / kBandRows);
        for (long y = 0; y < kRows; ++y)
            ASSERT_EQ(out.Get(1, y)[0], y < rows ? 7 : 0) << "row " << y;
    }
}

} // namespace

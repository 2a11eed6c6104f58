#include "support/allocations.h"
#include "support/filterscene.h"

#include "il/loops/frame/windowloop.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace vfil::test;

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

    explicit Probe(IPXImage* input = nullptr, IPXImage* output = nullptr)
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
        vfil::PointFormats::Visit(vfil::FormatOf(Run()), [this](auto format) {
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

/// One run on random pictures, regions, masks and radii.
void CheckRun(unsigned seed)
{
    std::mt19937 random(seed);
    const bool tall = random() % 8 == 0; // rows long enough, by the radius, and enough of them for bands
    const long rx = tall ? RandomIn(random, 18000, 20000) : RandomIn(random, 0, random() % 4 ? 3 : 25);
    const long ry = RandomIn(random, 0, tall || random() % 4 ? 2 : 20);
    FilterScene scene(random, *kFilterFormats[random() % 4], RandomIn(random, 0, tall ? 3 : 9),
                      tall ? RandomIn(random, 30, 60) : RandomIn(random, 1, 8));
    const long width = 2 * rx + 1, height = 2 * ry + 1;
    Probe probe;
    probe.rule = {RandomIn(random, 0, width - 1), RandomIn(random, 0, height - 1)};
    if (width * height < 100 && random() % 2) probe.rule = {0, 0, width, height};
    probe.Arrange(random() % 2, random() % 2);
    scene.Arrange(probe);
    probe.SetRadius(static_cast<float>(rx), static_cast<float>(ry) + 0.875F);
    Probe copy(probe); // has all but the mode
    copy.SetProcessingMode(scene.regions.mode);
    const Snapshot expected = scene.Expected(
        rx, ry, [&](const WindowSample& at) { return probe.rule.Of(at, scene.format.Full()); });
    const std::vector<std::uint8_t> before = scene.input.Bytes();
    g_allocations = {};
    scene.Check(copy, expected);
    ASSERT_TRUE(scene.output == &scene.input || scene.input.Bytes() == before) << "the input was written";
    const vfILBbox2l& roi = scene.regions.roi;
    const long most = (roi.GetSizeX() + 2 * rx) * (roi.GetSizeY() + 2 * ry) + roi.GetSizeX();
    const std::size_t line = 64; // of the cache, with which run memory begins
    ASSERT_LE(g_allocations.largest, static_cast<std::size_t>(most * scene.format.pixelBytes) + line);
    const bool shown = scene.output == &scene.input && !(copy.Boxes()[0] == copy.Boxes()[2]);
    ASSERT_LE(g_allocations.count, shown ? 2 : 1);
}

TEST(Spatial, FollowsTheWindowsAndTheModel)
{
    for (unsigned seed = 0; seed < 6000 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        CheckRun(seed);
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
        EXPECT_EQ(CodeOf(probe), c.code) << "case " << &c - cases;
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
            EXPECT_EQ(probe.GetLastError().GetErrorCode(), rx >= 0 && ry >= 0 ? 0x10001U : 0x10023U);
            EXPECT_EQ(Difference(before, picture), "");
        }
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
        g_pollsToStop = static_cast<int>(rows) + 1; // one poll between the stages, one a row
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

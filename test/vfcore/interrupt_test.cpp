#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <functional>

using namespace vfil::test;

namespace {

int g_polls = 0;
int g_stopAtPoll = 0;

/// Fires at the chosen poll and at every later one.
int StopLater()
{
    return ++g_polls >= g_stopAtPoll;
}

int CountOnly()
{
    ++g_polls;
    return 0;
}

/// Notes the stages of a run.
class Staged : public vfILInvertImg {
public:
    std::string stages;

protected:
    vfILStatus PrepareData() override
    {
        stages += 'p';
        return vfILInvertImg::PrepareData();
    }
    vfILStatus ProcessData() override
    {
        stages += 'd';
        return vfILInvertImg::ProcessData();
    }
    vfILStatus CleanData() override
    {
        stages += 'c';
        return vfILInvertImg::CleanData();
    }
};

TEST(Interrupt, TheFlagIsReadBeforeTheFunction)
{
    Staged p;
    volatile long flag = 1;
    g_polls = 0;
    p.SetInterruptFct(CountOnly, &flag);
    EXPECT_EQ(p.MustInterrupt(), 1);
    EXPECT_EQ(g_polls, 0);
    flag = 0;
    EXPECT_EQ(p.MustInterrupt(), 0);
    EXPECT_EQ(g_polls, 1);
    p.SetInterruptFct(nullptr, &flag);
    EXPECT_EQ(p.MustInterrupt(), 0);
    flag = -4;
    EXPECT_EQ(p.MustInterrupt(), 1) << "the flag stays without a function";
}

TEST(Interrupt, BeforeTheRunSkipsTheEffectAlone)
{
    for (const bool byFlag : {true, false}) {
        std::mt19937 random(1);
        GuardedImage in(PXFormat_RGBA32, 5, 3);
        GuardedImage out(PXFormat_RGBA32, 5, 3);
        out.Randomise(random);
        const Snapshot before(out);
        Staged p;
        p.SetInputImg(&in);
        p.SetOutputImg(&out);
        volatile long flag = byFlag;
        g_polls = 0;
        g_stopAtPoll = 1;
        p.SetInterruptFct(byFlag ? nullptr : StopLater, &flag);
        EXPECT_EQ(p.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(p.stages, "pc");
        EXPECT_EQ(Difference(before, out), "");
        EXPECT_TRUE(p.GetLastError().IsNoError());
        flag = 0;
        p.SetInterruptFct(nullptr, &flag);
        EXPECT_EQ(p.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(p.stages, "pcpdc");
        EXPECT_NE(Difference(before, out), "");
    }
}

constexpr long kRows = 6;

/// How many rows a run treats that is stopped at the second poll after a row, lowest memory row first.
long RowsUntilStopped(vfILImgProc& p, GuardedImage& out)
{
    const Snapshot before(out);
    g_polls = 0;
    g_stopAtPoll = 3; // one poll between the stages, one a row
    p.SetInterruptFct(StopLater, nullptr);
    EXPECT_EQ(p.Execute(), VFIL_SUCCESS);
    EXPECT_TRUE(p.GetLastError().IsNoError());
    long rows = 0;
    while (rows < kRows && out.Get(0, rows) != before.At(0, rows))
        ++rows;
    for (long y = rows; y < kRows; ++y)
        EXPECT_EQ(out.Get(0, y), before.At(0, y)) << "row " << y;
    return rows;
}

TEST(Interrupt, MonadicLoopsStopAfterTheRow)
{
    std::mt19937 random(2);
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64})
        for (const bool simd : {false, true})
            for (const bool masked : {false, true}) {
                std::unique_ptr<vfILMonadicPixelProc> processors[] = {
                    std::make_unique<Switched<ProbeMonadic>>(simd),
                    std::make_unique<Switched<vfILInvertImg>>(simd),
                    std::make_unique<Switched<vfILGrayscaleImg>>(simd)};
                for (int kind = 0; kind < 3; ++kind) {
                    vfILMonadicPixelProc& p = *processors[kind];
                    GuardedImage in(format, 9, kRows);
                    GuardedImage out(format, 9, kRows);
                    GuardedImage mask(format, 9, kRows);
                    in.Randomise(random);
                    for (long y = 0; y < kRows; ++y) {
                        out.Set(0, y, {1, 2, 3, 4});
                        mask.Set(0, y, {77, 77, 77, 77});
                    }
                    p.SetInputImg(&in);
                    p.SetOutputImg(&out);
                    if (masked) p.SetMask({0, 0, 9, kRows}, &mask, PXImageChannel_GREEN);
                    ASSERT_EQ(p.Verify(), VFIL_SUCCESS);
                    EXPECT_EQ(RowsUntilStopped(p, out), 2) << "kind " << kind << " simd " << simd;
                }
            }
}

TEST(Interrupt, DyadicLoopsStopAfterTheRowAndReportTheirState)
{
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64})
        for (const bool simd : {false, true})
            for (int kind = -2; kind < kLayers; ++kind) {
                const bool plainOver = kind == 0 && format == PXFormat_RGBA32;
                if (plainOver && simd) continue; // its fast loops may poll or not
                GuardedImage a(format, 9, kRows);
                GuardedImage b(format, 9, kRows);
                GuardedImage out(format, 9, kRows);
                for (long y = 0; y < kRows; ++y) {
                    out.Set(0, y, {1, 2, 3, 4});
                    b.Set(0, y, {9, 9, 9, 9});
                }
                std::unique_ptr<vfILDyadicPixelProc> p;
                if (kind >= 0)
                    p = MakeLayer(static_cast<Layer>(kind), simd);
                else if (kind == -1)
                    p = std::make_unique<Switched<ProbeDyadic>>(simd);
                else
                    p = std::make_unique<Switched<vfILCompositeImg>>(simd);
                p->SetInputImgA(&a);
                p->SetInputImgB(&b);
                p->SetOutputImg(&out);
                p->SetDominantInput(&a);
                if (kind == -2) p->SetMask({0, 0, 9, kRows}, &b, PXImageChannel_GREEN);
                ASSERT_EQ(p->Verify(), VFIL_SUCCESS);
                EXPECT_EQ(RowsUntilStopped(*p, out), plainOver ? kRows : 2)
                    << "kind " << kind << " simd " << simd;
                long state = 0;
                out.GetImageState(PXImageState_PREMULTIPLIED, &state);
                EXPECT_EQ(state, kind >= 0 && kind <= 2) << "kind " << kind;
            }
}

} // namespace

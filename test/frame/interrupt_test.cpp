#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace vfil::test;

namespace {

int g_polls = 0;
int g_stopAtPoll = 0;

/// Fires at the chosen poll and at every later one.
int StopLater()
{
    return ++g_polls >= g_stopAtPoll;
}

/// Notes the stages of a run.
class Staged : public vfILInvertImg {
public:
    std::string stages;

protected:
    vfILStatus PrepareData() override { return Note('p', vfILInvertImg::PrepareData()); }
    vfILStatus ProcessData() override { return Note('d', vfILInvertImg::ProcessData()); }
    vfILStatus CleanData() override { return Note('c', vfILInvertImg::CleanData()); }

private:
    vfILStatus Note(char stage, vfILStatus status)
    {
        stages += stage;
        return status;
    }
};

TEST(Interrupt, TheFlagIsReadBeforeTheFunction)
{
    Staged p;
    volatile long flag = 1;
    g_polls = 0;
    g_stopAtPoll = 9;
    p.SetInterruptFct(StopLater, &flag);
    EXPECT_EQ(p.MustInterrupt(), 1);
    EXPECT_EQ(g_polls, 0);
    flag = 0;
    EXPECT_EQ(p.MustInterrupt(), 0);
    EXPECT_EQ(g_polls, 1);
    flag = -4;
    p.SetInterruptFct(nullptr, &flag);
    EXPECT_EQ(p.MustInterrupt(), 1) << "the flag stays without a function";
}

TEST(Interrupt, ACallbackHasItsUserAndAnAtomicFlagTakesItsPlace)
{
    Staged p, copy;
    int calls = 0;
    std::atomic<long> flag{0};
    p.SetInterruptCallback([](void* user) { return ++*static_cast<int*>(user) > 1 ? -1 : 0; }, &calls);
    EXPECT_EQ(p.MustInterrupt(), 0);
    EXPECT_EQ(p.MustInterrupt(), 1);
    p.SetInterruptFlag(&flag);
    EXPECT_EQ(p.MustInterrupt(), 0);
    std::thread([&] { flag = 1L << 40; }).join();
    EXPECT_EQ(p.MustInterrupt(), 1);
    copy = p;
    EXPECT_EQ(copy.MustInterrupt(), 0);
    p.SetInterruptFlag<std::atomic<long>>(nullptr);
    EXPECT_EQ(p.MustInterrupt(), 0);
    EXPECT_EQ(calls, 2);
}

TEST(Interrupt, BeforeTheRunSkipsTheEffectAlone)
{
    GuardedImage in(PXFormat_RGBA32, 5, 3), out(PXFormat_RGBA32, 5, 3);
    const Snapshot before(out);
    for (const bool byFlag : {true, false}) {
        Staged p;
        Connect(p, &in, nullptr, &out);
        volatile long flag = byFlag;
        g_polls = 0;
        g_stopAtPoll = 1;
        p.SetInterruptFct(byFlag ? nullptr : StopLater, &flag);
        EXPECT_EQ(p.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(p.stages, "pc");
        EXPECT_EQ(Difference(before, out), "");
        EXPECT_TRUE(p.GetLastError().IsNoError());
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

TEST(Interrupt, LoopsStopAfterTheRowAndReportTheirState)
{
    std::mt19937 random(2);
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64})
        for (int kind = 0; kind < kKinds; ++kind)
            for (int bits = 0; bits < 4; ++bits) {
                const bool simd = bits & 1;
                const bool masked = kind == kMix || (bits & 2 && kind < kFirstLayer && kind != kCopy);
                const bool plainOver = kind == kFirstLayer && format == PXFormat_RGBA32;
                if (plainOver && simd) continue; // its fast loops may poll or not
                SCOPED_TRACE(testing::Message() << "kind " << kind << " simd " << simd);
                GuardedImage a(format, 9, kRows), b(format, 9, kRows), out(format, 9, kRows);
                GuardedImage mask(format, 9, kRows);
                a.Randomise(random);
                for (long y = 0; y < kRows; ++y) {
                    out.Set(0, y, {1, 2, 3, 4});
                    b.Set(0, y, {9, 9, 9, 9});
                    mask.Set(0, y, {77, 77, 77, 77});
                }
                const auto p = MakeProcessor(kind, simd);
                Connect(*p, &a, &b, &out);
                if (masked) p->SetMask({0, 0, 9, kRows}, &mask, PXImageChannel_GREEN);
                ASSERT_EQ(p->Verify(), VFIL_SUCCESS);
                EXPECT_EQ(RowsUntilStopped(*p, out), plainOver ? kRows : 2);
                long state = 0;
                out.GetImageState(PXImageState_PREMULTIPLIED, &state);
                EXPECT_EQ(state, kind >= kFirstLayer && kind < kFirstLayer + 3) << "over, in and out";
            }
}

} // namespace

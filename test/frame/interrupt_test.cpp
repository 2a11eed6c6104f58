#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace vfil::test;

namespace {

/// Notes the stages of a run, one of which may fail.
class Staged : public vfILInvertImg {
public:
    std::string stages;
    char failing = 0;

protected:
    vfILStatus PrepareData() override { return Note('p', vfILInvertImg::PrepareData()); }
    vfILStatus ProcessData() override { return Note('d', vfILInvertImg::ProcessData()); }
    vfILStatus CleanData() override { return Note('c', vfILInvertImg::CleanData()); }

private:
    vfILStatus Note(char stage, vfILStatus status)
    {
        stages += stage;
        return stage == failing ? VFIL_FAILURE : status;
    }
};

TEST(Interrupt, TheFlagIsReadBeforeTheFunction)
{
    Staged p;
    volatile long flag = 1;
    g_pollsLeft = 9;
    p.SetInterruptFct(StopAfterPolls, &flag);
    EXPECT_EQ(p.MustInterrupt(), 1);
    EXPECT_EQ(g_pollsLeft, 9);
    flag = 0;
    EXPECT_EQ(p.MustInterrupt(), 0);
    EXPECT_EQ(g_pollsLeft, 8);
    p.SetInterruptFct([] { return -3; }, &flag);
    EXPECT_EQ(p.MustInterrupt(), 1) << "whatever is not 0";
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
        g_pollsLeft = 0;
        p.SetInterruptFct(byFlag ? nullptr : StopAfterPolls, &flag);
        EXPECT_EQ(p.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(p.stages, "pc");
        EXPECT_EQ(Difference(before, out), "");
        EXPECT_TRUE(p.GetLastError().IsNoError());
    }
}

TEST(Interrupt, AStageThatFailsEndsTheRunAfterItsCleaning)
{
    GuardedImage image(PXFormat_RGBA32, 5, 3);
    for (const auto& [failing, stages] : {std::pair{'p', "pc"}, {'d', "pdc"}, {'c', "pdc"}}) {
        Staged p;
        p.failing = failing;
        Connect(p, &image, nullptr, &image);
        EXPECT_EQ(p.Execute(), VFIL_FAILURE) << failing;
        EXPECT_EQ(p.stages, stages);
    }
}

constexpr long kRows = 6;

/// How many rows a run treats that is stopped at the second poll after a row, lowest memory row first.
long RowsUntilStopped(vfILImgProc& p, GuardedImage& out)
{
    const Snapshot before(out);
    g_pollsLeft = 2; // one between the stages, one after the first row
    p.SetInterruptFct(StopAfterPolls, nullptr);
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
            for (int bits = 0; bits < 32; ++bits) {
                const bool simd = bits & 1;
                const bool masked = kind == kMix || (bits & 2 && kind < kFirstLayer && kind != kCopy);
                LayerSetup setup;
                setup.layer = static_cast<Layer>(kind - kFirstLayer);
                setup.aPremultiplied = bits & 4;
                setup.bPremultiplied = bits & 8;
                if (bits & 16) setup.alphaMode = VFIL_ALPHA_FULL;
                setup.mode = VFIL_MODE_RGBA;
                // Over's plain form does not poll, but for the one of whole pixels.
                const bool never = kind == kFirstLayer && format == PXFormat_RGBA32 && !simd &&
                                   !(setup.aPremultiplied && setup.bPremultiplied);
                GuardedImage a(format, 9, kRows), b(format, 9, kRows), out(format, 9, kRows);
                GuardedImage mask(format, 9, kRows);
                a.Randomise(random);
                for (long y = 0; y < kRows; ++y) {
                    out.Set(0, y, {1, 2, 3, 4});
                    b.Set(0, y, {9, 9, 9, 9});
                    mask.Set(0, y, {77, 77, 77, 77});
                }
                const auto p = MakeProcessor(kind, simd);
                SCOPED_TRACE(ClassOf(*p) + " case " + std::to_string(bits));
                Connect(*p, &a, &b, &out);
                if (auto* layer = dynamic_cast<vfILCompImg*>(p.get())) Configure(*layer, setup);
                if (masked) p->SetMask({0, 0, 9, kRows}, &mask, PXImageChannel_GREEN);
                ASSERT_EQ(p->Verify(), VFIL_SUCCESS);
                EXPECT_EQ(RowsUntilStopped(*p, out), never ? kRows : 2);
                long state = 0;
                out.GetImageState(PXImageState_PREMULTIPLIED, &state);
                EXPECT_EQ(state, kind >= kFirstLayer && IsLayerResultPremultiplied(setup));
            }
}

} // namespace

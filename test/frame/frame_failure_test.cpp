#include "support/allocations.h"
#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <cstdint>

using namespace vfil::test;

namespace {

// Shifted runs in place need a copy of the input. With large allocations failing they fail cleanly, and work
// again afterwards.
TEST(Failure, ShortMemoryLeavesTheOutputAlone)
{
    std::mt19937 random(1);
    GuardedImage image(PXFormat_RGBA32, 64, 32), other(PXFormat_RGBA32, 64, 32);
    other.Randomise(random);
    for (int round = 0; round < 6; ++round) {
        image.Randomise(random);
        const Snapshot before(image);
        const auto processor = MakeProcessor(round < 2 ? kInvert : kProbeDyadic, true);
        Connect(*processor, round < 4 ? &image : &other, round < 4 ? &other : &image, &image);
        const long maskWidth = round % 2 ? 60 : 99;
        processor->SetMask({0, 0, maskWidth, 99}, nullptr, PXImageChannel_MONO);
        processor->SetROI({0, 0, 62, 32});
        processor->SetOutputOffset({2, 0});
        ASSERT_EQ(processor->Verify(), VFIL_SUCCESS);
        g_allocations.failFrom = 4096;
        EXPECT_EQ(processor->Execute(), VFIL_FAILURE);
        g_allocations = {};
        EXPECT_EQ(processor->GetLastError().GetErrorCode(), 0x10001U);
        EXPECT_EQ(Difference(before, image), "");
        EXPECT_EQ(processor->Execute(), VFIL_SUCCESS);
        EXPECT_NE(Difference(before, image), "");
    }
}

// A host picture may refuse to be read. What a shifted run in place then holds is nobody's pixels.
TEST(Failure, UnreadablePictureLeavesTheOutputAlone)
{
    struct Case {
        int kind;
        bool intoFront;
        unsigned long code;
    };
    for (const Case& c : {Case{kInvert, false, 0x1000C}, Case{kFirstLayer, false, 0x10015},
                          Case{kFirstLayer, true, 0x10016}}) {
        GuardedImage image(PXFormat_RGBA32, 9, 4), other(PXFormat_RGBA32, 9, 4);
        std::mt19937 random(6);
        image.Randomise(random);
        const Snapshot before(image);
        const auto processor = MakeProcessor(c.kind, true);
        Connect(*processor, c.intoFront ? &other : &image, c.intoFront ? &image : &other, &image);
        processor->SetROI({0, 0, 7, 4});
        processor->SetOutputOffset({2, 0});
        image.failReadRegion = true;
        EXPECT_EQ(processor->Execute(), VFIL_FAILURE) << std::hex << c.code;
        EXPECT_EQ(processor->GetLastError().GetErrorCode(), c.code);
        EXPECT_EQ(Difference(before, image), "") << std::hex << c.code;
    }
}

// Nobody called Verify: a missing picture is noticed before anything is touched.
TEST(Failure, MissingPicturesAreNoticedWithoutVerify)
{
    GuardedImage image(PXFormat_RGBA32, 4, 4), out(PXFormat_RGBA32, 4, 4), empty(PXFormat_Mono8, 4, 4);
    empty.SetFormat(&PXFormat_RGBA32); // keeps its size and loses its pixels
    std::mt19937 random(2);
    image.Randomise(random);
    const Snapshot before(out);
    for (int kind = 0; kind < kKinds; ++kind)
        for (int missing = 1; missing < 8; ++missing)
            for (GuardedImage* lack : {static_cast<GuardedImage*>(nullptr), &empty}) {
                if (kind <= kProbeMonadic && missing == 4) continue; // has no second input
                const auto processor = MakeProcessor(kind, false);
                Connect(*processor, missing & 1 ? lack : &image, missing & 4 ? lack : &image,
                        missing & 2 ? lack : &out);
                processor->SetROI({0, 0, 4, 4});
                const bool one = kind <= kProbeMonadic, output = (missing & 2) != 0;
                const unsigned long null = output ? 0x10002 : one ? 0x1000B : missing & 1 ? 0x10013 : 0x10014;
                const unsigned long noPixels = null + (one || output ? 1 : 2);
                SCOPED_TRACE(ClassOf(*processor) + " without " + std::to_string(missing));
                EXPECT_EQ(processor->Execute(), VFIL_FAILURE);
                EXPECT_EQ(processor->GetLastError().GetErrorCode(), lack ? noPixels : null);
                EXPECT_EQ(Difference(before, out), "");
            }
}

// Nor does a run trust that its region lies in the output, or that its mask covers the box.
TEST(Failure, UnverifiedRegionsAndMasksAreRefused)
{
    GuardedImage in(PXFormat_RGBA32, 6, 6), out(PXFormat_RGBA32, 4, 4), mask(PXFormat_Mono8, 4, 4);
    GuardedImage mask16(PXFormat_Mono16, 4, 4), empty(PXFormat_Mono16, 4, 4), wide(PXFormat_RGBA64, 4, 4);
    empty.SetFormat(&PXFormat_Mono8);
    const Snapshot before(out);
    struct Case {
        vfILBbox2l roi;
        vfILVector2l target;
        vfILBbox2l maskBox;
        GuardedImage* mask;
        unsigned long code;
    };
    const vfILBbox2l whole(0, 0, 4, 4);
    const Case cases[] = {
        {{0, 0, 5, 4}, {0, 0}, {0, 0, 9, 9}, nullptr, 0x1000A},
        {{0, 0, 2, 2}, {0, 3}, {0, 0, 9, 9}, nullptr, 0x1000A},
        {{0, 0, 2, 2}, {-1, 0}, {0, 0, 9, 9}, nullptr, 0x1000A},
        {whole, {0, 0}, {-1, 0, 5, 4}, &mask, 0x10006},
        {whole, {0, 0}, whole, &mask16, 0x10009},
        {whole, {0, 0}, whole, &empty, 0x10005},
        {whole, {0, 0}, whole, &mask, 0}, // black
        {whole, {0, 0}, {2, 2, 9, 9}, &mask, 0},
    };
    for (const int kind : {+kInvert, +kProbeDyadic})
        for (const Case& c : cases) {
            const auto processor = MakeProcessor(kind, true);
            Connect(*processor, &in, &in, &out);
            processor->SetROI(c.roi);
            processor->SetOutputOffset(c.target);
            processor->SetMask(c.maskBox, c.mask, PXImageChannel_MONO);
            EXPECT_EQ(processor->Execute() == VFIL_SUCCESS, c.code == 0) << "case " << &c - cases;
            EXPECT_EQ(processor->GetLastError().GetErrorCode(), c.code) << "case " << &c - cases;
            EXPECT_EQ(Difference(before, out), "") << "case " << &c - cases;
            Connect(*processor, &in, &wide, &wide);
            EXPECT_EQ(processor->Execute(), VFIL_FAILURE) << "pixels of another size";
        }
}

// Nor did anybody ask whether the format suits; the masked mix has no mask either.
TEST(Failure, UnsuitableRunsLeaveTheOutputAlone)
{
    std::mt19937 random(3);
    for (const GUID& format :
         {PXFormat_Mono8, PXFormat_BGRA32, PXFormat_HLSA64, PXFormat_YCC422_601, PXFormat_RGBA32})
        for (int kind = 0; kind < kKinds; ++kind) {
            const bool takesMono = kind == kInvert || kind == kProbeMonadic || kind == kProbeDyadic;
            if (kind == kCopy || (takesMono && format == PXFormat_Mono8)) continue;
            if (kind != kMix && format == PXFormat_RGBA32) continue;
            GuardedImage in(format, 5, 4), out(format, 5, 4);
            in.Randomise(random);
            const Snapshot before(out);
            const auto processor = MakeProcessor(kind, false);
            Connect(*processor, &in, &in, &out);
            SCOPED_TRACE(ClassOf(*processor) + ' ' + FormatOf(format).name);
            EXPECT_EQ(processor->Execute(), VFIL_SUCCESS);
            EXPECT_EQ(Difference(before, out), "");
        }
}

} // namespace

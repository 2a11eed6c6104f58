#include "support/framemodel.h"
#include "support/processors.h"
#include "support/shortmemory.h"

#include <gtest/gtest.h>

using namespace vfil::test;

namespace {

/// Runs with large allocations failing and checks that the run fails cleanly, and works again afterwards.
void CheckOutOfMemory(vfILImgProc& processor, GuardedImage& output)
{
    const Snapshot before(output);
    ASSERT_EQ(processor.Verify(), VFIL_SUCCESS);
    {
        const ShortMemory failing(4096);
        EXPECT_EQ(processor.Execute(), VFIL_FAILURE);
    }
    EXPECT_EQ(processor.GetLastError().GetErrorCode(), 0x10001U);
    EXPECT_EQ(Difference(before, output), "");
    EXPECT_EQ(processor.Execute(), VFIL_SUCCESS);
    EXPECT_NE(Difference(before, output), "");
}

// Shifted runs in place need a copy of the input.
TEST(Failure, ShortMemoryLeavesTheOutputAlone)
{
    std::mt19937 random(1);
    for (const vfILBbox2l& maskBox : {vfILBbox2l(0, 0, 99, 99), vfILBbox2l(0, 0, 60, 20)}) {
        GuardedImage image(PXFormat_RGBA32, 64, 32);
        GuardedImage other(PXFormat_RGBA32, 64, 32);
        image.Randomise(random);
        other.Randomise(random);
        vfILInvertImg invert;
        invert.SetInputImg(&image);
        invert.SetMask(maskBox, nullptr, PXImageChannel_MONO);
        ProbeDyadic intoA;
        intoA.SetInputImgA(&image);
        intoA.SetInputImgB(&other);
        intoA.SetDominantInput(&other);
        ProbeDyadic intoB;
        intoB.SetInputImgA(&other);
        intoB.SetInputImgB(&image);
        intoB.SetDominantInput(&image);
        intoB.SetMask(maskBox, nullptr, PXImageChannel_MONO);
        for (vfILImgProc* processor : std::initializer_list<vfILImgProc*>{&invert, &intoA, &intoB}) {
            processor->SetOutputImg(&image);
            processor->SetROI({0, 0, 62, 32});
            processor->SetOutputOffset({2, 0});
            CheckOutOfMemory(*processor, image);
        }
    }
}

// Nobody called Verify: a missing picture is noticed before anything is touched.
TEST(Failure, MissingPicturesAreNoticedWithoutVerify)
{
    std::mt19937 random(2);
    for (int missing = 0; missing < 8; ++missing)
        for (const bool withoutPixels : {false, true}) {
            GuardedImage a(PXFormat_RGBA32, 4, 4), b(PXFormat_RGBA32, 4, 4), out(PXFormat_RGBA32, 4, 4);
            GuardedImage empty(PXFormat_Mono8, 4, 4);
            empty.SetFormat(&PXFormat_RGBA32); // keeps its size and loses its pixels
            out.Randomise(random);
            const Snapshot before(out);
            const auto pick = [&](int bit, GuardedImage& image) {
                return missing & bit ? (withoutPixels ? &empty : nullptr) : &image;
            };
            vfILInvertImg invert;
            vfILCopyImg copy;
            for (vfILMonadicImgProc* p : std::initializer_list<vfILMonadicImgProc*>{&invert, &copy}) {
                p->SetInputImg(pick(1, a));
                p->SetOutputImg(pick(2, out));
            }
            vfILOverImage over;
            vfILCompositeImg mix;
            for (vfILDyadicImgProc* p : std::initializer_list<vfILDyadicImgProc*>{&over, &mix}) {
                p->SetInputImgA(pick(1, a));
                p->SetInputImgB(pick(4, b));
                p->SetOutputImg(pick(2, out));
                p->SetProcessingMode(0xF);
            }
            vfILImgProc* const processors[] = {&invert, &copy, &over, &mix};
            for (int kind = 0; kind < 4; ++kind) {
                if ((missing & (kind < 2 ? 3 : 7)) == 0) continue;
                processors[kind]->SetROI({0, 0, 4, 4});
                EXPECT_EQ(processors[kind]->Execute(), VFIL_FAILURE)
                    << "kind " << kind << " missing " << missing;
                EXPECT_EQ(Difference(before, out), "") << "kind " << kind << " missing " << missing;
            }
        }
}

// Nor did anybody ask whether the format suits, or set what the operator needs.
TEST(Failure, UnsuitableRunsLeaveTheOutputAlone)
{
    std::mt19937 random(3);
    for (const GUID& format :
         {PXFormat_Mono8, PXFormat_BGRA32, PXFormat_HLSA64, PXFormat_YCC422_601, PXFormat_RGBA32}) {
        GuardedImage in(format, 5, 4), out(format, 5, 4);
        in.Randomise(random);
        out.Randomise(random);
        const Snapshot before(out);
        vfILAtopImage atop;
        vfILOverImage over;
        vfILCompositeImg withoutMask;
        for (vfILDyadicPixelProc* p :
             std::initializer_list<vfILDyadicPixelProc*>{&atop, &over, &withoutMask}) {
            if (format == PXFormat_RGBA32 && p != &withoutMask) continue;
            p->SetInputImgA(&in);
            p->SetInputImgB(&in);
            p->SetOutputImg(&out);
            EXPECT_EQ(p->Execute(), VFIL_SUCCESS);
            EXPECT_EQ(Difference(before, out), "") << FormatOf(format).name;
        }
        ProbeMonadic probe;
        vfILGrayscaleImg grey;
        vfILInvertImg invert;
        for (vfILMonadicPixelProc* p : std::initializer_list<vfILMonadicPixelProc*>{&probe, &grey, &invert}) {
            if (format == PXFormat_RGBA32 || (format == PXFormat_Mono8 && p != &grey)) continue;
            p->SetInputImg(&in);
            p->SetOutputImg(&out);
            EXPECT_EQ(p->Execute(), VFIL_SUCCESS);
            EXPECT_EQ(Difference(before, out), "") << FormatOf(format).name;
        }
    }
}

} // namespace

#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

/// Allocations of so many bytes and more fail.
std::atomic<std::size_t> g_failFrom{SIZE_MAX};

void* AllocateOrNull(std::size_t bytes) noexcept
{
    return bytes >= g_failFrom ? nullptr : std::malloc(bytes ? bytes : 1);
}

} // namespace

// Every form that the library and its runtime use comes here, so that a sanitizer's own forms are not mixed in.
void* operator new(std::size_t bytes)
{
    if (void* memory = AllocateOrNull(bytes)) return memory;
    throw std::bad_alloc();
}

void* operator new[](std::size_t bytes)
{
    return operator new(bytes);
}

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept
{
    return AllocateOrNull(bytes);
}

void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept
{
    return AllocateOrNull(bytes);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept
{
    std::free(memory);
}

using namespace vfil::test;

namespace {

/// Runs with large allocations failing and checks that the run fails cleanly, and works again afterwards.
void CheckOutOfMemory(vfILImgProc& processor, GuardedImage& output)
{
    const Snapshot before(output);
    ASSERT_EQ(processor.Verify(), VFIL_SUCCESS);
    g_failFrom = 4096;
    const vfILStatus status = processor.Execute();
    g_failFrom = SIZE_MAX;
    EXPECT_EQ(status, VFIL_FAILURE);
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
            empty.SetFormat(PXFormat_RGBA32); // keeps its size and loses its pixels
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
                EXPECT_EQ(processors[kind]->Execute(), VFIL_FAILURE) << "kind " << kind << " missing " << missing;
                EXPECT_EQ(Difference(before, out), "") << "kind " << kind << " missing " << missing;
            }
        }
}

} // namespace

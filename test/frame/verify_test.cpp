#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

using namespace vfil::test;

namespace {

constexpr int kRed = PXImageChannel_RED;
constexpr int kGreen = PXImageChannel_GREEN;
constexpr int kAlpha = PXImageChannel_ALPHA;
constexpr int kMono = PXImageChannel_MONO;
constexpr int kOver = kFirstLayer;
constexpr int kAtop = kFirstLayer + static_cast<int>(Layer::Atop);
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Pictures to connect, and an operator that is connected well before a case spoils it.
struct Bench {
    GuardedImage a{PXFormat_RGBA32, 6, 4};
    GuardedImage b{PXFormat_RGBA32, 6, 4};
    GuardedImage out{PXFormat_RGBA32, 6, 4};
    GuardedImage small{PXFormat_RGBA32, 5, 4};
    GuardedImage low{PXFormat_RGBA32, 6, 3};
    GuardedImage wide{PXFormat_RGBA64, 6, 4};
    GuardedImage bgra{PXFormat_BGRA32, 6, 4};
    GuardedImage mono{PXFormat_Mono8, 6, 4};
    GuardedImage mono16{PXFormat_Mono16, 6, 4};
    GuardedImage ycc{PXFormat_YCC422_601, 6, 4};
    GuardedImage ycca{PXFormat_YCCA422_601, 6, 4};
    GuardedImage lowYcca{PXFormat_YCCA422_601, 6, 3};
    GuardedImage smallYcca{PXFormat_YCCA422_601, 5, 4};
    GuardedImage empty{PXFormat_RGBA32};
    std::unique_ptr<vfILImgProc> p;

    explicit Bench(int kind) : p(MakeProcessor(kind, true)) { Use(&a, &b, &out); }

    void Use(IPXImage* first, IPXImage* second, IPXImage* output) { Connect(*p, first, second, output); }
    /// One picture for all.
    void All(GuardedImage& image) { Use(&image, &image, &image); }
    void Colour(double r, double g, double bl, double al) { p->SetDefaultColor({r, g, bl, al}); }
    void Roi(long x, long y, long w, long h) { p->SetROI({x, y, w, h}); }
    void Target(long x, long y) { p->SetOutputOffset({x, y}); }
    void Mode(unsigned long mode) { p->SetProcessingMode(mode); }
    void MaskBox(long x, long y, long w, long h) { p->SetMask({x, y, w, h}, nullptr, PXImageChannel_MONO); }
    void Mask(GuardedImage& mask, int channel)
    {
        p->SetMask({0, 0, 6, 4}, &mask, static_cast<PXImageChannel>(channel));
    }
    void Shift(long x, long y) { dynamic_cast<vfILDyadicImgProc&>(*p).SetInputOffset({x, y}); }
    void Dominant(IPXImage* image) { dynamic_cast<vfILDyadicImgProc&>(*p).SetDominantInput(image); }
    vfILCompImg& Layered() { return dynamic_cast<vfILCompImg&>(*p); }
    vfILCompositeImg& Mix() { return dynamic_cast<vfILCompositeImg&>(*p); }
};

struct Case {
    int kind;
    unsigned long code; ///< 0 for success
    const char* name;
    std::function<void(Bench&)> spoil;
};

const Case kCases[] = {
    // The output's frame
    {kProbeMonadic, 0, "nothing spoilt", [](Bench&) {}},
    {kProbeMonadic, 0x10002, "no output", [](Bench& b) { b.Colour(2, 0, 0, 0), b.Use(&b.a, &b.b, nullptr); }},
    {kProbeMonadic, 0x10003, "output without pixels", [](Bench& b) { b.Use(&b.a, &b.b, &b.empty); }},
    {kProbeMonadic, 0x10004, "red above 1", [](Bench& b) { b.Colour(1.0001, 0, 0, 1); }},
    {kProbeMonadic, 0x10004, "green below 0", [](Bench& b) { b.Colour(0, -1e-9, 0, 1); }},
    {kProbeMonadic, 0x10004, "blue no number", [](Bench& b) { b.Colour(0, 0, kNaN, 0); }},
    {kProbeMonadic, 0x10004, "alpha above 1", [](Bench& b) { b.Colour(0, 1, 0, 2); }},
    {kProbeMonadic, 0x10005, "mask without pixels", [](Bench& b) { b.Mask(b.empty, kRed); }},
    {kProbeMonadic, 0x10006, "mask unlike its box", [](Bench& b) { b.Mask(b.small, kRed), b.Target(1, 0); }},
    {kProbeMonadic, 0x10006, "mask lower than its box", [](Bench& b) { b.Mask(b.low, kRed); }},
    {kProbeMonadic, 0x10007, "mask of another format", [](Bench& b) { b.Mask(b.bgra, kRed); }},
    {kProbeMonadic, 0x10008, "mono channel of four", [](Bench& b) { b.Mask(b.b, kMono); }},
    {kProbeMonadic, 0x10008, "two channels of four", [](Bench& b) { b.Mask(b.b, kRed + kGreen); }},
    {kProbeMonadic, 0x10008, "red channel of mono", [](Bench& b) { b.Mask(b.mono, kRed); }},
    {kProbeMonadic, 0x10009, "16-bit mask for 8 bits", [](Bench& b) { b.Mask(b.mono16, kMono); }},
    {kProbeMonadic, 0x10009, "8-bit mask for 16 bits",
     [](Bench& b) { b.All(b.wide), b.Mask(b.mono, kMono); }},
    {kProbeMonadic, 0, "alpha of four", [](Bench& b) { b.Mask(b.b, kAlpha); }},
    {kProbeMonadic, 0x1000A, "target over the right edge", [](Bench& b) { b.Target(1, 0); }},
    {kProbeMonadic, 0x1000A, "region taller than the output", [](Bench& b) { b.Roi(0, 0, 6, 5); }},
    {kProbeMonadic, 0x1000A, "target left of the output",
     [](Bench& b) { b.Roi(0, 0, 3, 3), b.Target(-1, 0); }},
    {kProbeMonadic, 0x1000A, "target below the output", [](Bench& b) { b.Roi(0, 0, 3, 3), b.Target(0, -1); }},
    {kProbeMonadic, 0x1000A, "region of no width", [](Bench& b) { b.Roi(0, 0, 0, 4); }},
    {kProbeMonadic, 0, "region outside the input", [](Bench& b) { b.Roi(90, -70, 6, 4); }},
    {kProbeMonadic, 0x10060, "top-down region moved", [](Bench& b) { b.All(b.ycc), b.Roi(1, 0, 6, 4); }},
    {kProbeMonadic, 0x10060, "top-down region raised", [](Bench& b) { b.All(b.ycc), b.Roi(0, 1, 6, 4); }},
    {kProbeMonadic, 0x10060, "top-down region cut", [](Bench& b) { b.All(b.ycc), b.Roi(0, 0, 6, 3); }},
    {kProbeMonadic, 0x20001, "mask on top-down", [](Bench& b) { b.All(b.ycc), b.Mask(b.mono, kMono); }},
    {kProbeMonadic, 0x20001, "box in top-down", [](Bench& b) { b.All(b.ycc), b.MaskBox(0, 0, 5, 4); }},
    {kProbeMonadic, 0x20001, "box beside top-down", [](Bench& b) { b.All(b.ycc), b.MaskBox(1, 0, 6, 4); }},
    {kProbeMonadic, 0x20001, "box over top-down", [](Bench& b) { b.All(b.ycc), b.MaskBox(0, 1, 6, 4); }},
    {kProbeMonadic, 0, "box around top-down", [](Bench& b) { b.All(b.ycc), b.MaskBox(-1, 0, 9, 4); }},
    {kProbeMonadic, 0x20002, "two channels of YCC", [](Bench& b) { b.All(b.ycc), b.Mode(3); }},
    // One input
    {kProbeMonadic, 0x1000B, "no input", [](Bench& b) { b.Use(nullptr, nullptr, &b.out); }},
    {kProbeMonadic, 0x1000C, "input without pixels", [](Bench& b) { b.Use(&b.empty, nullptr, &b.out); }},
    {kProbeMonadic, 0, "own alpha", [](Bench& b) { b.All(b.a), b.Mask(b.a, kAlpha); }},
    {kProbeMonadic, 0x1006C, "written", [](Bench& b) { b.All(b.a), b.Mask(b.a, kAlpha), b.Mode(0xF); }},
    {kProbeMonadic, 0x1006C, "moved", [](Bench& b) { b.All(b.a), b.Mask(b.a, kAlpha), b.Roi(1, 0, 6, 4); }},
    {kProbeMonadic, 0x1006C, "raised", [](Bench& b) { b.All(b.a), b.Mask(b.a, kAlpha), b.Roi(0, 1, 6, 4); }},
    {kProbeMonadic, 0x1006C, "own mono", [](Bench& b) { b.All(b.mono), b.Mask(b.mono, kMono), b.Mode(0); }},
    {kProbeMonadic, 0x10062, "top-down width", [](Bench& b) { b.Use(&b.smallYcca, &b.a, &b.ycca); }},
    {kProbeMonadic, 0x10062, "top-down height", [](Bench& b) { b.Use(&b.lowYcca, &b.a, &b.ycca); }},
    {kProbeMonadic, 0x1000E, "formats differ", [](Bench& b) { b.Use(&b.wide, &b.a, &b.out); }},
    {kInvert, 0x1000D, "YCC", [](Bench& b) { b.All(b.ycc); }},
    {kInvert, 0x1000E, "formats differ", [](Bench& b) { b.Use(&b.wide, &b.a, &b.bgra); }},
    {kGrayscale, 0, "all channels of 16 bits, odd rows", [](Bench& b) { b.All(b.wide), b.Mode(0x10F); }},
    {kGrayscale, 0x1000D, "mono, whatever the mode", [](Bench& b) { b.All(b.mono), b.Mode(3); }},
    {kGrayscale, 0x20002, "two channels", [](Bench& b) { b.Mode(3); }},
    // Two inputs
    {kProbeDyadic, 0, "nothing spoilt", [](Bench& b) { b.Shift(-9, 20), b.Dominant(&b.b); }},
    {kProbeDyadic, 0x10002, "no output, no input", [](Bench& b) { b.Use(nullptr, nullptr, nullptr); }},
    {kProbeDyadic, 0x10013, "no A", [](Bench& b) { b.Use(nullptr, &b.b, &b.out); }},
    {kProbeDyadic, 0x10014, "no B, A empty", [](Bench& b) { b.Use(&b.empty, nullptr, &b.out); }},
    {kProbeDyadic, 0x10015, "A without pixels", [](Bench& b) { b.Use(&b.empty, &b.empty, &b.out); }},
    {kProbeDyadic, 0x10016, "B without pixels", [](Bench& b) { b.Use(&b.a, &b.empty, &b.out); }},
    {kProbeDyadic, 0x10017, "no dominant input", [](Bench& b) { b.Dominant(nullptr); }},
    {kProbeDyadic, 0x10017, "dominant output", [](Bench& b) { b.Dominant(&b.out); }},
    {kProbeDyadic, 0x1006C, "output masks", [](Bench& b) { b.Mask(b.out, kAlpha); }},
    {kProbeDyadic, 0, "own alpha of A", [](Bench& b) { b.Use(&b.a, &b.b, &b.a), b.Mask(b.a, kAlpha); }},
    {kProbeDyadic, 0x1006C, "alpha of B", [](Bench& b) { b.Use(&b.a, &b.b, &b.b), b.Mask(b.b, kAlpha); }},
    {kProbeDyadic, 0x1006C, "written", [](Bench& b) { b.All(b.a), b.Mask(b.a, kAlpha), b.Mode(8); }},
    {kProbeDyadic, 0x1006C, "own mono", [](Bench& b) { b.All(b.mono), b.Mask(b.mono, kMono), b.Mode(0); }},
    {kProbeDyadic, 0, "own alpha of B, the region moved with it",
     [](Bench& b) {
         b.Use(&b.a, &b.b, &b.b), b.Dominant(&b.b), b.Mask(b.b, kAlpha);
         b.Shift(2, 1), b.Roi(2, 1, 6, 4);
     }},
    {kProbeDyadic, 0x1006C, "own alpha of B, the region not moved",
     [](Bench& b) {
         b.Use(&b.a, &b.b, &b.b), b.Dominant(&b.b), b.Mask(b.b, kAlpha);
         b.Shift(0, 1), b.Roi(0, 0, 6, 4);
     }},
    {kProbeDyadic, 0x1006C, "own alpha of A, the region moved with B",
     [](Bench& b) { b.Use(&b.a, &b.b, &b.a), b.Mask(b.a, kAlpha), b.Shift(1, 0), b.Roi(1, 0, 6, 4); }},
    {kProbeDyadic, 0x10062, "top-down A's width", [](Bench& b) { b.Use(&b.smallYcca, &b.ycca, &b.ycca); }},
    {kProbeDyadic, 0x10062, "top-down A's height", [](Bench& b) { b.Use(&b.lowYcca, &b.ycca, &b.ycca); }},
    {kProbeDyadic, 0x10062, "top-down B's width", [](Bench& b) { b.Use(&b.ycca, &b.smallYcca, &b.ycca); }},
    {kProbeDyadic, 0x10062, "top-down B's height", [](Bench& b) { b.Use(&b.ycca, &b.lowYcca, &b.ycca); }},
    {kProbeDyadic, 0x10061, "top-down with an offset", [](Bench& b) { b.All(b.ycca), b.Shift(0, 1); }},
    {kProbeDyadic, 0x1000E, "A of another format", [](Bench& b) { b.Use(&b.wide, &b.b, &b.out); }},
    {kProbeDyadic, 0x1000E, "B of another format", [](Bench& b) { b.Use(&b.a, &b.bgra, &b.out); }},
    // Layers
    {kAtop, 0, "16 bits", [](Bench& b) { b.All(b.wide), b.Layered().SetExtraTransparency(0.0); }},
    {kAtop, 0x1000D, "mono", [](Bench& b) { b.All(b.mono), b.Layered().SetExtraTransparency(2.0); }},
    {kAtop, 0x1000D, "4:2:2", [](Bench& b) { b.All(b.ycca); }},
    {kAtop, 0x10012, "strength above 1", [](Bench& b) { b.Layered().SetExtraTransparency(1.0001); }},
    {kAtop, 0x10012, "strength no number", [](Bench& b) { b.Layered().SetExtraTransparency(kNaN); }},
    {kAtop, 0x1005A, "alpha mode 4",
     [](Bench& b) { b.Layered().SetAlphaMode(static_cast<vfILAlphaMode>(4)); }},
    {kOver, 0, "4:2:2 with alpha", [](Bench& b) { b.All(b.ycca), b.Layered().SetExtraTransparency(7.0); }},
    {kOver, 0x10061, "4:2:2 with an offset", [](Bench& b) { b.All(b.ycca), b.Shift(1, 0); }},
    {kOver, 0x1000D, "4:2:2 without alpha", [](Bench& b) { b.All(b.ycc); }},
    {kMix, 0, "no dominant input, no channel",
     [](Bench& b) { b.Mask(b.mono, kMono), b.Dominant(nullptr), b.Mode(0); }},
    {kMix, 0x1000D, "mono before no mask", [](Bench& b) { b.All(b.mono); }},
    {kMix, 0x10059, "no mask", [](Bench& b) { b.Mix().SetAlpha(2.0); }},
    {kMix, 0x10012, "amount above 1", [](Bench& b) { b.Mask(b.mono, kMono), b.Mix().SetAlpha(1.0001); }},
    {kMix, 0x10012, "amount no number", [](Bench& b) { b.Mask(b.mono, kMono), b.Mix().SetAlpha(kNaN); }},
    {kMix, 0x1005A, "alpha mode",
     [](Bench& b) { b.Mask(b.mono, kMono), b.Mix().SetAlphaMode(static_cast<vfILAlphaMode>(4)); }},
    {kMix, 0x1006C, "own alpha", [](Bench& b) { b.All(b.a), b.Mask(b.a, kAlpha); }},
};

TEST(Verify, TellsTheFirstThingThatIsWrong)
{
    for (const Case& c : kCases) {
        Bench bench(c.kind);
        SCOPED_TRACE(ClassOf(*bench.p) + ": " + c.name);
        c.spoil(bench);
        const vfILStatus status = bench.p->Verify();
        EXPECT_EQ(status, c.code == 0 ? VFIL_SUCCESS : VFIL_FAILURE);
        const unsigned long code = bench.p->GetLastError().GetErrorCode();
        EXPECT_TRUE(status == VFIL_SUCCESS || code == c.code) << std::hex << code;
    }
}

// The pardon of a 4:2:2 format leaves the code of the check that it overrules.
TEST(Verify, NothingClearsTheLastError)
{
    Bench bench(kOver);
    bench.All(bench.ycca);
    EXPECT_EQ(bench.p->Verify(), VFIL_SUCCESS);
    EXPECT_EQ(bench.p->Execute(), VFIL_SUCCESS);
    EXPECT_EQ(bench.p->GetLastError().GetErrorCode(), 0x1000DU);
}

} // namespace

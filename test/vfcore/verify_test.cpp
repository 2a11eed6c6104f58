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
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/// Pictures to connect, and an operator that is connected well before a case spoils it.
template <class Processor>
struct Bench {
    GuardedImage a{PXFormat_RGBA32, 6, 4};
    GuardedImage b{PXFormat_RGBA32, 6, 4};
    GuardedImage out{PXFormat_RGBA32, 6, 4};
    GuardedImage small{PXFormat_RGBA32, 5, 4};
    GuardedImage wide{PXFormat_RGBA64, 6, 4};
    GuardedImage bgra{PXFormat_BGRA32, 6, 4};
    GuardedImage mono{PXFormat_Mono8, 6, 4};
    GuardedImage mono16{PXFormat_Mono16, 6, 4};
    GuardedImage ycc{PXFormat_YCC422_601, 6, 4};
    GuardedImage ycca{PXFormat_YCCA422_601, 6, 4};
    GuardedImage smallYcca{PXFormat_YCCA422_601, 6, 3};
    GuardedImage empty{PXFormat_RGBA32};
    Processor p;

    Bench() { Connect(a, b, out); }

    void Connect(GuardedImage& first, GuardedImage& second, GuardedImage& output)
    {
        if constexpr (std::is_base_of_v<vfILMonadicImgProc, Processor>) {
            p.SetInputImg(&first);
        } else {
            p.SetInputImgA(&first);
            p.SetInputImgB(&second);
            p.SetDominantInput(&first);
        }
        p.SetOutputImg(&output);
    }
    /// One picture for all.
    void All(GuardedImage& image) { Connect(image, image, image); }
    void Colour(double r, double g, double bl, double al) { p.SetDefaultColor({r, g, bl, al}); }
    void Roi(long x, long y, long w, long h) { p.SetROI({x, y, w, h}); }
    void Target(long x, long y) { p.SetOutputOffset({x, y}); }
    void Shift(long x, long y) { p.SetInputOffset({x, y}); }
    void Mode(unsigned long mode) { p.SetProcessingMode(mode); }
    void MaskBox(long x, long y, unsigned long w, unsigned long h)
    {
        p.SetMask(x, y, w, h, nullptr, PXImageChannel_MONO);
    }
    void Mask(GuardedImage& mask, int channel)
    {
        p.SetMask({0, 0, 6, 4}, &mask, static_cast<PXImageChannel>(channel));
    }
};

template <class Processor>
struct Case {
    unsigned long code; ///< 0 for success
    const char* name;
    std::function<void(Bench<Processor>&)> spoil;
};

template <class Processor>
void CheckAll(const std::vector<Case<Processor>>& cases)
{
    for (const Case<Processor>& c : cases) {
        SCOPED_TRACE(c.name);
        Bench<Processor> bench;
        c.spoil(bench);
        const vfILStatus status = bench.p.Verify();
        EXPECT_EQ(status, c.code == 0 ? VFIL_SUCCESS : VFIL_FAILURE);
        const unsigned long code = bench.p.GetLastError().GetErrorCode();
        EXPECT_TRUE(status == VFIL_SUCCESS || code == c.code) << std::hex << code;
    }
}

TEST(Verify, OutputFrame)
{
    using B = Bench<ProbeMonadic>;
    CheckAll<ProbeMonadic>({
        {0, "nothing spoilt", [](B&) {}},
        {0x10002, "no output", [](B& b) { b.p.SetOutputImg(nullptr); }},
        {0x10002, "no output comes before a bad colour",
         [](B& b) { b.Colour(2, 0, 0, 0), b.p.SetOutputImg(nullptr); }},
        {0x10003, "output without pixels", [](B& b) { b.p.SetOutputImg(&b.empty); }},
        {0x10004, "red above 1", [](B& b) { b.Colour(1.0001, 0, 0, 0); }},
        {0x10004, "alpha below 0", [](B& b) { b.Colour(0, 0, 0, -0.1); }},
        {0x10004, "blue no number", [](B& b) { b.Colour(0, 0, kNaN, 0); }},
        {0x10005, "mask without pixels", [](B& b) { b.Mask(b.empty, kRed); }},
        {0x10006, "mask of another size than its box", [](B& b) { b.Mask(b.small, kRed); }},
        {0x10006, "mask size comes before a bad target", [](B& b) { b.Mask(b.small, kRed), b.Target(1, 0); }},
        {0x10007, "mask of another format", [](B& b) { b.Mask(b.bgra, kRed); }},
        {0x10008, "mono channel of four", [](B& b) { b.Mask(b.b, kMono); }},
        {0x10008, "two channels of four", [](B& b) { b.Mask(b.b, kRed + kGreen); }},
        {0x10008, "red channel of mono", [](B& b) { b.Mask(b.mono, kRed); }},
        {0x10009, "16-bit mask for 8 bits", [](B& b) { b.Mask(b.mono16, kMono); }},
        {0, "mono mask", [](B& b) { b.Mask(b.mono, kMono); }},
        {0, "alpha of four", [](B& b) { b.Mask(b.b, kAlpha); }},
        {0x1000A, "target over the right edge", [](B& b) { b.Target(1, 0); }},
        {0x1000A, "target below the first row", [](B& b) { b.Target(0, -1); }},
        {0x1000A, "region taller than the output", [](B& b) { b.Roi(0, 0, 6, 5); }},
        {0, "region outside the input", [](B& b) { b.Roi(90, -70, 6, 4); }},
        {0x10060, "region of a top-down picture moved", [](B& b) { b.All(b.ycc), b.Roi(1, 0, 6, 4); }},
        {0x10060, "region of a top-down picture cut", [](B& b) { b.All(b.ycc), b.Roi(0, 0, 6, 3); }},
        {0x10060, "target of a top-down picture moved",
         [](B& b) { b.All(b.ycc), b.Roi(0, 0, 5, 4), b.Target(1, 0); }},
        {0x20001, "mask on a top-down picture", [](B& b) { b.All(b.ycc), b.Mask(b.mono, kMono); }},
        {0x20001, "mask box inside a top-down picture", [](B& b) { b.All(b.ycc), b.MaskBox(0, 0, 5, 4); }},
        {0, "mask box around a top-down picture", [](B& b) { b.All(b.ycc), b.MaskBox(-1, 0, 9, 4); }},
        {0x20002, "two channels of YCC", [](B& b) { b.All(b.ycc), b.Mode(3); }},
        {0, "even rows of YCC", [](B& b) { b.All(b.ycc), b.Mode(0x207); }},
    });
}

TEST(Verify, MonadicFrame)
{
    using B = Bench<ProbeMonadic>;
    CheckAll<ProbeMonadic>({
        {0x1000B, "no input", [](B& b) { b.p.SetInputImg(nullptr); }},
        {0x1000C, "input without pixels", [](B& b) { b.p.SetInputImg(&b.empty); }},
        {0x1006C, "output masks another input", [](B& b) { b.Mask(b.out, kAlpha); }},
        {0, "own alpha", [](B& b) { b.All(b.a), b.Mask(b.a, kAlpha); }},
        {0x1006C, "own alpha that is processed", [](B& b) { b.All(b.a), b.Mask(b.a, kAlpha), b.Mode(0xF); }},
        {0x1006C, "own alpha of a moved region",
         [](B& b) {
             b.All(b.a), b.Mask(b.a, kAlpha);
             b.Roi(0, 0, 5, 4), b.Target(1, 0);
         }},
        {0x1006C, "own mono", [](B& b) { b.All(b.mono), b.Mask(b.mono, kMono), b.Mode(0); }},
        {0x10062, "top-down of another size", [](B& b) { b.Connect(b.smallYcca, b.a, b.ycca); }},
        {0x1000E, "formats differ", [](B& b) { b.Connect(b.wide, b.a, b.out); }},
    });
}

TEST(Verify, PointOperators)
{
    using I = Bench<vfILInvertImg>;
    CheckAll<vfILInvertImg>({
        {0, "mono", [](I& b) { b.All(b.mono16); }},
        {0x1000D, "BGRA", [](I& b) { b.All(b.bgra); }},
        {0x1000D, "YCC", [](I& b) { b.All(b.ycc); }},
        {0x1000E, "formats differ", [](I& b) { b.Connect(b.wide, b.a, b.bgra); }},
    });
    using G = Bench<vfILGrayscaleImg>;
    CheckAll<vfILGrayscaleImg>({
        {0, "all channels of 16 bits", [](G& b) { b.All(b.wide), b.Mode(0xF); }},
        {0, "odd rows", [](G& b) { b.Mode(0x107); }},
        {0x1000D, "mono, whatever the mode", [](G& b) { b.All(b.mono), b.Mode(3); }},
        {0x20002, "two channels", [](G& b) { b.Mode(3); }},
    });
}

TEST(Verify, DyadicFrame)
{
    using B = Bench<ProbeDyadic>;
    CheckAll<ProbeDyadic>({
        {0, "nothing spoilt", [](B& b) { b.Shift(-9, 20), b.p.SetDominantInput(&b.b); }},
        {0x10002, "no output comes before no input",
         [](B& b) { b.p.SetInputImgA(nullptr), b.p.SetOutputImg(nullptr); }},
        {0x10013, "no A", [](B& b) { b.p.SetInputImgA(nullptr); }},
        {0x10014, "no B", [](B& b) { b.p.SetInputImgB(nullptr); }},
        {0x10014, "no B comes before A without pixels",
         [](B& b) { b.p.SetInputImgA(&b.empty), b.p.SetInputImgB(nullptr); }},
        {0x10015, "A without pixels", [](B& b) { b.p.SetInputImgA(&b.empty); }},
        {0x10016, "B without pixels", [](B& b) { b.p.SetInputImgB(&b.empty); }},
        {0x10017, "no dominant input", [](B& b) { b.p.SetDominantInput(nullptr); }},
        {0x10017, "dominant output", [](B& b) { b.p.SetDominantInput(&b.out); }},
        {0x1006C, "output masks", [](B& b) { b.Mask(b.out, kAlpha); }},
        {0, "own alpha of A", [](B& b) { b.p.SetOutputImg(&b.a), b.Mask(b.a, kAlpha); }},
        {0x1006C, "alpha of B under a dominant A", [](B& b) { b.p.SetOutputImg(&b.b), b.Mask(b.b, kAlpha); }},
        {0x1006C, "own alpha that is processed", [](B& b) { b.All(b.a), b.Mask(b.a, kAlpha), b.Mode(8); }},
        {0x1006C, "own mono", [](B& b) { b.All(b.mono), b.Mask(b.mono, kMono); }},
        {0, "own alpha of B, the region moved with it",
         [](B& b) {
             b.p.SetOutputImg(&b.b), b.p.SetDominantInput(&b.b), b.Mask(b.b, kAlpha);
             b.Shift(2, 1), b.Roi(2, 1, 6, 4);
         }},
        {0x1006C, "own alpha of B, the region not moved",
         [](B& b) {
             b.p.SetOutputImg(&b.b), b.p.SetDominantInput(&b.b), b.Mask(b.b, kAlpha);
             b.Shift(2, 1), b.Roi(0, 0, 6, 4);
         }},
        {0x10062, "top-down A of another size", [](B& b) { b.Connect(b.smallYcca, b.ycca, b.ycca); }},
        {0x10062, "top-down B of another size, and an offset",
         [](B& b) { b.Connect(b.ycca, b.smallYcca, b.ycca), b.Shift(1, 0); }},
        {0x10061, "top-down with an offset", [](B& b) { b.All(b.ycca), b.Shift(0, 1); }},
        {0x1000E, "A of another format", [](B& b) { b.Connect(b.wide, b.b, b.out); }},
        {0x1000E, "B of another format", [](B& b) { b.Connect(b.a, b.bgra, b.out); }},
    });
}

TEST(Verify, LayerOperators)
{
    using B = Bench<vfILAtopImage>;
    CheckAll<vfILAtopImage>({
        {0, "16 bits", [](B& b) { b.All(b.wide), b.p.SetExtraTransparency(0.0); }},
        {0x1000D, "mono", [](B& b) { b.All(b.mono), b.p.SetExtraTransparency(2.0); }},
        {0x1000D, "BGRA", [](B& b) { b.All(b.bgra); }},
        {0x1000D, "4:2:2", [](B& b) { b.All(b.ycca); }},
        {0x10012, "strength above 1", [](B& b) { b.p.SetExtraTransparency(1.0001); }},
        {0x10012, "strength below 0", [](B& b) { b.p.SetExtraTransparency(-0.0001); }},
        {0x10012, "strength no number", [](B& b) { b.p.SetExtraTransparency(kNaN); }},
        {0x1005A, "alpha mode 0", [](B& b) { b.p.SetAlphaMode(static_cast<vfILAlphaMode>(0)); }},
        {0x1005A, "alpha mode 4", [](B& b) { b.p.SetAlphaMode(static_cast<vfILAlphaMode>(4)); }},
    });
    using O = Bench<vfILOverImage>;
    CheckAll<vfILOverImage>({
        {0, "4:2:2 with an alpha plane, whatever the strength",
         [](O& b) { b.All(b.ycca), b.p.SetExtraTransparency(7.0); }},
        {0x10061, "4:2:2 with an offset", [](O& b) { b.All(b.ycca), b.Shift(1, 0); }},
        {0x1000D, "4:2:2 without an alpha plane", [](O& b) { b.All(b.ycc); }},
        {0x10012, "strength above 1", [](O& b) { b.p.SetExtraTransparency(1.5); }},
    });
}

// The pardon of a 4:2:2 format leaves the code of the check that it overrules.
TEST(Verify, NothingClearsTheLastError)
{
    Bench<vfILOverImage> bench;
    bench.All(bench.ycca);
    EXPECT_EQ(bench.p.Verify(), VFIL_SUCCESS);
    EXPECT_EQ(bench.p.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(bench.p.GetLastError().GetErrorCode(), 0x1000DU);
}

TEST(Verify, MaskedMix)
{
    using B = Bench<vfILCompositeImg>;
    CheckAll<vfILCompositeImg>({
        {0, "mono mask, no dominant input, no channel",
         [](B& b) { b.Mask(b.mono, kMono), b.p.SetDominantInput(nullptr), b.Mode(0); }},
        {0x1000D, "mono before no mask", [](B& b) { b.All(b.mono); }},
        {0x10059, "no mask", [](B& b) { b.p.SetAlpha(2.0); }},
        {0x10012, "amount above 1", [](B& b) { b.Mask(b.mono, kMono), b.p.SetAlpha(1.0001); }},
        {0x10012, "amount no number", [](B& b) { b.Mask(b.mono, kMono), b.p.SetAlpha(kNaN); }},
        {0x1005A, "alpha mode 4",
         [](B& b) { b.Mask(b.mono, kMono), b.p.SetAlphaMode(static_cast<vfILAlphaMode>(4)); }},
        {0x1006C, "own alpha", [](B& b) { b.All(b.a), b.Mask(b.a, kAlpha); }},
    });
}

} // namespace

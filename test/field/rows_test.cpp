#include "support/allocations.h"
#include "support/framemodel.h"
#include "support/processors.h"

#include <vfil/fields.h>

#include <gtest/gtest.h>

using namespace vfil::test;

namespace {

enum Op { kWeave, kTrade, kMove, kMerge, kOps };

bool IsTaken(const FormatCase& format)
{
    const std::string name = format.name;
    return name.starts_with("YCC422") || name.starts_with("YUV422") || name.starts_with("RGBA") ||
           name.starts_with("Mono");
}

std::unique_ptr<vfILImgProc> MakeOp(int op, bool simd, IPXImage* a, IPXImage* b)
{
    if (op == kWeave) {
        auto p = std::make_unique<Switched<vfILInterlace>>(simd);
        p->SetInputImgA(a);
        p->SetInputImgB(b);
        return p;
    }
    if (op == kMerge) {
        auto p = std::make_unique<Switched<vfILFieldMerge>>(simd);
        p->SetInputImg(a);
        return p;
    }
    auto p = std::make_unique<Switched<vfILFieldSwap>>(simd);
    p->SetInputImg(a);
    if (op == kTrade) p->SetSwapLines(-7);
    return p;
}

/// Row i of n rows that go on as in mirrors.
long Mirrored(long i, long n)
{
    if (n == 1) return 0;
    return i < 0 ? -i : i >= n ? 2 * (n - 1) - i : i;
}

/// What an operator makes of a pixel of the rows bottom .. bottom + height - 1.
Pixel Made(int op, const GuardedImage& a, const GuardedImage& b, long x, long y, long bottom, long height)
{
    const auto at = [&](long row) { return a.Get(x, bottom + Mirrored(row, height)); };
    const long row = y - bottom;
    if (op == kWeave) return y % 2 == 0 ? a.Get(x, y) : b.Get(x, y);
    if (op == kTrade) return at(row % 2 == 0 ? row + 1 : row - 1);
    if (op == kMove) return at(row - 1);
    Pixel made{};
    for (std::size_t c = 0; c < 4; ++c)
        made[c] = (at(row)[c] + (at(row - 1)[c] + at(row + 1)[c] + 1) / 2 + 1) / 2;
    return made;
}

struct Scene {
    GuardedImage a, b, apart, made;
    FrameCase regions;

    Scene(std::mt19937& random, const GUID& format, long width, long height)
        : a(format, width, height), b(format, width, height), apart(format, width, height),
          made(format, width, height)
    {
        a.Randomise(random);
        b.Randomise(random);
        apart.Randomise(random);
        regions.roi = {0, 0, width, height};
        regions.mode = VFIL_MODE_RGBA | RandomFieldBits(random);
        regions.defaultPixel = a.Format().Is('C')   ? Pixel{128, 16}
                               : a.Format().Is('Y') ? Pixel{16, 128}
                                                    : Pixel{};
    }
    void PlaceRegions(std::mt19937& random)
    {
        const long width = RandomIn(random, 1, a.Width()), height = RandomIn(random, 1, a.Height());
        regions.roi = {RandomIn(random, -1, 2), RandomIn(random, -2, 3), width, height};
        regions.outputOffset =
            vfILVector2l{RandomIn(random, 0, a.Width() - width), RandomIn(random, 0, a.Height() - height)};
    }
    Snapshot Expected(int op, const GuardedImage& out)
    {
        const vfILBbox2l valid = regions.roi & vfILBbox2l(0, 0, a.Width(), a.Height());
        for (long y = 0; y < valid.GetSizeY(); ++y)
            for (long x = 0; x < valid.GetSizeX(); ++x) {
                const long px = x + valid.GetOffsetX(), py = y + valid.GetOffsetY();
                made.Set(px, py, Made(op, a, b, px, py, valid.GetOffsetY(), valid.GetSizeY()));
            }
        return ModelRun(regions, made, made, out,
                        [](const Pixel& pixel, const Pixel&, int) { return pixel; });
    }
    void Arrange(vfILImgProc& p, IPXImage& out) const
    {
        p.SetOutputImg(&out);
        p.SetROI(regions.roi);
        p.SetOutputOffset(regions.outputOffset);
        p.SetProcessingMode(regions.mode);
    }
};

// All formats and row orders, whole and in parts, apart and in place.
TEST(FieldRows, AreThoseOfTheModel)
{
    std::mt19937 random(12);
    for (const FormatCase& format : kFormats)
        for (int round = 0; round < (IsTaken(format) ? 240 : 0); ++round) {
            const int op = round % kOps;
            const long width = round % 9 == 0 ? 300 : RandomIn(random, 1, 5);
            Scene scene(random, format.id, width, RandomIn(random, 1, 7));
            if (round % 3 != 0 && !(op == kWeave && format.Is('T'))) scene.PlaceRegions(random);
            GuardedImage* const outputs[] = {&scene.apart, &scene.a, op == kWeave ? &scene.b : &scene.a};
            GuardedImage& out = *outputs[random() % 3];
            const auto p = MakeOp(op, random() % 2, &scene.a, &scene.b);
            scene.Arrange(*p, out);
            const Snapshot expected = scene.Expected(op, out);
            ASSERT_EQ(p->Execute(), VFIL_SUCCESS) << std::hex << p->GetLastError().GetErrorCode();
            ASSERT_EQ(Difference(expected, out), "")
                << format.name << " operator " << op << ", " << width << " x " << scene.a.Height()
                << ", mode " << std::hex << scene.regions.mode << ", in place " << (&out != &scene.apart);
        }
}

TEST(FieldRows, FreeFunctionAndCopies)
{
    std::mt19937 random(13);
    Scene scene(random, PXFormat_YUV422_601_SplitOdd, 4, 5);
    scene.regions.mode = VFIL_MODE_RGBA;
    const Snapshot expected = scene.Expected(kWeave, scene.apart);
    EXPECT_EQ(vfILInterlaceFields(&scene.a, &scene.b, &scene.apart), 0);
    EXPECT_EQ(Difference(expected, scene.apart), "");
    EXPECT_EQ(vfILInterlaceFields(&scene.a, nullptr, &scene.apart), -0x7FFFBFFB);

    vfILFieldSwap swap;
    swap.SetInputImg(&scene.a);
    swap.SetOutputImg(&scene.b);
    swap.SetSwapLines(1);
    swap.SetProcessingMode(VFIL_MODE_RGBA | VFIL_MODE_ODD_ROWS);
    vfILFieldSwap copy(swap), assigned;
    assigned = swap;
    for (vfILFieldSwap* p : {&copy, &assigned}) {
        scene.b.Randomise(random);
        const Snapshot traded = scene.Expected(kTrade, scene.b);
        EXPECT_EQ(p->Execute(), VFIL_SUCCESS);
        EXPECT_EQ(Difference(traded, scene.b), "") << "a copy has the default mode";
    }
}

TEST(FieldRows, StopAfterARowAndRefuseWithoutMemory)
{
    std::mt19937 random(14);
    for (int op = 0; op < kOps; ++op) {
        Scene scene(random, PXFormat_RGBA64, 3, 6);
        scene.regions.mode = VFIL_MODE_RGBA;
        const auto p = MakeOp(op, true, &scene.a, &scene.b);
        scene.Arrange(*p, scene.apart);
        const Snapshot before(scene.apart);
        Snapshot expected = scene.Expected(op, scene.apart);
        for (long i = 0; i < 9; ++i)
            expected.At(i % 3, 3 + i / 3) = before.At(i % 3, 3 + i / 3);
        g_pollsLeft = 2;
        p->SetInterruptFct(StopAfterPolls, nullptr);
        EXPECT_EQ(p->Execute(), VFIL_SUCCESS);
        EXPECT_EQ(Difference(expected, scene.apart), "") << "three rows of six";

        p->SetInterruptFct(nullptr, nullptr);
        p->SetOutputImg(&scene.a);
        EXPECT_EQ(CountRefusedRuns(*p, scene.a), 1);
        p->SetROI({0, 0, 3, 5});
        p->SetOutputOffset({0, 1});
        EXPECT_EQ(CountRefusedRuns(*p, scene.a), 1);
    }
}

struct Pictures {
    GuardedImage a{PXFormat_RGBA32, 4, 4}, out{PXFormat_RGBA32, 4, 4}, wide{PXFormat_RGBA64, 4, 4};
    GuardedImage low{PXFormat_RGBA32, 4, 3}, video{PXFormat_YCC422_601, 4, 4}, empty{PXFormat_RGBA32};
    GuardedImage other{PXFormat_YCCA422_601, 4, 4};
};

// Each case has all the faults that are looked for later, too.
TEST(FieldRows, RefuseInOrder)
{
    Pictures s;
    const vfILColor bad(0, 0, 0, 1.5), good(0, 0, 0, 0);
    const vfILBbox2l over(0, 0, 5, 4), whole(0, 0, 4, 4), part(0, 0, 4, 3);
    const struct {
        unsigned long one, two; ///< what an operator of one input says, and one of two; 0 for success
        IPXImage *a, *b, *out;
        vfILBbox2l roi;
        vfILColor color;
        unsigned long mode = VFIL_MODE_RGBA;
    } cases[] = {
        {0x20002, 0x20002, nullptr, nullptr, nullptr, over, bad, VFIL_MODE_RGB},
        {0x1000B, 0x1000B, nullptr, nullptr, nullptr, over, bad},
        {0x1000C, 0x1000C, &s.empty, nullptr, nullptr, over, bad},
        {0x10034, 0x1000B, &s.other, nullptr, nullptr, over, bad},
        {0x10034, 0x1000C, &s.other, &s.empty, nullptr, over, bad},
        {0x10034, 0x1000D, &s.other, &s.a, nullptr, over, bad},
        {0x10002, 0x10002, &s.a, &s.wide, nullptr, over, bad},
        {0x10003, 0x10003, &s.a, &s.wide, &s.empty, over, bad},
        {0x1000E, 0x1000E, &s.wide, &s.wide, &s.out, over, bad},
        {0x1000A, 0x1000E, &s.a, &s.wide, &s.out, over, bad},
        {0x1000A, 0x1003D, &s.a, &s.low, &s.out, over, bad},
        {0x1000A, 0x10060, &s.video, &s.video, &s.video, over, bad},
        {0x10004, 0x10060, &s.video, &s.video, &s.video, part, bad},
        {0, 0x10060, &s.video, &s.video, &s.video, part, good},
        {0x1000A, 0x10004, &s.a, &s.a, &s.out, over, bad},
        {0x1000A, 0x1000A, &s.a, &s.a, &s.out, over, good},
        {0, 0, &s.a, &s.a, &s.out, whole, good, VFIL_MODE_RGBA | VFIL_MODE_ODD_ROWS},
        {0, 0, &s.low, &s.low, &s.out, whole, good},
        {0, 0, &s.video, &s.video, &s.video, whole, good},
    };
    for (const auto& c : cases)
        for (int op = 0; op < kOps; ++op) {
            const auto p = MakeOp(op, true, c.a, c.b);
            p->SetOutputImg(c.out);
            p->SetROI(c.roi);
            p->SetDefaultColor(c.color);
            p->SetProcessingMode(c.mode);
            const unsigned long code = op == kWeave ? c.two : c.one;
            EXPECT_EQ(p->Verify(), code == 0 ? VFIL_SUCCESS : VFIL_FAILURE);
            EXPECT_EQ(p->Execute(), code == 0 ? VFIL_SUCCESS : VFIL_FAILURE) << "Execute verifies";
            EXPECT_EQ(p->GetLastError().GetErrorCode(), code) << "case " << &c - cases << ", operator " << op;
        }
}

} // namespace

#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

#include <functional>

using namespace vfil::test;

namespace {

/// The fills that operators use, laid open.
class Filler : public vfILCopyImg {
public:
    using vfILImgProc::FillOutput;
    using vfILProcessor::FillRegion;
    using vfILProcessor::FillRegionWithImage;
};

/// Makes the pixel that belongs at a place of the output.
using PlaceRule = std::function<Pixel(long x, long y)>;

bool Covers(const vfILBbox2l& box, long x, long y)
{
    return !(box & vfILBbox2l(x, y, 1, 1)).IsNull();
}

Snapshot Filled(const GuardedImage& image, const vfILBbox2l& whole, const vfILBbox2l& excluded,
                unsigned long mode, const PlaceRule& rule)
{
    Snapshot after(image);
    for (long y = 0; y < after.height; ++y)
        for (long x = 0; x < after.width; ++x)
            if (Covers(whole, x, y) && !Covers(excluded, x, y) && IsRowTreated(mode, y))
                after.At(x, y) = rule(x, y);
    return after;
}

vfILBbox2l RandomBoxIn(std::mt19937& random, const vfILBbox2l& box)
{
    const long width = RandomIn(random, 1, box.GetSizeX());
    const long height = RandomIn(random, 1, box.GetSizeY());
    return {box.GetOffsetX() + RandomIn(random, 0, box.GetSizeX() - width),
            box.GetOffsetY() + RandomIn(random, 0, box.GetSizeY() - height), width, height};
}

TEST(Fills, OutputIsFilledAroundTheExcludedBox)
{
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        GuardedImage out(PXFormat_RGBA32, RandomIn(random, 1, 9), RandomIn(random, 1, 9));
        GuardedImage source(PXFormat_RGBA32, RandomIn(random, 9, 90), RandomIn(random, 9, 12));
        out.Randomise(random);
        source.Randomise(random);
        const vfILBbox2l whole = RandomBoxIn(random, {0, 0, out.Width(), out.Height()});
        const vfILBbox2l excluded = random() % 4 ? RandomBoxIn(random, whole) : vfILBbox2l();
        const vfILVector2l origin(whole.GetOffsetX() - RandomIn(random, 0, 9 - whole.GetSizeX()),
                                  whole.GetOffsetY() - RandomIn(random, 0, 9 - whole.GetSizeY()));
        Filler filler;
        filler.SetOutputImg(&out);
        filler.SetProcessingMode(VFIL_MODE_RGB | RandomFieldBits(random));
        void* pixels = nullptr;
        source.GetPixelArray(&pixels);
        const auto check = [&](const PlaceRule& rule, const auto& fill) {
            const Snapshot expected = Filled(out, whole, excluded, filler.GetProcessingMode(), rule);
            fill();
            ASSERT_EQ(Difference(expected, out), "");
        };
        unsigned char one[4] = {1, 2, 3, 4};
        check(
            [](long, long) {
                return Pixel{1, 2, 3, 4};
            },
            [&] { filler.FillOutput(excluded, whole, static_cast<void*>(one)); });
        check([&](long x, long y) { return source.Get(x - whole.GetOffsetX(), y - whole.GetOffsetY()); },
              [&] {
                  filler.FillOutput(excluded, whole, pixels, static_cast<unsigned long>(source.Width()) * 4);
              });
        const bool premultiply = random() % 2;
        const auto fromImage = [&](long x, long y) {
            Pixel pixel = source.Get(x - origin[0], y - origin[1]);
            for (std::size_t c = 0; premultiply && c < 3; ++c)
                pixel[c] = Arithmetic{255}.Product(pixel[c], pixel[3]);
            return pixel;
        };
        check(fromImage, [&] { filler.FillOutput(excluded, whole, &source, pixels, premultiply, origin); });
        if (HasFatalFailure()) FAIL() << "round " << round;
    }
}

TEST(Fills, RefusedBoxesLeaveThePictureAlone)
{
    GuardedImage out(PXFormat_Mono8, 5, 4);
    GuardedImage source(PXFormat_Mono8, 5, 4);
    source.Set(0, 0, {9, 0, 0, 0});
    void* pixels = nullptr;
    source.GetPixelArray(&pixels);
    unsigned char one = 7;
    Filler filler;
    const Snapshot before(out);
    for (const vfILBbox2l& box :
         {vfILBbox2l(-1, 0, 2, 2), vfILBbox2l(0, -1, 2, 2), vfILBbox2l(4, 0, 2, 2), vfILBbox2l(0, 3, 2, 2),
          vfILBbox2l(1, 1, 0, 3), vfILBbox2l(1, 1, 2, -1), vfILBbox2l(1, 0, 0x7FFFFFFF, 1)}) {
        filler.FillRegion(&out, box, &one);
        filler.FillRegionWithImage(&out, box, &source, pixels, 0, {-1, -1});
    }
    const vfILBbox2l inside(1, 1, 2, 2);
    filler.FillRegion(nullptr, inside, &one);
    filler.FillRegion(&out, inside, nullptr);
    for (const vfILVector2l& origin :
         {vfILVector2l(2, 0), vfILVector2l(0, 2), vfILVector2l(-3, 0), vfILVector2l(0, -2)})
        filler.FillRegionWithImage(&out, inside, &source, pixels, 0, origin);
    filler.SetProcessingMode(0x307);
    filler.FillRegion(&out, inside, &one);
    filler.FillRegionWithImage(&out, inside, &source, pixels, 0, {0, 0});
    filler.SetProcessingMode(0x107);
    filler.FillRegion(&out, {0, 2, 5, 1}, &one);
    EXPECT_EQ(Difference(before, out), "");
    filler.FillRegion(&out, inside, &one);
    EXPECT_EQ(out.Get(2, 1)[0], 7);
    EXPECT_EQ(out.Get(2, 2)[0], 0);
}

} // namespace

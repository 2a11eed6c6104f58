#include "support/framemodel.h"
#include "support/processors.h"

#include <gtest/gtest.h>

using namespace vfil::test;

namespace {

/// The fills that operators use, laid open.
class Filler : public vfILCopyImg {
public:
    using vfILImgProc::FillOutput;
    using vfILProcessor::FillRegion;
    using vfILProcessor::FillRegionWithImage;
};

vfILBbox2l RandomBoxIn(std::mt19937& random, const vfILBbox2l& box)
{
    const long width = RandomIn(random, 1, box.GetSizeX());
    const long height = RandomIn(random, 1, box.GetSizeY());
    return {box.GetOffsetX() + RandomIn(random, 0, box.GetSizeX() - width),
            box.GetOffsetY() + RandomIn(random, 0, box.GetSizeY() - height), width, height};
}

// From a picture whose first pixel belongs at an origin, or from a block of its rows.
TEST(Fills, OutputIsFilledAroundTheExcludedBox)
{
    std::mt19937 random(1);
    for (int round = 0; round < 2000; ++round) {
        const FormatCase& format = kFormats[random() % kFormats.size()];
        GuardedImage out(format.id, RandomIn(random, 1, 9), RandomIn(random, 1, 9));
        GuardedImage source(format.id, RandomIn(random, 9, 90), RandomIn(random, 9, 12));
        out.Randomise(random);
        source.Randomise(random);
        const vfILBbox2l whole = RandomBoxIn(random, {0, 0, out.Width(), out.Height()});
        const vfILBbox2l excluded = random() % 4 ? RandomBoxIn(random, whole) : vfILBbox2l();
        const vfILVector2l origin(whole.GetOffsetX() - RandomIn(random, 0, 9 - whole.GetSizeX()),
                                  whole.GetOffsetY() - RandomIn(random, 0, 9 - whole.GetSizeY()));
        const bool premultiply = random() % 2;
        const bool multiplies = premultiply && format.channels == 4 && format.pixelBytes == 4;
        Filler filler;
        filler.SetOutputImg(&out);
        filler.SetProcessingMode(VFIL_MODE_RGB | RandomFieldBits(random));
        Snapshot expected(out);
        for (long y = 0; y < out.Height(); ++y)
            for (long x = 0; x < out.Width(); ++x) {
                const vfILBbox2l place(x, y, 1, 1);
                const bool inBand = !(whole & place).IsNull() && (excluded & place).IsNull();
                if (!inBand || !IsRowTreated(filler.GetProcessingMode(), y)) continue;
                Pixel pixel = source.Get(x - origin[0], y - origin[1]);
                for (std::size_t c = 0; multiplies && c < 3; ++c)
                    pixel[c] = Arithmetic{255}.Product(pixel[c], pixel[3]);
                expected.At(x, y) = pixel;
            }
        void* pixels = nullptr;
        source.GetPixelArray(&pixels);
        if (premultiply || format.Is('P') || random() % 2) {
            filler.FillOutput(excluded, whole, &source, pixels, premultiply, origin);
        } else {
            const long width = whole.GetSizeX(), height = whole.GetSizeY();
            std::vector<std::uint8_t> block(static_cast<std::size_t>(width * height * format.pixelBytes));
            const vfILVector2l place = whole.GetOffset() - origin;
            ASSERT_EQ(source.ReadRegion(block.data(), place[0], place[1], width, height), S_OK);
            filler.FillOutput(excluded, whole, static_cast<void*>(block.data()), width * format.pixelBytes);
        }
        ASSERT_EQ(Difference(expected, out), "") << "round " << round << ' ' << format.name;
    }
}

TEST(Fills, RefusedBoxesLeaveThePictureAlone)
{
    GuardedImage out(PXFormat_Mono8, 5, 4), source(PXFormat_Mono8, 5, 4), empty(PXFormat_RGBA32, 5, 4);
    empty.SetFormat(&PXFormat_Mono8);
    source.Set(0, 0, {9, 0, 0, 0});
    void* pixels = nullptr;
    source.GetPixelArray(&pixels);
    unsigned char one = 7;
    Filler filler;
    filler.SetOutputImg(&out);
    const Snapshot before(out);
    for (const vfILBbox2l& box :
         {vfILBbox2l(-1, 0, 2, 2), vfILBbox2l(0, -1, 2, 2), vfILBbox2l(4, 0, 2, 2), vfILBbox2l(0, 3, 2, 2),
          vfILBbox2l(1, 1, 0, 3), vfILBbox2l(1, 1, 2, -1), vfILBbox2l(1, 0, 0x7FFFFFFF, 1)}) {
        filler.FillRegion(&out, box, &one);
        filler.FillRegionWithImage(&out, box, &source, pixels, 0, {-1, -1});
        filler.FillOutput({}, box, pixels, 5);
        filler.SetROI(box);
        filler.SetOutputOffset(box.GetOffset());
        EXPECT_EQ(filler.FillOutputImage({1, 1, 1, 1}), VFIL_FAILURE);
    }
    EXPECT_EQ(filler.GetLastError().GetErrorCode(), 0x1000AU);
    const vfILBbox2l inside(1, 1, 2, 2);
    filler.FillRegion(nullptr, inside, &one);
    filler.FillRegion(&out, inside, nullptr);
    filler.FillOutput({}, inside, static_cast<void*>(nullptr), 5);
    for (const vfILVector2l& origin :
         {vfILVector2l(2, 0), vfILVector2l(0, 2), vfILVector2l(-3, 0), vfILVector2l(0, -2)})
        filler.FillRegionWithImage(&out, inside, &source, pixels, 0, origin);
    EXPECT_EQ(Difference(before, out), "");
    filler.SetOutputImg(&empty);
    filler.FillOutput({}, inside, pixels, 5);
    filler.FillRegion(&empty, inside, &one);
}

} // namespace

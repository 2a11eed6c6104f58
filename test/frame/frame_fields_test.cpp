#include "support/framemodel.h"
#include "support/processors.h"

#include <vfil/color.h>

#include <gtest/gtest.h>

using namespace vfil::test;

namespace {

constexpr std::array<unsigned long, 4> kFieldModes{VFIL_MODE_RGB, VFIL_MODE_RGB | VFIL_MODE_ODD_ROWS,
                                                   VFIL_MODE_RGB | VFIL_MODE_EVEN_ROWS,
                                                   VFIL_MODE_RGB | VFIL_MODE_ODD_ROWS | VFIL_MODE_EVEN_ROWS};

// Whole pictures of every row order, split fields and alpha planes included, in sizes of either parity.
TEST(Fields, CopyTakesTheRowsOfTheField)
{
    std::mt19937 random(1);
    for (const FormatCase& format : kFormats)
        for (const unsigned long mode : kFieldModes)
            for (long width = 1; width <= 4; ++width)
                for (long height = 1; height <= 7; ++height) {
                    GuardedImage in(format.id, width, height);
                    GuardedImage out(format.id, width, height);
                    in.Randomise(random);
                    out.Randomise(random);
                    vfILCopyImg copy;
                    copy.SetInputImg(&in);
                    copy.SetOutputImg(&out);
                    copy.SetProcessingMode(mode);
                    Snapshot expected(out);
                    for (long y = 0; y < height; ++y)
                        for (long x = 0; x < width && IsRowTreated(mode, y); ++x)
                            expected.At(x, y) = in.Get(x, y);
                    ASSERT_EQ(copy.Verify(), VFIL_SUCCESS) << format.name;
                    ASSERT_EQ(copy.Execute(), VFIL_SUCCESS);
                    ASSERT_EQ(Difference(expected, out), "")
                        << format.name << ' ' << width << 'x' << height << " mode " << std::hex << mode;
                }
}

/// The pixel of column \p x that a colour fills a picture with.
Pixel FillPixel(const FormatCase& format, const vfILColor& color, long x)
{
    unsigned char b[4] = {};
    unsigned short w[4] = {};
    const auto model = static_cast<PXColorModel>(format.model == 0 ? 1 : format.model);
    if (format.channels == 1) {
        color.GetColorAs8(b, model);
        color.GetColorAs16(w, model);
    } else {
        color.GetColorAs32(b, model);
        color.GetColorAs64(w, model);
    }
    if (format.sampleBytes == 2) return {w[0], w[1], w[2], w[3]};
    if (format.IsSubsampled()) {
        const int chroma = x % 2 ? b[2] : b[1];
        const int alpha = format.Is('P') ? b[3] : 0;
        return format.Is('C') ? Pixel{chroma, b[0], alpha, 0} : Pixel{b[0], chroma, alpha, 0};
    }
    const std::string name = format.name;
    const int last = format.channels == 4 ? b[3] : 0;
    if (name.starts_with("BGR") || name.starts_with("Dib")) return {b[2], b[1], b[0], last};
    return {b[0], b[1], b[2], last};
}

TEST(Fields, FillOutputImageFillsTheTargetOfEveryFormat)
{
    std::mt19937 random(2);
    const vfILColor color(0.9, 0.1, 0.4, 0.6);
    for (const FormatCase& format : kFormats)
        for (int round = 0; round < 60; ++round) {
            GuardedImage out(format.id, RandomIn(random, 1, 9), RandomIn(random, 1, 7));
            out.Randomise(random);
            const long width = RandomIn(random, 1, out.Width());
            const long height = RandomIn(random, 1, out.Height());
            const long left = RandomIn(random, 0, out.Width() - width);
            const long bottom = RandomIn(random, 0, out.Height() - height);
            const unsigned long mode = kFieldModes[random() % 4];
            vfILCopyImg proc;
            proc.SetOutputImg(&out);
            proc.SetROI({RandomIn(random, -5, 5), RandomIn(random, -5, 5), width, height});
            proc.SetOutputOffset({left, bottom});
            proc.SetProcessingMode(mode);
            Snapshot expected(out);
            for (long y = bottom; y < bottom + height; ++y)
                for (long x = left; x < left + width && IsRowTreated(mode, y); ++x)
                    expected.At(x, y) = FillPixel(format, color, x);
            ASSERT_EQ(proc.FillOutputImage(color), VFIL_SUCCESS);
            ASSERT_EQ(Difference(expected, out), "")
                << format.name << ' ' << out.Width() << 'x' << out.Height() << " target " << width << 'x'
                << height << '+' << left << '+' << bottom << " mode " << std::hex << mode;
        }
}

} // namespace

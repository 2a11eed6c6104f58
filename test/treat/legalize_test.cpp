/// \file
/// The legalizer: its rules on rows of varying chroma, by hand, and what it does with formats and RGBA.
#include "support/processors.h"

#include <vfil/treat.h>

#include <gtest/gtest.h>

#include <limits>

using namespace vfil::test;

namespace {

using Pair = std::array<int, 4>; ///< Y0, Cb, Y1, Cr
using Row = std::array<Pair, 3>;

constexpr Row kRow{{{200, 220, 60, 40}, {120, 60, 235, 200}, {30, 150, 250, 235}}};

/// What becomes of the row, worked out step by step in another language; luma moves by 30 per cent.
struct RowCase {
    int mode;
    Row bt601, bt709;
};

constexpr RowCase kRowCases[] = {
    {1,
     {{{186, 156, 60, 50}, {121, 67, 198, 199}, {70, 127, 196, 206}}},
     {{{191, 152, 60, 46}, {121, 70, 206, 199}, {58, 135, 208, 217}}}},
    {2,
     {{{133, 187, 60, 72}, {121, 67, 156, 199}, {70, 127, 151, 206}}},
     {{{131, 185, 60, 73}, {121, 70, 150, 199}, {58, 135, 145, 217}}}},
    {3,
     {{{200, 148, 60, 109}, {120, 128, 235, 128}, {30, 128, 235, 128}}},
     {{{200, 147, 60, 110}, {120, 128, 235, 128}, {30, 128, 235, 128}}}},
    {4,
     {{{163, 170, 83, 88}, {124, 108, 205, 150}, {50, 136, 183, 166}}},
     {{{160, 169, 87, 89}, {125, 108, 202, 150}, {42, 136, 177, 166}}}},
    {5,
     {{{142, 105, 42, 196}, {71, 142, 153, 126}, {44, 197, 145, 117}}},
     {{{130, 112, 42, 196}, {70, 148, 142, 126}, {34, 168, 173, 124}}}},
};

void SetPair(GuardedImage& image, long x, long y, const Pair& p)
{
    const bool chromaFirst = image.Format().Is('C');
    image.Set(x, y, chromaFirst ? Pixel{p[1], p[0]} : Pixel{p[0], p[1]});
    image.Set(x + 1, y, chromaFirst ? Pixel{p[3], p[2]} : Pixel{p[2], p[3]});
}

/// The row, and below it the row of the last pair alone; an odd column last.
void SetRows(GuardedImage& image, const Row& row, const Pair& lone)
{
    for (long i = 0; i < 3; ++i) {
        SetPair(image, 2 * i, 1, row[static_cast<std::size_t>(i)]);
        SetPair(image, 2 * i, 0, lone);
    }
}

template <class Each>
void ForEachVideoFormat(Each each)
{
    for (const FormatCase& format : kFormats)
        if (format.IsSubsampled() && !format.Is('P')) {
            SCOPED_TRACE(format.name);
            each(format);
        }
}

TEST(Legalize, TreatsRowsByItsRulesInEveryFormat)
{
    ForEachVideoFormat([](const FormatCase& format) {
        for (const RowCase& c : kRowCases)
            for (const bool simd : {false, true}) {
                GuardedImage in(format.id, 7, 2), out(format.id, 7, 2), expected(format.id, 7, 2);
                for (GuardedImage* image : {&in, &out, &expected}) // the last column stays as it was
                    image->Set(6, 0, {image == &in ? 250 : 3, 7}), image->Set(6, 1, {9, 9});
                const Row& row = format.Is('6') ? c.bt601 : c.bt709;
                SetRows(in, kRow, kRow[2]);
                SetRows(expected, row, row[2]);
                Switched<vfILLegalizeImg> legalize(simd);
                Connect(legalize, &in, nullptr, &out);
                legalize.SetMode(static_cast<vfILLegalizeMode>(c.mode));
                legalize.SetLuminanceAdjustFactor(30);
                ASSERT_EQ(legalize.Verify(), VFIL_SUCCESS);
                ASSERT_EQ(legalize.Execute(), VFIL_SUCCESS);
                EXPECT_EQ(out.Bytes(), expected.Bytes()) << "mode " << c.mode << ", simd " << simd;
                EXPECT_TRUE(out.AreGuardsIntact());
            }
    });
}

struct Shown {
    Pair in, bt601, bt709;
};

TEST(Legalize, ShowsWhatIsIllegal)
{
    const Shown cases[] = {
        {{235, 240, 240, 240}, {153, 108, 145, 188}, {142, 114, 173, 188}}, // over, in range; out of range
        {{240, 128, 100, 128}, {145, 54, 59, 34}, {173, 42, 59, 26}},
        {{100, 128, 101, 128}, {59, 128, 60, 128}, {59, 128, 60, 128}},
        {{20, 200, 200, 120}, {28, 143, 142, 126}, {26, 137, 130, 127}},
    };
    for (const Shown& c : cases)
        for (const bool is601 : {true, false}) {
            GuardedImage image(is601 ? PXFormat_YCC422_601 : PXFormat_YCC422_709, 2, 1);
            SetPair(image, 0, 0, c.in);
            vfILLegalizeImg legalize;
            Connect(legalize, &image, nullptr, &image);
            legalize.SetMode(VFIL_LEGALIZE_SHOW_ILLEGAL);
            legalize.SetStrictPairs(1); // of no account here
            ASSERT_EQ(legalize.Execute(), VFIL_SUCCESS);
            const Pair& e = is601 ? c.bt601 : c.bt709;
            EXPECT_EQ(image.Bytes(), std::vector<std::uint8_t>(e.begin(), e.end()));
        }
}

std::vector<std::uint8_t> Legalized(GuardedImage& in, vfILLegalizeMode mode, double factor, int strict)
{
    GuardedImage out(in.Format().id, in.Width(), in.Height());
    vfILLegalizeImg legalize;
    Connect(legalize, &in, nullptr, &out);
    legalize.SetMode(mode);
    legalize.SetLuminanceAdjustFactor(factor);
    legalize.SetStrictPairs(strict);
    EXPECT_EQ(legalize.Execute(), VFIL_SUCCESS);
    return out.Bytes();
}

TEST(Legalize, FactorsOutsideOfTheirRangeAreLimited)
{
    std::mt19937 random(3);
    GuardedImage in(PXFormat_YUV422_709, 64, 8);
    in.Randomise(random);
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    for (const int strict : {0, 1}) {
        const auto moved = [&](double factor) {
            return Legalized(in, VFIL_LEGALIZE_ADJUST_LUMINANCE_SATURATION, factor, strict);
        };
        const auto still = Legalized(in, VFIL_LEGALIZE_ADJUST_SATURATION, 50, strict);
        for (const double factor : {0.0, -1e300, std::numeric_limits<double>::quiet_NaN(), -kInfinite})
            EXPECT_EQ(moved(factor), still) << factor;
        for (const double factor : {1e300, kInfinite})
            EXPECT_EQ(moved(factor), moved(100)) << factor;
        EXPECT_NE(moved(100), still);
    }
}

TEST(Legalize, RefusesWhatItDoesNotTake)
{
    const auto refusal = [](const GUID& format, int mode, double factor) {
        GuardedImage image(format, 4, 2);
        vfILLegalizeImg legalize;
        Connect(legalize, &image, nullptr, &image);
        legalize.SetMode(static_cast<vfILLegalizeMode>(mode));
        legalize.SetLuminanceAdjustFactor(factor);
        const bool verified = legalize.Verify() == VFIL_SUCCESS;
        const unsigned long code = verified ? 0 : legalize.GetLastError().GetErrorCode();
        if (code != 0 && code != 0x10064) { // which a run survives
            EXPECT_EQ(legalize.Execute(), VFIL_FAILURE);
            EXPECT_EQ(legalize.GetLastError().GetErrorCode(), code);
        }
        return code;
    };
    const GUID video = PXFormat_YCC422_601_SplitOdd;
    EXPECT_EQ(refusal(video, 5, 100), 0U);
    EXPECT_EQ(refusal(PXFormat_RGBA64, 1, 0), 0U);
    for (const GUID& format : {PXFormat_Mono8, PXFormat_YCCA422_601, PXFormat_YCCA32, PXFormat_BGRA32})
        EXPECT_EQ(refusal(format, 6, 101), 0x1000DU);
    for (const int mode : {0, 6, -1})
        EXPECT_EQ(refusal(video, mode, 101), 0x10063U);
    for (const double factor : {100.001, -1e-9, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(refusal(video, 3, factor), 0x10064U);
}

TEST(Legalize, CopiesRgbaWhateverMaskAndChannels)
{
    std::mt19937 random(4);
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64})
        for (int mode = 1; mode <= 4; ++mode) {
            GuardedImage in(format, 70, 3), out(format, 70, 3);
            GuardedImage mask(format == PXFormat_RGBA32 ? PXFormat_Mono8 : PXFormat_Mono16, 70, 3);
            for (GuardedImage* image : {&in, &out, &mask})
                image->Randomise(random);
            vfILLegalizeImg legalize;
            Connect(legalize, &in, nullptr, &out);
            legalize.SetMask({0, 0, 70, 3}, &mask, PXImageChannel_MONO);
            legalize.SetMode(static_cast<vfILLegalizeMode>(mode));
            legalize.SetProcessingMode(PXImageChannel_GREEN);
            ASSERT_EQ(legalize.Verify(), VFIL_SUCCESS);
            ASSERT_EQ(legalize.Execute(), VFIL_SUCCESS);
            EXPECT_EQ(out.Bytes(), in.Bytes());
        }
}

// In place as well, where the region moves up: nothing may be filled before it is read.
TEST(Legalize, ShowsRgbaGreyAndHalfBright)
{
    std::mt19937 random(5);
    for (const bool inPlace : {false, true}) {
        GuardedImage in(PXFormat_RGBA32, 9, 6), copy(PXFormat_RGBA32, 9, 6), out(PXFormat_RGBA32, 9, 6);
        GuardedImage mask(PXFormat_Mono8, 9, 5);
        in.Randomise(random);
        mask.Randomise(random);
        for (long y = 0; y < 6; ++y)
            for (long x = 0; x < 9; ++x) {
                copy.Set(x, y, in.Get(x, y));
                out.Set(x, y, in.Get(x, y));
            }
        GuardedImage& target = inPlace ? in : out;
        const auto setUp = [&](vfILMonadicPixelProc& processor, GuardedImage& from, GuardedImage& to) {
            Connect(processor, &from, nullptr, &to);
            processor.SetROI({-1, 0, 9, 5});
            processor.SetOutputOffset({0, 1});
            processor.SetMask({0, 0, 9, 5}, &mask, PXImageChannel_MONO);
            processor.SetProcessingMode(PXImageChannel_RED | PXImageChannel_BLUE);
            processor.SetDefaultColor({0.2, 0.4, 0.6, 0.8});
            ASSERT_EQ(processor.Execute(), VFIL_SUCCESS);
        };
        vfILColorCorrectionImg grey;
        grey.SetSaturation(0);
        grey.SetGain(50);
        GuardedImage expected(PXFormat_RGBA32, 9, 6);
        for (long y = 0; y < 6; ++y)
            for (long x = 0; x < 9; ++x)
                expected.Set(x, y, copy.Get(x, y));
        setUp(grey, copy, expected);
        vfILLegalizeImg legalize;
        legalize.SetMode(VFIL_LEGALIZE_SHOW_ILLEGAL);
        setUp(legalize, in, target);
        EXPECT_EQ(target.Bytes(), expected.Bytes()) << inPlace;
    }
}

} // namespace

#include "support/converters.h"

#include <vfil/fillkey.h>

#include <gtest/gtest.h>

using namespace vfil::test;

namespace {

/// Chroma and luma of one column, in the order of a format. Its own inverse.
std::array<int, 2> Ordered(const FormatCase& format, int chroma, int luma)
{
    return format.Is('C') ? std::array{chroma, luma} : std::array{luma, chroma};
}

/// By doubled quotients, so that the whole numbers round to nearest.
int KeyOf(int alpha)
{
    return 16 + (2 * 219 * alpha + 255) / 510;
}

int AlphaOf(int key)
{
    return ((2 * 255 * (key - 16) + 219 + 438 * 256) / 438 - 256) & 0xFF;
}

/// The fields of a picture may be split, the picture's rows stay: a pixel of one becomes the pixel of the
/// other.
void Split(const GuardedImage& in, GuardedImage* fill, GuardedImage* key)
{
    for (long y = 0; y < in.Height(); ++y)
        for (long x = 0; x < in.Width(); ++x) {
            const Pixel p = in.Get(x, y);
            if (fill) {
                const auto [first, second] = Ordered(fill->Format(), p[0], p[1]);
                fill->Set(x, y, {first, second});
            }
            if (key) {
                const auto [first, second] = Ordered(key->Format(), 128, KeyOf(p[2]));
                key->Set(x, y, {first, second});
            }
        }
}

/// \p missing has chroma and luma of even and odd columns, and alpha.
void Join(const GuardedImage* fill, const GuardedImage* key, GuardedImage& out,
          const std::array<Pixel, 2>& missing)
{
    for (long y = 0; y < out.Height(); ++y)
        for (long x = 0; x < out.Width(); ++x) {
            Pixel p = missing[static_cast<std::size_t>(x % 2)];
            if (fill) {
                const Pixel f = fill->Get(x, y);
                const auto [chroma, luma] = Ordered(fill->Format(), f[0], f[1]);
                p[0] = chroma;
                p[1] = luma;
            }
            if (key) {
                const Pixel k = key->Get(x, y);
                p[2] = AlphaOf(Ordered(key->Format(), k[0], k[1])[1]);
            }
            out.Set(x, y, p);
        }
}

bool IsPlain422(const FormatCase& format)
{
    return format.IsSubsampled() && !format.Is('P');
}

/// Calls check(whole, fill, key) for each pair of formats of one standard with some key format.
template <class Check>
void ForEachPair(std::mt19937& random, const Check& check)
{
    for (const FormatCase& whole : kFormats)
        for (const FormatCase& fill : kFormats) {
            const auto fits = [&](const FormatCase& f) { return IsPlain422(f) && f.model == whole.model; };
            if (!whole.Is('P') || !fits(fill)) continue;
            const FormatCase* key = &fill;
            while (key == &fill || !fits(*key))
                key = &kFormats[random() % kFormats.size()];
            check(whole, fill, *key);
        }
}

/// One run of a class between a whole picture and its parts, of which either may be absent.
vfILStatus RunSplit(GuardedImage& whole, GuardedImage* fill, GuardedImage* key, bool fast,
                    vfILProcessor::InterruptFct interrupt = nullptr)
{
    Switched<vfILYCCA2YCCYCC> p(fast);
    p.SetInputImg(&whole);
    p.SetOutputImgA(fill);
    p.SetOutputImgB(key);
    p.SetInterruptFct(interrupt, nullptr);
    return p.Execute();
}

vfILStatus RunJoin(GuardedImage& whole, GuardedImage* fill, GuardedImage* key, bool fast,
                   const vfILColor& color, vfILProcessor::InterruptFct interrupt = nullptr)
{
    Switched<vfILYCCYCC2YCCA> p(fast);
    p.SetFillColor(color);
    p.SetFillMissingInput(1);
    p.SetInputImgA(fill);
    p.SetInputImgB(key);
    p.SetOutputImg(&whole);
    p.SetInterruptFct(interrupt, nullptr);
    return p.Execute();
}

TEST(FillAndKey, ColourStaysAlphaBecomesLumaAndMissingPartsAreFilled)
{
    std::mt19937 random(21);
    const vfILColor color(0.9, 0.1, 0.3, 0.6);
    const auto compare = [&](const FormatCase& format, const FormatCase& fillFormat,
                             const FormatCase& keyFormat, long width, long height, int bits) {
        SCOPED_TRACE(testing::Message() << format.name << ' ' << fillFormat.name << ' ' << keyFormat.name
                                        << ' ' << width << " x " << height << " parts " << bits);
        const bool fast = bits & 4;
        GuardedImage whole(format.id, width, height), expected(format.id, width, height);
        GuardedImage a(fillFormat.id, width, height), b(keyFormat.id, width, height);
        GuardedImage expectedA(fillFormat.id, width, height), expectedB(keyFormat.id, width, height);
        GuardedImage* const fill = bits & 1 ? &a : nullptr;
        GuardedImage* const key = bits & 2 ? &b : nullptr;
        Scramble(whole, random);
        Split(whole, fill ? &expectedA : nullptr, key ? &expectedB : nullptr);
        ASSERT_EQ(RunSplit(whole, fill, key, fast), fill || key ? VFIL_SUCCESS : VFIL_FAILURE);
        ASSERT_EQ(Mismatch(expectedA.Bytes(), a), "") << "fill";
        ASSERT_EQ(Mismatch(expectedB.Bytes(), b), "") << "key";

        Scramble(a, random);
        Scramble(b, random);
        std::uint8_t ycc[4];
        color.GetColorAs32(ycc, static_cast<PXColorModel>(format.model));
        Join(fill, key, expected, {Pixel{ycc[1], ycc[0], 153}, Pixel{ycc[2], ycc[0], 153}});
        ASSERT_EQ(RunJoin(whole, fill, key, fast, color), VFIL_SUCCESS);
        ASSERT_EQ(Mismatch(expected.Bytes(), whole), "") << "joined";
    };
    ForEachPair(random, [&](const FormatCase& whole, const FormatCase& fill, const FormatCase& key) {
        for (long width = 1; width <= 67 && !testing::Test::HasFatalFailure(); ++width)
            for (int bits = 0; bits < 8; ++bits)
                compare(whole, fill, key, width, RandomIn(random, 1, 5), bits);
        if (whole.Is('7') && !fill.Is('S')) compare(whole, fill, key, 2049, 1030, 7); // more than 4 MiB
    });
}

TEST(FillAndKey, AnInterruptLeavesTheLaterRows)
{
    GuardedImage whole(PXFormat_YCCA422_601, 4, 5), fill(PXFormat_YCC422_601, 4, 5);
    GuardedImage key(PXFormat_YCC422_601_SplitEven, 4, 5);
    const auto rowsOf = [](const GuardedImage& image) {
        int rows = 0;
        for (long y = 0; y < 5; ++y)
            rows += image.Get(1, y) != Pixel{};
        return rows;
    };
    Fill(whole, Bytes(4 * 5 * 3, 99));
    g_pollsLeft = 2; // before the rows and after the first; after the second it stops
    EXPECT_EQ(RunSplit(whole, &fill, &key, true, StopAfterPolls), VFIL_SUCCESS);
    EXPECT_EQ(rowsOf(fill), 2);
    EXPECT_EQ(rowsOf(key), 2);
    Fill(whole, Bytes(4 * 5 * 3, 0));
    g_pollsLeft = 2;
    EXPECT_EQ(RunJoin(whole, nullptr, nullptr, true, {}, StopAfterPolls), VFIL_SUCCESS);
    EXPECT_EQ(rowsOf(whole), 2);
}

TEST(FillAndKey, AlphaThereAndBackStaysWithinOneAndKeysOutsideWrap)
{
    GuardedImage in(PXFormat_YCCA422_601, 256, 1), key(PXFormat_YUV422_601, 256, 1);
    GuardedImage out(PXFormat_YCCA422_601, 256, 1);
    for (int v = 0; v < 256; ++v)
        in.Set(v, 0, {128, 16, v});
    ASSERT_EQ(RunSplit(in, nullptr, &key, true), VFIL_SUCCESS);
    ASSERT_EQ(RunJoin(out, nullptr, &key, true, {}), VFIL_SUCCESS);
    for (int v = 0; v < 256; ++v)
        EXPECT_LE(std::abs(out.Get(v, 0)[2] - v), 1);
    EXPECT_EQ(out.Get(0, 0), (Pixel{128, 16, 0, 0})) << "black";
    for (const auto& [luma, alpha] :
         {std::pair{15, 255}, {236, 0}, {255, 22}, {0, 237}, {235, 255}, {16, 0}}) {
        key.Set(0, 0, {1, luma});
        ASSERT_EQ(RunJoin(out, nullptr, &key, false, {}), VFIL_SUCCESS);
        EXPECT_EQ(out.Get(0, 0)[2], alpha) << luma;
    }
}

TEST(FillAndKey, OnlyPicturesOfOneStandardAndSizeAreTaken)
{
    for (const FormatCase& whole : kFormats)
        for (const FormatCase& part : kFormats) {
            const bool fits = whole.Is('P') && IsPlain422(part) && part.model == whole.model;
            const bool alike = whole.Is('P') && part.IsSubsampled();
            GuardedImage one(whole.id, 4, 2), other(part.id, 4, 2);
            for (const bool inB : {false, true}) {
                vfILYCCA2YCCYCC split;
                split.SetInputImg(&one);
                inB ? split.SetOutputImgB(&other) : split.SetOutputImgA(&other);
                EXPECT_EQ(split.Verify(), fits ? VFIL_SUCCESS : VFIL_FAILURE);
                const unsigned long code = fits ? 0 : alike ? kBadPair : whole.Is('P') ? 0x10003 : kBadInput;
                EXPECT_EQ(split.GetLastError().GetErrorCode(), code) << whole.name << " to " << part.name;
                EXPECT_EQ(split.Execute(), fits ? VFIL_SUCCESS : VFIL_FAILURE) << "it verifies by itself";

                if (!whole.Is('P') && !part.IsSubsampled()) continue; // two faults
                vfILYCCYCC2YCCA join;
                join.SetFillMissingInput(1);
                join.SetOutputImg(&one);
                inB ? join.SetInputImgB(&other) : join.SetInputImgA(&other);
                EXPECT_EQ(join.Verify(), fits ? VFIL_SUCCESS : VFIL_FAILURE);
                const unsigned long joinCode = fits            ? 0
                                               : alike         ? kBadPair
                                               : whole.Is('P') ? kBadInput
                                                               : 0x10003;
                EXPECT_EQ(join.GetLastError().GetErrorCode(), joinCode) << part.name << " to " << whole.name;
                EXPECT_EQ(join.Execute(), fits ? VFIL_SUCCESS : VFIL_FAILURE);
            }
        }
}

TEST(FillAndKey, OtherFailures)
{
    GuardedImage whole(PXFormat_YCCA422_709, 4, 2), part(PXFormat_YCC422_709_SplitOdd, 4, 2);
    GuardedImage narrow(PXFormat_YCC422_709, 3, 2), noPart(PXFormat_YCC422_709),
        noWhole(PXFormat_YCCA422_709);
    const vfILBbox2l all(0, 0, 4, 2);
    const struct {
        const char* what;
        unsigned long splitCode;
        unsigned long joinCode;
        GuardedImage* whole;
        GuardedImage* fill;
        GuardedImage* key;
        vfILBbox2l roi;
        double alpha = 1;
    } cases[] = {
        {"all there", 0, 0, &whole, &part, &part, all},
        {"no picture", 0x1000B, 0x10002, nullptr, &part, &part, all},
        {"picture without pixels", 0x1000C, 0x10003, &noWhole, &part, &part, all},
        {"fill alone", 0, 0x1000B, &whole, &part, nullptr, all},
        {"key alone", 0, 0x1000B, &whole, nullptr, &part, all},
        {"neither", 0x10002, 0x1000B, &whole, nullptr, nullptr, all},
        {"fill without pixels", 0x10003, 0x1000C, &whole, &noPart, &part, all},
        {"key without pixels", 0x10003, 0x1000C, &whole, &part, &noPart, all},
        {"size of the fill", 0x10062, 0x10062, &whole, &narrow, &part, all},
        {"size of the key", 0x10062, 0x10062, &whole, &part, &narrow, all},
        {"region", 0x10060, 0x10060, &whole, &part, &part, {0, 0, 4, 1}},
        {"colour", 0x10004, 0x10004, &whole, &part, &part, all, 1.5},
    };
    for (const auto& c : cases) {
        vfILYCCA2YCCYCC split;
        split.SetInputImg(c.whole);
        split.SetOutputImgA(c.fill);
        split.SetOutputImgB(c.key);
        vfILYCCYCC2YCCA join;
        join.SetInputImgA(c.fill);
        join.SetInputImgB(c.key);
        join.SetOutputImg(c.whole);
        const auto check = [&](auto& p, unsigned long code) {
            p.SetROI(c.roi);
            p.SetDefaultColor({0, 0, 0, c.alpha});
            EXPECT_EQ(p.Execute(), code == 0 ? VFIL_SUCCESS : VFIL_FAILURE) << c.what;
            EXPECT_EQ(p.GetLastError().GetErrorCode(), code) << c.what;
        };
        check(split, c.splitCode);
        check(join, c.joinCode);
    }
}

} // namespace

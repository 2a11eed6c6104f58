/// \file
/// What is judged legal, against the definition in long doubles.
#include "legality/judge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace vfil::legality {

namespace {

struct Sample {
    int y, cb, cr;
};

// How far a colour is outside, by kind.
std::array<long double, kKinds> ExcursionsOf(const Sample& s, bool is709)
{
    const long double y = (s.y - 16) / 219.0L;
    const long double b = (s.cb - 128) / 224.0L;
    const long double r = (s.cr - 128) / 224.0L;
    const long double rgb[] = {y + (is709 ? 1.5748L : 1.402L) * r,
                               is709 ? y - 0.18732427L * b - 0.46812427L * r
                                     : y - 0.34414L * b - 0.71414L * r,
                               y + (is709 ? 1.8556L : 1.772L) * b};
    const auto [least, most] = std::minmax_element(std::begin(rgb), std::end(rgb));
    const int chroma = std::max(std::abs(2 * s.cb - 256), std::abs(2 * s.cr - 256)) / 2 - 112;
    return {16.0L - s.y, s.y - 235.0L, static_cast<long double>(chroma), 255 * (*most - 1), -255 * *least};
}

// Pixels of a picture from the top, each with the chroma that it is judged by.
std::vector<Sample> SamplesOf(const host::Picture& picture, RightChroma right)
{
    const bool chromaFirst = picture.FormatInfo().chromaFirst;
    std::vector<Sample> samples;
    for (long y = picture.Height() - 1; y >= 0; --y) {
        const auto at = [&](long x, bool chroma) {
            return int{picture.Row(y)[2 * x + (chroma == chromaFirst ? 0 : 1)]};
        };
        for (long x = 0; x < picture.Width(); ++x) {
            const long left = x & ~1L;
            const bool lone = left + 1 == picture.Width();
            Sample s{at(x, false), at(left, true), lone ? 128 : at(left + 1, true)};
            if (right == RightChroma::Mean && x != left && x + 2 < picture.Width()) {
                s.cb = (s.cb + at(left + 2, true) + 1) / 2;
                s.cr = (s.cr + at(left + 3, true) + 1) / 2;
            }
            samples.push_back(s);
        }
    }
    return samples;
}

Legality Expected(const host::Picture& picture, RightChroma right)
{
    Legality expected;
    constexpr long double kTie = 1e-9L;
    for (const Sample& s : SamplesOf(picture, right)) {
        const auto by = ExcursionsOf(s, picture.FormatInfo().model == PXColorModel_YCC709);
        const long index = static_cast<long>(expected.pixels++);
        const auto worst =
            std::max_element(by.begin(), by.end(), [](auto a, auto b) { return b > a + kTie; });
        for (std::size_t i = 0; i < kKinds; ++i)
            expected.kinds[i] += by[i] > kTie;
        expected.outside += *worst > kTie;
        expected.beyond += *worst > 1 + kTie;
        if (*worst > expected.worst.codes + kTie)
            expected.worst = {static_cast<double>(*worst), static_cast<Kind>(worst - by.begin()),
                              index % picture.Width(), picture.Height() - 1 - index / picture.Width()};
    }
    return expected;
}

void ExpectEqual(const Legality& a, const Legality& b)
{
    EXPECT_EQ(a.pixels, b.pixels);
    EXPECT_EQ(a.outside, b.outside);
    EXPECT_EQ(a.beyond, b.beyond);
    EXPECT_EQ(a.kinds, b.kinds);
    EXPECT_NEAR(a.worst.codes, b.worst.codes, 1e-9);
    EXPECT_EQ(a.worst.kind, b.worst.kind);
    EXPECT_EQ(a.worst.x, b.worst.x);
    EXPECT_EQ(a.worst.y, b.worst.y);
}

std::vector<GUID> VideoFormats()
{
    std::vector<GUID> formats;
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i)
        if (info->subsampled) formats.push_back(info->id);
    return formats;
}

// The means are of few frames, so that the first of several worst ones is looked for, too.
TEST(Judge, AgreesWithTheDefinitionInAllFormatsAndWidths)
{
    std::mt19937 random(1);
    for (const GUID& format : VideoFormats()) {
        for (const long width : {0, 1, 2, 3, 4, 7, 64}) {
            for (const unsigned spread : {1u, 4u, 40u, 256u}) {
                const host::PicturePtr picture = host::Picture::Create(format, width, 5);
                // Around the limits, and everywhere.
                const int middles[] = {16, 128, 235, 240};
                for (std::size_t i = 0; i < picture->Bytes(); ++i) {
                    const int middle = middles[random() % 4];
                    const int off = static_cast<int>(random() % spread) - static_cast<int>(spread / 2);
                    picture->Pixels()[i] = static_cast<std::uint8_t>(std::clamp(middle + off, 0, 255));
                }
                for (const RightChroma right : {RightChroma::Own, RightChroma::Mean}) {
                    SCOPED_TRACE(testing::Message() << picture->FormatInfo().name << " " << width);
                    ExpectEqual(Judge(*picture, right), Expected(*picture, right));
                }
            }
        }
    }
}

// A pair of each two chroma samples beside every luma, once: the table has no wrong entry.
TEST(Judge, EveryColourIsJudgedAsItIs)
{
    for (const GUID& format : {PXFormat_YUV422_601, PXFormat_YUV422_709}) {
        const host::PicturePtr picture = host::Picture::Create(format, 512, 256);
        for (int cb = 0; cb < 256; cb += 5) {
            for (int y = 0; y < 256; ++y) {
                std::uint8_t* pair = picture->Row(y);
                for (int cr = 0; cr < 256; ++cr, pair += 4) {
                    pair[0] = static_cast<std::uint8_t>(cb);
                    pair[1] = pair[3] = static_cast<std::uint8_t>(y);
                    pair[2] = static_cast<std::uint8_t>(cr);
                }
            }
            ExpectEqual(Judge(*picture, RightChroma::Own), Expected(*picture, RightChroma::Own));
        }
    }
}

TEST(Judge, KnownColours)
{
    const struct {
        Sample sample;
        std::uint64_t outside;
        Kind kind;
        double codes;
    } cases[] = {
        {{16, 128, 128}, 0, Kind::LumaLow, 0},
        {{235, 128, 128}, 0, Kind::LumaLow, 0},
        {{15, 128, 128}, 2, Kind::RgbUnder, 255 / 219.0},
        {{235, 240, 240}, 2, Kind::RgbOver, 225.93}, // blue: half of 255 * 1.772
        {{125, 241, 128}, 2, Kind::RgbOver, 99.87},
        {{180, 16, 128}, 2, Kind::RgbUnder, 34.97},
        {{168, 44, 136}, 0, Kind::LumaLow, 0}, // yellow of 75 per cent
    };
    for (const auto& c : cases) {
        const host::PicturePtr picture = host::Picture::Create(PXFormat_YCC422_601, 2, 1);
        const int bytes[] = {c.sample.y, c.sample.cb, c.sample.y, c.sample.cr};
        std::copy(bytes, bytes + 4, picture->Pixels());
        const Legality judged = Judge(*picture, RightChroma::Own);
        EXPECT_EQ(judged.outside, c.outside) << c.sample.y << " " << c.sample.cb;
        EXPECT_EQ(judged.worst.kind, c.kind);
        EXPECT_NEAR(judged.worst.codes, c.codes, 0.01);
    }
    const host::PicturePtr colour = host::Picture::Create(PXFormat_RGBA32, 3, 2);
    EXPECT_EQ(Judge(*colour, RightChroma::Own).outside, 0u);
    EXPECT_EQ(Judge(*colour, RightChroma::Own).pixels, 6u);
}

TEST(Legality, FramesAddUp)
{
    Legality sum{
        .pixels = 4, .outside = 2, .beyond = 1, .kinds = {1, 0, 0, 2, 0}, .worst = {3, Kind::RgbOver, 1, 2}};
    sum +=
        {.pixels = 4, .outside = 1, .beyond = 1, .kinds = {0, 1, 1, 0, 0}, .worst = {3, Kind::Chroma, 0, 0}};
    EXPECT_EQ(sum.worst.kind, Kind::RgbOver) << "of equal ones the first";
    sum += {
        .pixels = 4, .outside = 1, .beyond = 1, .kinds = {0, 0, 1, 0, 1}, .worst = {9, Kind::RgbUnder, 3, 1}};
    ExpectEqual(sum, {12, 4, 3, {1, 1, 2, 2, 1}, {9, Kind::RgbUnder, 3, 1}});
}

} // namespace

} // namespace vfil::legality

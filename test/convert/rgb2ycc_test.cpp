#include "support/converters.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace vfil::test;

namespace {

TEST(RgbToYcc, EveryLayoutAndSettingGivesTheBytesOfTheModel)
{
    for (int kind = 0; kind < 3; ++kind)
        CompareWithModel(kConverters[kind], 8, ToYcc);
}

/// A picture of the named format from a list of bytes, memory rows from the lowest address on.
Bytes Convert(vfILImgProc& processor, const Conversion& conversion, const Bytes& input, int background = 7)
{
    GuardedImage in(conversion.from.id, conversion.width, conversion.height);
    GuardedImage out(conversion.to.id, conversion.width, conversion.height);
    Fill(in, input);
    Fill(out, Bytes(out.Bytes().size(), static_cast<std::uint8_t>(background)));
    Connect(processor, &in, nullptr, &out);
    Configure(processor, conversion.setup);
    EXPECT_EQ(processor.Verify(), VFIL_SUCCESS);
    EXPECT_EQ(processor.Execute(), VFIL_SUCCESS);
    EXPECT_TRUE(out.AreGuardsIntact());
    return out.Bytes();
}

Bytes Encode(const GUID& format, long width, long height, const ConvertSetup& setup, const Bytes& rgb)
{
    Switched<vfILRGBA2YCCA> p(setup.fast);
    return Convert(p, {FormatOf(PXFormat_RGB24), FormatOf(format), width, height, setup}, rgb);
}

TEST(RgbToYcc, WorkedByHand)
{
    const Bytes redBlue{255, 0, 0, 0, 0, 255};
    EXPECT_EQ(Encode(PXFormat_YCC422_601, 2, 1, {}, redBlue), (Bytes{81, 90, 41, 240})) << "chroma of red";
    EXPECT_EQ(Encode(PXFormat_YCC422_601, 2, 1, {true}, redBlue), (Bytes{81, 165, 41, 175})) << "the mean";
    EXPECT_EQ(Encode(PXFormat_YUV422_709, 2, 1, {}, redBlue), (Bytes{102, 63, 240, 32}));
    const Bytes oddWidth{255, 255, 255, 0, 0, 0, 9, 9, 9};
    EXPECT_EQ(Encode(PXFormat_YUV422_601, 3, 1, {true}, oddWidth), (Bytes{128, 235, 128, 16, 7, 7}));
    EXPECT_EQ(Encode(PXFormat_YUV422_601, 1, 3, {true}, oddWidth), Bytes(6, 7)) << "no pair";
}

TEST(RgbToYcc, RowsGoToTheirPlaceInTheFields)
{
    const auto lumas = [](const GUID& format, long height) {
        Bytes rgb;
        for (std::uint8_t row = 0; row < height; ++row)
            rgb.insert(rgb.end(), 6, static_cast<std::uint8_t>(row * 51)); // luma 16, 60, 104, 147
        const Bytes bytes = Encode(format, 2, height, {}, rgb);
        Bytes rows;
        for (std::size_t at = 0; at < bytes.size(); at += 4)
            rows.push_back(static_cast<std::uint8_t>((bytes[at] - 16) / 43));
        return rows;
    };
    EXPECT_EQ(lumas(PXFormat_YCC422_601, 4), (Bytes{3, 2, 1, 0}));
    EXPECT_EQ(lumas(PXFormat_YCC422_709_SplitEven, 4), (Bytes{2, 0, 3, 1}));
    EXPECT_EQ(lumas(PXFormat_YCC422_601_SplitOdd, 4), (Bytes{3, 1, 2, 0}));
    EXPECT_EQ(lumas(PXFormat_YCC422_601_SplitEven, 3), (Bytes{2, 0, 1}));
    EXPECT_EQ(lumas(PXFormat_YCC422_601_SplitOdd, 3), (Bytes{1, 2, 0}));
    EXPECT_EQ(lumas(PXFormat_YCC422_601_SplitOdd, 1), (Bytes{0}));
}

TEST(RgbToYcc, FixedPointStaysCloseToRealNumbers)
{
    constexpr int kStep = 5;
    constexpr int kSteps = 52;
    for (const GUID& format : {PXFormat_YCC422_601, PXFormat_YCC422_709})
        for (int bits = 0; bits < 4; ++bits) {
            const ConvertSetup setup{bits / 2 == 1, false, bits % 2 == 1};
            Bytes rgba;
            for (int r = 0; r < 256; r += kStep)
                for (int gb = 0; gb < kSteps * kSteps * 2; ++gb)
                    for (const int v : {r, gb / 2 / kSteps * kStep, gb / 2 % kSteps * kStep, 255})
                        rgba.push_back(static_cast<std::uint8_t>(v));
            Switched<vfILRGBA2YCCA> p(setup.fast);
            const FormatCase& to = FormatOf(format);
            const long pairs = kSteps * kSteps;
            const Bytes ycc = Convert(p, {FormatOf(PXFormat_RGBA32), to, pairs * 2, kSteps, setup}, rgba);
            double greatest = 0;
            for (long i = 0; i < pairs * kSteps; ++i) {
                const std::uint8_t* in = &rgba[static_cast<std::size_t>(i * 8)];
                const long row = kSteps - 1 - i / pairs;
                const std::uint8_t* out = &ycc[static_cast<std::size_t>((row * pairs + i % pairs) * 4)];
                ASSERT_EQ(out[0], out[2]);
                const RealTriple real = EncodeExactly(to.Is('7'), {in[0], in[1], in[2]});
                for (const int c : {0, 1, 2})
                    greatest =
                        std::max(greatest, std::abs(real[static_cast<std::size_t>(c)] - out[c + c / 2]));
            }
            EXPECT_LE(greatest, setup.fast ? 0.5074 : 0.5035) << to.name << " setting " << bits;
        }
}

TEST(RgbToYcc, DitheringIsTheSameOnEveryRunAndDiffersFromRowToRow)
{
    const Bytes flat(6 * 40 * 2, 100); // luma 101.88
    const ConvertSetup setup{true, true, false};
    Switched<vfILRGBA2YCCA> p(true);
    const Conversion conversion{FormatOf(PXFormat_RGB24), FormatOf(PXFormat_YCC422_601), 40, 4, setup};
    const Bytes first = Convert(p, conversion, flat);
    EXPECT_EQ(Convert(p, conversion, flat), first);
    const auto row = [&](int r) { return Bytes(first.begin() + r * 80, first.begin() + (r + 1) * 80); };
    EXPECT_NE(row(0), row(1));
    double sum = 0;
    for (std::size_t i = 0; i < first.size(); i += 2)
        sum += first[i] - 101.88;
    EXPECT_NEAR(sum / 160, 0, 0.03) << "the mean luma is kept";
    const Bytes white = Convert(p, conversion, Bytes(flat.size(), 255));
    EXPECT_LE(*std::max_element(white.begin(), white.end()), 236);
}

} // namespace

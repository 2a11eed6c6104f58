#include "support/converters.h"
#include "support/framemodel.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace vfil::test;

namespace {

TEST(YccToRgb, EveryLayoutAndSettingGivesTheBytesOfTheModel)
{
    for (const int kind : {3, 4})
        CompareWithModel(kConverters[kind], 4, ToRgb);
}

/// Runs on one row.
Bytes Decode(const GUID& from, const GUID& to, long width, const ConvertSetup& setup, const Bytes& ycc)
{
    GuardedImage in(from, width, 1), out(to, width, 1);
    Fill(in, ycc);
    Fill(out, Bytes(out.Bytes().size(), 7));
    Switched<vfILYCCA2RGBA> p(setup.fast);
    Connect(p, &in, nullptr, &out);
    Configure(p, setup);
    EXPECT_EQ(p.Verify(), VFIL_SUCCESS);
    EXPECT_EQ(p.Execute(), VFIL_SUCCESS);
    EXPECT_TRUE(out.AreGuardsIntact());
    return out.Bytes();
}

TEST(YccToRgb, WorkedByHand)
{
    for (const bool fast : {false, true})
        for (const GUID& format : {PXFormat_YUV422_601, PXFormat_YUV422_709}) {
            const ConvertSetup setup{false, false, fast};
            EXPECT_EQ(Decode(format, PXFormat_RGBA32, 2, setup, {128, 235, 128, 16}),
                      (Bytes{255, 255, 255, 255, 0, 0, 0, 255}));
            const Bytes ends = Decode(format, PXFormat_RGBA32, 4, setup, {128, 255, 255, 255, 128, 0, 0, 0});
            EXPECT_EQ(ends[0], 255);
            EXPECT_EQ(ends[8], 0);
        }
    // Y 126 and Cb 128 throughout, Cr 128 then 160: red is 255 / 219 * 110 = 128.08 and 51.08 more
    const Bytes ycc{126, 128, 126, 128, 126, 128, 126, 160, 9, 9};
    const auto reds = [&](bool filter) {
        const Bytes rgb = Decode(PXFormat_YCC422_601, PXFormat_RGB24, 5, {filter}, ycc);
        return Bytes{rgb[0], rgb[3], rgb[6], rgb[9], rgb[12]};
    };
    EXPECT_EQ(reds(false), (Bytes{128, 128, 179, 179, 7})) << "the odd last pixel stays";
    EXPECT_EQ(reds(true), (Bytes{128, 154, 179, 179, 7})) << "the last pair has no next one";
}

TEST(YccToRgb, FixedPointStaysCloseToRealNumbers)
{
    constexpr int kStep = 3;
    constexpr int kSteps = 86;
    constexpr long kPairs = kSteps * kSteps;
    for (const GUID& format : {PXFormat_YCC422_601, PXFormat_YCC422_709})
        for (const bool fast : {false, true}) {
            double greatest = 0;
            for (int y = 0; y < 256; y += kStep) {
                Bytes ycc;
                for (int i = 0; i < kPairs; ++i)
                    for (const int v : {y, i / kSteps * kStep, y, i % kSteps * kStep})
                        ycc.push_back(static_cast<std::uint8_t>(v));
                const Bytes rgb = Decode(format, PXFormat_RGBA32, kPairs * 2, {false, false, fast}, ycc);
                for (std::size_t i = 0; i < ycc.size(); i += 4) {
                    const RealTriple real =
                        DecodeExactly(format == PXFormat_YCC422_709, {ycc[i], ycc[i + 1], ycc[i + 3]});
                    for (std::size_t c = 0; c < 3; ++c)
                        greatest = std::max(greatest, std::abs(real[c] - rgb[i * 2 + c]));
                }
            }
            EXPECT_LE(greatest, fast ? 0.5116 : 0.5021) << FormatOf(format).name << " fast " << fast;
        }
}

TEST(YccToRgb, RgbThereAndBackKeepsItsValues)
{
    for (const GUID& format : {PXFormat_YUV422_601_SplitOdd, PXFormat_YCC422_709, PXFormat_YCCA422_601})
        for (const bool fast : {false, true}) {
            GuardedImage in(PXFormat_RGBA32, 512, 256), ycc(format, 512, 256), out(PXFormat_RGBA32, 512, 256);
            for (long y = 0; y < 256; ++y)
                for (long x = 0; x < 512; ++x) {
                    const int v = static_cast<int>(x / 2);
                    in.Set(x, y,
                           y == 0 ? Pixel{v, v, v, 255} : Pixel{v, static_cast<int>(y), (v * 7) & 255, 255});
                }
            Switched<vfILRGBA2YCCA> there(fast);
            there.SetDoFiltering(0);
            Switched<vfILYCCA2RGBA> back(fast);
            Connect(there, &in, nullptr, &ycc);
            Connect(back, &ycc, nullptr, &out);
            ASSERT_EQ(there.Execute(), VFIL_SUCCESS);
            ASSERT_EQ(back.Execute(), VFIL_SUCCESS);
            int greatest = 0, greatestGrey = 0;
            for (long y = 0; y < 256; ++y)
                for (long x = 0; x < 512; ++x)
                    for (std::size_t c = 0; c < 4; ++c) {
                        int& most = y == 0 ? greatestGrey : greatest;
                        most = std::max(most, std::abs(out.Get(x, y)[c] - in.Get(x, y)[c]));
                    }
            EXPECT_EQ(greatestGrey, 1);
            EXPECT_LE(greatest, 2);
        }
}

TEST(YccToRgb, LandsInsideALargerOutput)
{
    std::mt19937 random(5);
    for (const GUID& to : {PXFormat_RGBA32, PXFormat_RGB24})
        for (const GUID& from : {PXFormat_YUV422_601_SplitEven, PXFormat_YCCA32})
            for (const long shift : {0, 1}) {
                GuardedImage in(from, 7, 4), out(to, 11, 6), exact(to, 7, 4);
                in.Randomise(random);
                Scramble(out, random);
                Scramble(exact, random);
                for (long y = 0; y < 4; ++y)
                    exact.Set(6, y, out.Get(8 + shift, 1 + shift + y)); // the odd last column stays
                Snapshot expected(out);
                for (const bool larger : {false, true}) {
                    Switched<vfILYCCA2RGBA> p(true);
                    Connect(p, &in, nullptr, larger ? &out : &exact);
                    if (larger) {
                        // a region that hangs over the input: its first pixel still lands at the offset
                        p.SetROI({-shift, -shift, 7 + shift, 4 + shift});
                        p.SetOutputOffset({2, 1});
                    }
                    ASSERT_EQ(p.Verify(), VFIL_SUCCESS);
                    ASSERT_EQ(p.Execute(), VFIL_SUCCESS);
                }
                for (long y = 0; y < 4; ++y)
                    for (long x = 0; x < 7; ++x)
                        expected.At(x + 2 + shift, y + 1 + shift) = exact.Get(x, y);
                EXPECT_EQ(Difference(expected, out), "");
            }
}

} // namespace

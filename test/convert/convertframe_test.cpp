#include "support/converters.h"

#include <gtest/gtest.h>

using namespace vfil::test;

namespace {

TEST(ConvertFrame, EveryPairOfFormatsIsTakenOrRefused)
{
    for (const Converter& converter : kConverters)
        for (const FormatCase& from : kFormats)
            for (const FormatCase& to : kFormats) {
                GuardedImage in(from.id, 4, 2), out(to.id, 4, 2);
                const auto p = converter.make(true);
                Connect(*p, &in, nullptr, &out);
                const unsigned long code = converter.verifyCode(from, to);
                EXPECT_EQ(p->Verify(), code == 0 ? VFIL_SUCCESS : VFIL_FAILURE)
                    << converter.name << ' ' << from.name << " to " << to.name;
                EXPECT_EQ(p->GetLastError().GetErrorCode(), code)
                    << converter.name << ' ' << from.name << " to " << to.name;
            }
}

TEST(ConvertFrame, RefusesAllButTheWholePicture)
{
    GuardedImage in(PXFormat_RGBA32, 4, 3), same(PXFormat_RGBA32, 4, 3), large(PXFormat_RGB24, 6, 5);
    GuardedImage ycc(PXFormat_YUV422_601, 4, 3), mask(PXFormat_Mono8, 4, 3), empty(PXFormat_RGBA32, 0, 3);
    const vfILBbox2l whole(0, 0, 4, 3);
    const struct {
        const char* what;
        GuardedImage* in;
        GuardedImage* out;
        vfILBbox2l roi;
        vfILVector2l offset;
        GuardedImage* mask;
        unsigned long mode;
        unsigned long code;
    } cases[] = {
        {"all of it", &in, &large, whole, {}, nullptr, 15, 0},
        {"at an offset", &in, &large, whole, {2, 2}, nullptr, 0xFF0F, 0},
        {"hangs over the input", &in, &large, {-1, -1, 6, 5}, {}, nullptr, 15, 0},
        {"same picture", &in, &in, {0, 0, 2, 2}, {}, &mask, 0, 0x10033},
        {"channels", &in, &large, {0, 0, 2, 2}, {}, &mask, 7, 0x20002},
        {"mask", &in, &large, whole, {}, &mask, 15, 0x20001},
        {"region", &in, &large, {0, 0, 3, 3}, {}, nullptr, 15, 0x20001},
        {"shifted region", &in, &large, {1, 0, 4, 3}, {}, nullptr, 15, 0x20001},
        {"empty", &empty, &large, whole, {}, nullptr, 15, 0x20001},
        {"does not fit", &in, &large, whole, {3, 0}, nullptr, 15, 0x1000A},
        {"region of a top-down picture", &in, &ycc, {0, 0, 2, 3}, {}, nullptr, 15, 0x10060},
        {"mask of one", &in, &ycc, whole, {}, &mask, 15, 0x20001},
        {"no such pair", &in, &same, whole, {}, nullptr, 15, kBadPair},
    };
    for (const auto& c : cases) {
        vfILRGB2RGBA pack;
        vfILRGBA2YCCA encode;
        vfILMonadicConvertProc& p = c.out == &ycc ? static_cast<vfILMonadicConvertProc&>(encode) : pack;
        EXPECT_EQ(p.GetProcessingMode(), VFIL_MODE_RGBA);
        Connect(p, c.in, nullptr, c.out);
        p.SetROI(c.roi);
        p.SetOutputOffset(c.offset);
        if (c.mask) p.SetMask(whole, c.mask, PXImageChannel_MONO);
        p.SetProcessingMode(c.mode);
        EXPECT_EQ(p.Verify(), c.code == 0 ? VFIL_SUCCESS : VFIL_FAILURE) << c.what;
        EXPECT_EQ(p.GetLastError().GetErrorCode(), c.code) << c.what;
    }
}

TEST(ConvertFrame, AColourIsAPixelOfTheOutput)
{
    const vfILColor color(0.2, 0.7, 0.4, 0.5);
    for (const Converter& converter : kConverters)
        for (const FormatCase& from : kFormats)
            for (const FormatCase& to : kFormats) {
                if (!converter.Takes(from, to)) continue;
                GuardedImage in(from.id, 4, 2), out(to.id, 4, 2);
                const auto p = converter.make(true);
                Connect(*p, &in, nullptr, &out);
                std::array<std::uint8_t, 8> expected{};
                const auto model = static_cast<PXColorModel>(to.model);
                unsigned short words[4];
                if (to.sampleBytes == 2) {
                    to.channels == 1 ? color.GetColorAs16(words, model) : color.GetColorAs64(words, model);
                    std::memcpy(expected.data(), words, 8);
                } else if (to.channels == 1)
                    color.GetColorAs8(expected.data(), model);
                else
                    color.GetColorAs32(expected.data(), model);
                std::swap(expected[0], expected[RedIndex(to)]);
                const int samples = to.IsSubsampled() ? 4 : to.channels;
                const void* actual = dynamic_cast<vfILMonadicConvertProc&>(*p).GetConvertedColor(color);
                EXPECT_EQ(
                    std::memcmp(actual, expected.data(), static_cast<std::size_t>(samples * to.sampleBytes)),
                    0)
                    << converter.name << ' ' << from.name << " to " << to.name;
            }
}

TEST(ConvertFrame, AnInterruptLeavesTheLaterRows)
{
    std::mt19937 random(3);
    for (const Converter& converter : kConverters)
        for (const FormatCase& from : kFormats)
            for (const FormatCase& to : kFormats) {
                if (!converter.Takes(from, to)) continue;
                GuardedImage in(from.id, 8, 5), whole(to.id, 8, 5), part(to.id, 8, 5);
                in.Randomise(random);
                Scramble(whole, random);
                Fill(part, whole.Bytes());
                const Bytes before = part.Bytes();
                const auto p = converter.make(true);
                Connect(*p, &in, nullptr, &whole);
                ASSERT_EQ(p->Execute(), VFIL_SUCCESS);
                p->SetOutputImg(&part);
                g_pollsLeft = 2; // before the rows, after the first, and the second stops
                p->SetInterruptFct(StopAfterPolls, nullptr);
                EXPECT_EQ(p->Execute(), VFIL_SUCCESS);
                const Bytes full = whole.Bytes();
                Fill(whole, before);
                for (const long row : {0, 1}) {
                    const bool flips = RedIndex(from) != RedIndex(to) && !from.Is('Y') && !to.Is('Y');
                    const bool upsideDown = to.Is('Y') && !to.IsSubsampled();
                    const long y = flips || upsideDown ? 4 - row : row;
                    GuardedImage result(to.id, 8, 5);
                    Fill(result, full);
                    for (long x = 0; x < 8; ++x)
                        whole.Set(x, y, result.Get(x, y));
                }
                EXPECT_EQ(Mismatch(whole.Bytes(), part), "")
                    << converter.name << ' ' << from.name << " to " << to.name;
            }
}

TEST(ConvertFrame, WithoutVerifyNothingIsWrittenThatDoesNotFit)
{
    GuardedImage in(PXFormat_RGBA32, 4, 3), rgba(PXFormat_RGBA32, 4, 3), none(PXFormat_RGBA32, 0, 2);
    GuardedImage noYcc(PXFormat_YUV422_709, 0, 2), ycc(PXFormat_YCCA32, 4, 3);
    vfILRGBA2YCCA p;
    Connect(p, &in, nullptr, &rgba);
    EXPECT_EQ(p.Execute(), VFIL_FAILURE) << "an output that is not YCC";
    EXPECT_EQ(p.GetLastError().GetErrorCode(), 0x1000DU);
    EXPECT_EQ(Mismatch(Bytes(48, 0), rgba), "");
    Connect(p, &in, nullptr, &ycc);
    p.SetROI({0, 1, 4, 2});
    EXPECT_EQ(p.Execute(), VFIL_FAILURE) << "a part of a top-down output";
    p.SetROI({0, 0, 4, 3});
    Connect(p, &none, nullptr, &noYcc);
    EXPECT_EQ(p.Execute(), VFIL_SUCCESS) << "no pixels";
    EXPECT_TRUE(noYcc.AreGuardsIntact());
}

} // namespace

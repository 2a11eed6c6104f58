#include "support/processors.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using namespace vfil::test;

namespace {

/// The channel arithmetic that operators inherit, laid open.
class Helpers : public vfILCopyImg {
public:
    using vfILImgProc::AddChannel, vfILImgProc::AddNoClipChannel, vfILImgProc::DiffChannel,
        vfILImgProc::MultChannel;
    using vfILImgProc::BlendChannel16, vfILImgProc::BlendChannel8, vfILImgProc::FrontOverBack16;
    using vfILImgProc::FrontAtopBack16, vfILImgProc::FrontAtopBack8, vfILImgProc::FrontOverBack8;
    using vfILImgProc::FrontInBack16, vfILImgProc::FrontInBack8, vfILImgProc::FrontOutBack16;
    using vfILImgProc::FrontOutBack8, vfILImgProc::FrontXorBack16, vfILImgProc::FrontXorBack8;
    using vfILImgProc::Uncomposite16, vfILImgProc::Uncomposite8;
};

TEST(Helpers, ChannelArithmeticIsTheModels)
{
    std::mt19937 random(1);
    for (int round = 0; round < 100000; ++round) {
        const auto b8 = [&] { return static_cast<unsigned char>(RandomSample(random, 255)); };
        const auto w16 = [&] { return static_cast<unsigned short>(RandomSample(random, 65535)); };
        const Arithmetic m8{255}, m16{65535};
        const unsigned char f = b8(), b = b8(), a = b8(), c = b8();
        ASSERT_EQ(Helpers::BlendChannel8(f, b, a), m8.Blend(f, b, a));
        ASSERT_EQ(Helpers::FrontOverBack8(f, b, a), m8.Over(f, b, a));
        ASSERT_EQ(Helpers::FrontInBack8(f, c), m8.In(f, c));
        ASSERT_EQ(Helpers::FrontOutBack8(f, c), m8.Out(f, c));
        ASSERT_EQ(Helpers::FrontAtopBack8(f, b, a, c), m8.Atop(f, b, a, c));
        ASSERT_EQ(Helpers::FrontXorBack8(f, b, a, c), m8.Xor(f, b, a, c));
        ASSERT_EQ(Helpers::MultChannel(a, b), m8.Product(a, b));
        ASSERT_EQ(Helpers::AddChannel(a, b), m8.Add(a, b));
        ASSERT_EQ(Helpers::AddNoClipChannel(a, b), m8.AddNoClip(a, b));
        ASSERT_EQ(Helpers::DiffChannel(a, b), m8.Difference(a, b));
        const unsigned short F = w16(), B = w16(), A = w16(), C = w16();
        ASSERT_EQ(Helpers::BlendChannel16(F, B, A), m16.Blend(F, B, A));
        ASSERT_EQ(Helpers::FrontOverBack16(F, B, A), m16.Over(F, B, A));
        ASSERT_EQ(Helpers::FrontInBack16(F, C), m16.In(F, C));
        ASSERT_EQ(Helpers::FrontOutBack16(F, C), m16.Out(F, C));
        ASSERT_EQ(Helpers::FrontAtopBack16(F, B, A, C), m16.Atop(F, B, A, C));
        ASSERT_EQ(Helpers::FrontXorBack16(F, B, A, C), m16.Xor(F, B, A, C));
        ASSERT_EQ(Helpers::MultChannel(A, B), m16.Product(A, B));
        ASSERT_EQ(Helpers::AddChannel(A, B), m16.Add(A, B));
        ASSERT_EQ(Helpers::AddNoClipChannel(A, B), m16.AddNoClip(A, B));
        ASSERT_EQ(Helpers::DiffChannel(A, B), m16.Difference(A, B));
        const auto sF = static_cast<short>(F), sB = static_cast<short>(B);
        const int scaled = ((255 - a) * std::abs(sB) + 127) / 255;
        const int sum = sF + (sB < 0 ? -scaled : scaled);
        ASSERT_EQ(Helpers::FrontOverBack16(sF, sB, a) & 0xFFFF, sum & 0xFFFF) << "wraps to 16 bits";
    }
}

TEST(Helpers, ChannelArithmeticByHand)
{
    using Word = unsigned short;
    EXPECT_EQ(Helpers::FrontOverBack8(200, 200, 0), 255);
    EXPECT_EQ(Helpers::FrontOverBack16(Word{65535}, Word{0}, Word{65535}), 1) << "the front enters unscaled";
    EXPECT_EQ(Helpers::FrontAtopBack16(65535, 65535, 0, 65535), 65533) << "the sum wraps";
    EXPECT_EQ(Helpers::DiffChannel(Word{0}, Word{0x1234}), 0x34) << "the low byte";
}

/// The front that over the back gives the composite, in integers of the depth.
Pixel Uncomposite(int full, const Pixel& c, const Pixel& back)
{
    const bool bytes = full == 255;
    const auto ratio = [&](std::int64_t n, std::int64_t d) -> int {
        if (d == 0) return 0;
        if (d < n) return full;
        return static_cast<int>(bytes ? (2 * n * 255 + d) / (2 * d) : (n * 65535 + (d >> 1)) / d);
    };
    int alpha = c[3] < back[3] || back[3] == full ? 0 : ratio(c[3] - back[3], full - back[3]);
    for (std::size_t i = 0; i < 3; ++i) {
        const bool darker = c[i] < back[i] || back[i] == full;
        alpha =
            std::max(alpha, darker ? ratio(back[i] - c[i], back[i]) : ratio(c[i] - back[i], full - back[i]));
    }
    Pixel front{0, 0, 0, alpha};
    if (alpha == 0) return front; // the composite is its back
    const int shift = bytes ? 15 : 31;
    const std::int64_t scale =
        bytes ? std::llround(255.0 / alpha * 32768.0) : ((std::int64_t{65535} << 31) + (alpha >> 1)) / alpha;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int64_t base = back[3] == 0 ? 0 : back[i];
        const std::int64_t half = std::int64_t{1} << (shift - 1);
        const std::int64_t value = base + (((c[i] - base) * scale + half) >> shift);
        front[i] = static_cast<int>(std::clamp<std::int64_t>(value, 0, full));
    }
    return front;
}

template <class Sample, class Function>
void CheckUncomposite(Function function, int full)
{
    std::mt19937 random(2);
    for (int round = 0; round < 100000; ++round) {
        Pixel c, b;
        for (int& v : c)
            v = RandomSample(random, full);
        for (int& v : b)
            v = RandomSample(random, full);
        if (round % 8 == 0) b = c;
        const auto s = [](int v) { return static_cast<Sample>(v); };
        Sample r = 0, g = 0, bl = 0, a = 0;
        function(s(c[0]), s(c[1]), s(c[2]), s(c[3]), s(b[0]), s(b[1]), s(b[2]), s(b[3]), r, g, bl, a);
        ASSERT_EQ((Pixel{r, g, bl, a}), Uncomposite(full, c, b))
            << c[0] << ' ' << c[1] << ' ' << c[2] << ' ' << c[3] << " on " << b[0] << ' ' << b[1] << ' '
            << b[2] << ' ' << b[3];
    }
}

TEST(Helpers, UncompositeFindsTheModelsFront)
{
    CheckUncomposite<unsigned char>(Helpers::Uncomposite8, 255);
    CheckUncomposite<unsigned short>(Helpers::Uncomposite16, 65535);
}

TEST(Helpers, MemCopyCopiesTheRangeAlone)
{
    std::mt19937 random(3);
    for (const std::size_t bytes : {0U, 1U, 31U, 32U, 95U, 96U, 97U, 127U, 255U, 4095U, 4096U, 4097U, 20001U})
        for (std::size_t from = 0; from < 33; from += 11)
            for (std::size_t to = 0; to < 34; ++to) {
                std::vector<unsigned char> source(bytes + 64);
                for (unsigned char& byte : source)
                    byte = static_cast<unsigned char>(random());
                std::vector<unsigned char> target(bytes + 64, 0xA5);
                std::vector<unsigned char> expected = target;
                std::copy_n(&source[from], bytes, &expected[to]);
                vfILSIMDMemCopy(&source[from], &target[to], bytes);
                ASSERT_EQ(target, expected) << bytes << " bytes from " << from << " to " << to;
            }
}

TEST(Helpers, ModePredicates)
{
    for (unsigned long mode = 0; mode < 0x400; ++mode) {
        vfILCopyImg p;
        EXPECT_EQ(p.GetProcessingMode(), 7U);
        p.SetProcessingMode(mode);
        const unsigned long channels = mode % 16;
        ASSERT_EQ(p.IsRedChannelProcessed() != 0, channels % 2 == 1);
        ASSERT_EQ(p.IsGreenChannelProcessed() != 0, channels / 2 % 2 == 1);
        ASSERT_EQ(p.IsBlueChannelProcessed() != 0, channels / 4 % 2 == 1);
        ASSERT_EQ(p.IsAlphaChannelProcessed() != 0, channels >= 8);
        ASSERT_EQ(p.IsOnlyRGBChannelProcessed() != 0, channels == 7);
        ASSERT_EQ(p.IsOnlyAlphaChannelProcessed() != 0, channels == 8);
        ASSERT_EQ(p.IsAllChannelProcessed() != 0, channels == 15);
        ASSERT_EQ(p.IsNoneChannelProcessed() != 0, channels == 0);
    }
}

// A copy has the parameters and the pictures, but neither the mode nor the interruption nor the last error.
TEST(Helpers, ACopyStartsWithItsOwnRoot)
{
    GuardedImage image(PXFormat_RGBA32, 3, 3);
    vfILAtopImage atop;
    volatile long flag = 1;
    atop.SetProcessingMode(0xF);
    atop.SetInterruptFct(nullptr, &flag);
    atop.SetLastError(vfILError(0x10001));
    atop.SetOutputImg(&image);
    atop.SetInputOffset({4, 5});
    atop.SetExtraTransparency(0.25);
    atop.SetMask(1, 2, 3, 3, &image, PXImageChannel_ALPHA);
    const auto check = [&](const vfILAtopImage& copy) {
        EXPECT_EQ(copy.GetProcessingMode(), 7U);
        EXPECT_EQ(copy.MustInterrupt(), 0);
        EXPECT_TRUE(copy.GetLastError().IsNoError());
        EXPECT_EQ(copy.GetOutputImg(), &image);
        EXPECT_EQ(copy.GetROI(), vfILBbox2l(0, 0, 3, 3));
        EXPECT_EQ(copy.GetInputOffset(), vfILVector2l(4, 5));
        EXPECT_EQ(copy.GetExtraTransparency(), 0.25);
        IPXImage* mask = nullptr;
        PXImageChannel channel = PXImageChannel_MONO;
        EXPECT_EQ(copy.GetMask(&mask, &channel), vfILBbox2l(1, 2, 3, 3));
        EXPECT_EQ(copy.GetMask(nullptr, nullptr), vfILBbox2l(1, 2, 3, 3));
        EXPECT_EQ(mask, &image);
        EXPECT_EQ(channel, PXImageChannel_ALPHA);
    };
    check(vfILAtopImage(atop));
    vfILAtopImage assigned;
    assigned = atop;
    check(assigned);
}

} // namespace

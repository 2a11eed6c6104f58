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

std::vector<int> ModelValues(const Arithmetic& m, int f, int b, int a, int c)
{
    return {m.Blend(f, b, a),  m.Over(f, b, a), m.In(f, c),  m.Out(f, c),       m.Atop(f, b, a, c),
            m.Xor(f, b, a, c), m.Product(a, b), m.Add(a, b), m.AddNoClip(a, b), m.Difference(a, b)};
}

TEST(Helpers, ChannelArithmeticIsTheModels)
{
    using H = Helpers;
    std::mt19937 random(1);
    const auto byte = [&] { return static_cast<unsigned char>(RandomSample(random, 255)); };
    const auto word = [&] { return static_cast<unsigned short>(RandomSample(random, 65535)); };
    for (int round = 0; round < 20000; ++round) {
        const unsigned char f = byte(), b = byte(), a = byte(), c = byte();
        const std::vector<int> values8{H::BlendChannel8(f, b, a),     H::FrontOverBack8(f, b, a),
                                       H::FrontInBack8(f, c),         H::FrontOutBack8(f, c),
                                       H::FrontAtopBack8(f, b, a, c), H::FrontXorBack8(f, b, a, c),
                                       H::MultChannel(a, b),          H::AddChannel(a, b),
                                       H::AddNoClipChannel(a, b),     H::DiffChannel(a, b)};
        ASSERT_EQ(values8, ModelValues({255}, f, b, a, c));
        const unsigned short F = word(), B = word(), A = word(), C = word();
        const std::vector<int> values16{H::BlendChannel16(F, B, A),     H::FrontOverBack16(F, B, A),
                                        H::FrontInBack16(F, C),         H::FrontOutBack16(F, C),
                                        H::FrontAtopBack16(F, B, A, C), H::FrontXorBack16(F, B, A, C),
                                        H::MultChannel(A, B),           H::AddChannel(A, B),
                                        H::AddNoClipChannel(A, B),      H::DiffChannel(A, B)};
        ASSERT_EQ(values16, ModelValues({65535}, F, B, A, C));
        const auto sF = static_cast<short>(F), sB = static_cast<short>(B);
        const int scaled = ((255 - a) * std::abs(sB) + 127) / 255;
        const int sum = sF + (sB < 0 ? -scaled : scaled);
        ASSERT_EQ(H::FrontOverBack16(sF, sB, a) & 0xFFFF, sum & 0xFFFF) << "wraps to 16 bits";
    }
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
        for (std::size_t i = 0; i < 4; ++i) {
            c[i] = RandomSample(random, full);
            b[i] = round % 8 == 0 ? c[i] : RandomSample(random, full);
        }
        const auto s = [](int v) { return static_cast<Sample>(v); };
        Sample r = 0, g = 0, bl = 0, a = 0;
        function(s(c[0]), s(c[1]), s(c[2]), s(c[3]), s(b[0]), s(b[1]), s(b[2]), s(b[3]), r, g, bl, a);
        ASSERT_EQ((Pixel{r, g, bl, a}), Uncomposite(full, c, b))
            << testing::PrintToString(c) << " on " << testing::PrintToString(b);
    }
}

TEST(Helpers, UncompositeFindsTheModelsFront)
{
    CheckUncomposite<unsigned char>(Helpers::Uncomposite8, 255);
    CheckUncomposite<unsigned short>(Helpers::Uncomposite16, 65535);
}

TEST(Helpers, ModePredicates)
{
    vfILCopyImg p;
    EXPECT_EQ(p.GetProcessingMode(), 7U);
    for (unsigned long mode = 0; mode < 0x400; ++mode) {
        p.SetProcessingMode(mode);
        const unsigned long channels = mode % 16;
        ASSERT_EQ(p.IsRedChannelProcessed() + 2 * p.IsGreenChannelProcessed() +
                      4 * p.IsBlueChannelProcessed() + 8 * p.IsAlphaChannelProcessed(),
                  static_cast<int>(channels));
        ASSERT_EQ(p.IsOnlyRGBChannelProcessed(), channels == 7);
        ASSERT_EQ(p.IsOnlyAlphaChannelProcessed(), channels == 8);
        ASSERT_EQ(p.IsAllChannelProcessed(), channels == 15);
        ASSERT_EQ(p.IsNoneChannelProcessed(), channels == 0);
    }
}

// Mode, interruption, last error and arithmetic are each processor's own, whatever it is a copy of.
TEST(Helpers, ACopyKeepsItsOwnRoot)
{
    struct Open : vfILAtopImage {
        using vfILAtopImage::m_simdAvailable;
    };
    GuardedImage image(PXFormat_RGBA32, 3, 4);
    volatile long others = 0, own = 1;
    Open atop, assigned;
    atop.m_simdAvailable = 0;
    atop.SetProcessingMode(0xF);
    atop.SetInterruptFct(nullptr, &others);
    atop.SetLastError(vfILError(0x10001));
    atop.SetMask(1, 2, 3, 4, &image, PXImageChannel_ALPHA);
    assigned.SetProcessingMode(3);
    assigned.SetInterruptFct(nullptr, &own);
    assigned.SetLastError(vfILError(0x20001));
    assigned = atop;
    Open copied(atop);
    others = 1;
    EXPECT_EQ(copied.GetProcessingMode(), 7U);
    EXPECT_EQ(copied.MustInterrupt(), 0);
    EXPECT_TRUE(copied.GetLastError().IsNoError());
    EXPECT_EQ(assigned.GetProcessingMode(), 3U);
    EXPECT_EQ(assigned.MustInterrupt(), 1);
    EXPECT_EQ(assigned.GetLastError().GetErrorCode(), 0x20001U);
    for (const Open* copy : {&assigned, &copied}) {
        EXPECT_EQ(copy->m_simdAvailable, 1) << "fast unless told otherwise";
        EXPECT_EQ(copy->GetMask(nullptr, nullptr), vfILBbox2l(1, 2, 3, 4));
    }
}

} // namespace

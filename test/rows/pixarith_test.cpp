/// \file
/// The rounding rules against their definitions in double and 64-bit arithmetic.
#include "il/rows/pixarith.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace vfil {
namespace {

using A8 = Arith<std::uint8_t>;
using A16 = Arith<std::uint16_t>;

int Nearest(double v)
{
    return static_cast<int>(std::floor(v + 0.5));
}

/// A numerator of 32 bits over 65535 as a rounded double, and no more than a sample holds.
std::uint16_t RatioInDouble(std::uint64_t numerator)
{
    const double x = static_cast<double>(numerator & 0xFFFFFFFFu) * 1.5259021896696422e-05 + 0.5;
    return static_cast<std::uint16_t>(std::min(x, 65535.0));
}

TEST(PixArith, EveryPairOfBytes)
{
    for (int a = 0; a < 256; ++a) {
        for (int b = 0; b < 256; ++b) {
            const auto x = static_cast<std::uint8_t>(a);
            const auto y = static_cast<std::uint8_t>(b);
            const int product = Nearest(a * b / 255.0);
            ASSERT_EQ(A8::Mult(x, y), product) << a << " " << b;
            ASSERT_EQ(InvNormMult8(x, y), 255 - Nearest((255 - a) * (255 - b) / 255.0)) << a << " " << b;
            ASSERT_EQ(NormDiv8(x, y), b == 0 ? 0 : std::min(255, Nearest(255.0 * a / b))) << a << " " << b;
            ASSERT_EQ(HueDiv8(x, y), b == 0 ? 0 : std::min(255, Nearest(255.0 * a / (6.0 * b))))
                << a << " " << b;
            ASSERT_EQ(SignedNormMult(x, -b), -product) << a << " " << b;
            ASSERT_EQ(A8::Add(x, y), std::min(255, a + b)) << a << " " << b;
            ASSERT_EQ(A8::Diff(x, y), std::abs(a - b)) << a << " " << b;
            ASSERT_EQ(A8::AddNoClip(x, y), Nearest(a * (255 - b) / 255.0) + b) << a << " " << b;
            ASSERT_EQ(A8::Blend(x, x, y), a) << "a blend of equals, amount " << b;
        }
    }
}

TEST(PixArith, RatioTurnsWhereTheDoubleDoes)
{
    // Both forms never fall, so that agreeing on the two sides of each step they agree everywhere.
    for (std::uint64_t step = 0; step < 65535; ++step) {
        const std::uint64_t below = step * 65535 + 32767;
        for (const std::uint64_t n : {below, below + 1}) {
            ASSERT_EQ(A16::Ratio(static_cast<std::uint32_t>(n)), RatioInDouble(n)) << n;
            ASSERT_EQ(A16::Ratio(static_cast<std::uint32_t>(n)), step + (n - below)) << n;
        }
    }
    EXPECT_EQ(A16::Ratio(0xFFFFFFFF), 65535);
}

TEST(PixArith, SixteenBitFormulas)
{
    std::mt19937 random(1);
    const auto sample = [&random] {
        const auto bits = random();
        const auto inner = static_cast<std::uint16_t>(bits >> 16);
        return bits % 4 == 0 ? std::uint16_t{0} : bits % 4 == 1 ? std::uint16_t{65535} : inner;
    };
    for (int i = 0; i < 200000; ++i) {
        const std::uint16_t F = sample(), B = sample(), A = sample(), C = sample();
        const std::uint64_t f = F, b = B, a = A, c = C, full = 65535;
        ASSERT_EQ(A16::Mult(F, B), RatioInDouble(f * b));
        ASSERT_EQ(A16::Blend(F, B, A), RatioInDouble(f * a + (full - a) * b));
        ASSERT_EQ(A16::FrontOverBack(F, B, A), RatioInDouble(f + (full - a) * b))
            << f << " " << b << " " << a;
        ASSERT_EQ(A16::FrontInBack(F, C), RatioInDouble(f * c));
        ASSERT_EQ(A16::FrontOutBack(F, C), RatioInDouble(f * (full - c)));
        ASSERT_EQ(A16::FrontAtopBack(F, B, A, C), RatioInDouble((full - a) * b + c * f));
        ASSERT_EQ(A16::FrontXorBack(F, B, A, C), RatioInDouble((full - a) * b + (full - c) * f));
        ASSERT_EQ(A16::AddNoClip(F, B), RatioInDouble((full - b) * f + b));
    }
}

TEST(PixArith, WorkedValues)
{
    EXPECT_EQ(NormDiv8(1, 2), 128);
    EXPECT_EQ(NormDiv8(5, 0), 0);
    EXPECT_EQ(A8::FrontOverBack(200, 200, 0), 255);
    EXPECT_EQ(A16::FrontOverBack(65535, 0, 65535), 1);
    EXPECT_EQ(A16::FrontOverBack(65535, 65535, 0), 65535);
    EXPECT_EQ(A16::FrontAtopBack(65535, 65535, 0, 65535), 65533);
    EXPECT_EQ(A16::Diff(0, 0x1234), 0x34);
    EXPECT_EQ(A16::Add(65535, 1), 65535);
    EXPECT_EQ(A8::Brightness(255, 255, 255), 255u);
    EXPECT_EQ(A8::Brightness(255, 0, 0), 76u);
    EXPECT_EQ(A16::Brightness(65535, 65535, 65535), 65535u);
}

TEST(PixArith, RealNumbersBecomeSamples)
{
    const double inf = std::numeric_limits<double>::infinity();
    EXPECT_EQ(RoundToSample<std::uint8_t>(127.5), 128);
    EXPECT_EQ(RoundToSample<std::uint8_t>(-3), 0);
    EXPECT_EQ(RoundToSample<std::uint8_t>(383), 255);
    EXPECT_EQ(RoundToSample<std::uint8_t>(std::nan("")), 0);
    EXPECT_EQ(RoundToSample<std::uint16_t>(1e300), 65535);
    EXPECT_EQ(RoundHalfAway(-2.5), -3);
    EXPECT_EQ(RoundHalfAway(2.5), 3);
    EXPECT_EQ(RoundHalfAway(inf), std::numeric_limits<std::int32_t>::max());
    EXPECT_EQ(RoundHalfAway(-inf), std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(RoundHalfAway(2147483646.5), std::numeric_limits<std::int32_t>::max());
}

} // namespace
} // namespace vfil

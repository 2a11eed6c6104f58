/// \file
/// The way from real numbers and 32-bit numerators to samples. The products and sums of samples are checked
/// through the tables and the operators.
#include "il/rows/pixarith.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace vfil {
namespace {

TEST(PixArith, RatioTurnsWhereTheDoubleDoes)
{
    // Both forms never fall, so that agreeing on the two sides of each step they agree everywhere.
    for (std::uint64_t step = 0; step < 65535; ++step) {
        const std::uint64_t below = step * 65535 + 32767;
        for (const std::uint64_t n : {below, below + 1}) {
            const double quotient = static_cast<double>(n) * (1.0 / 65535) + 0.5;
            ASSERT_EQ(Arith<std::uint16_t>::Ratio(static_cast<std::uint32_t>(n)), std::floor(quotient)) << n;
        }
    }
    EXPECT_EQ(Arith<std::uint16_t>::Ratio(0xFFFFFFFF), 65535);
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

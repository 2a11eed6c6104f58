#include <vfil/tables.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

/// The nearest whole number, halves upward. The quotients of bytes that end in a half are exact in a double.
int Nearest(double value)
{
    return static_cast<int>(std::floor(value + 0.5));
}

int Quotient(int a, double b)
{
    return b == 0 ? 0 : std::min(255, Nearest(a * 255 / b));
}

TEST(Tables, HoldTheRoundedRealNumbers)
{
    for (unsigned a = 0; a < 256; ++a) {
        for (unsigned b = 0; b < 256; ++b) {
            SCOPED_TRACE(testing::Message() << a << ", " << b);
            ASSERT_EQ(ilNormMult[a][b], Nearest(a * b / 255.0));
            ASSERT_EQ(ilInvNormMult[a][b], Nearest(a + b - a * b / 255.0));
            ASSERT_EQ(ilNormDiv[a][b], Quotient(static_cast<int>(a), b));
            ASSERT_EQ(ilHueTable[a][b], Quotient(static_cast<int>(a), 6.0 * b));
        }
    }
}

} // namespace

#include "support/converters.h"

#include <vfil/fields.h>

#include <gtest/gtest.h>

#include <cmath>

using namespace vfil::test;

namespace {

/// One recursion over samples that lie \p step apart.
void Smooth(std::vector<double>& v, long first, long step, long count, double alpha)
{
    const auto at = [&](long i) -> double& { return v[static_cast<std::size_t>(first + i * step)]; };
    for (long i = 1; i < count; ++i)
        at(i) = (at(i) - at(i - 1)) * alpha + at(i - 1);
}

Bytes Model(const Bytes& in, long width, long height, double horizontal, double vertical, long rows)
{
    std::vector<double> v(in.begin(), in.end());
    for (long c = 0; c < 4; ++c) {
        for (long y = 0; y < rows; ++y) {
            Smooth(v, y * width * 4 + c, 4, width, horizontal);
            Smooth(v, (y * width + width - 1) * 4 + c, -4, width, horizontal);
        }
        for (long x = 0; x < width; ++x) {
            Smooth(v, x * 4 + c, width * 4, height, vertical);
            Smooth(v, ((height - 1) * width + x) * 4 + c, -width * 4, height, vertical);
        }
    }
    Bytes out;
    for (const double value : v)
        out.push_back(static_cast<std::uint8_t>(std::clamp(std::nearbyint(value), 0.0, 255.0)));
    return out;
}

TEST(TwoTapIIR, RowsThenColumnsBothWays)
{
    std::mt19937 random(8);
    for (const double horizontal : {0.5, 0.0, 1.0, 0.3, 1.7})
        for (const double vertical : {0.5, 0.0, 1.0, 0.11})
            for (const long width : {1, 2, 9, 40})
                for (const long height : {1, 2, 7}) {
                    GuardedImage in(PXFormat_RGBA32, width, height), out(PXFormat_RGBA32, width, height);
                    in.Randomise(random);
                    vfIL2TapIIR p;
                    if (horizontal != 0.5 || vertical != 0.5) p.SetAlphas(horizontal, vertical);
                    p.SetInputImg(&in);
                    p.SetOutputImg(&out);
                    ASSERT_EQ(p.Verify(), VFIL_SUCCESS);
                    ASSERT_EQ(p.Execute(), VFIL_SUCCESS);
                    EXPECT_EQ(Mismatch(Model(in.Bytes(), width, height, horizontal, vertical, height), out),
                              "")
                        << width << " x " << height << ": " << horizontal << ", " << vertical;
                    p.SetOutputImg(&in);
                    ASSERT_EQ(p.Execute(), VFIL_SUCCESS);
                    EXPECT_EQ(in.Bytes(), out.Bytes()) << "in place";
                }
}

TEST(TwoTapIIR, FailuresAndInterruption)
{
    GuardedImage in(PXFormat_RGBA32, 5, 4), out(PXFormat_RGBA32, 5, 4), small(PXFormat_RGBA32, 4, 4);
    GuardedImage rgb(PXFormat_RGB24, 5, 4), empty(PXFormat_RGBA32);
    const struct {
        IPXImage* in;
        IPXImage* out;
        unsigned long code;
    } cases[] = {{nullptr, nullptr, 0x1000B}, {&in, nullptr, 0x10002}, {&empty, &out, 0x1000C},
                 {&rgb, &rgb, 0x10034},       {&in, &rgb, 0x1000D},    {&in, &small, 0x10003},
                 {&in, &empty, 0x10003}};
    for (const auto& [input, output, code] : cases) {
        vfIL2TapIIR p;
        p.SetInputImg(input);
        p.SetOutputImg(output);
        EXPECT_EQ(p.Verify(), VFIL_FAILURE);
        EXPECT_EQ(p.GetLastError().GetErrorCode(), code);
        EXPECT_EQ(p.Execute(), VFIL_FAILURE) << std::hex << code;
    }

    std::mt19937 random(9);
    in.Randomise(random);
    vfIL2TapIIR p;
    p.SetAlphas(0.5, 1.0);
    p.SetInputImg(&in);
    p.SetOutputImg(&out);
    g_pollsLeft = 2;
    p.SetInterruptFct(StopAfterPolls, nullptr);
    EXPECT_EQ(p.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(Mismatch(Model(in.Bytes(), 5, 4, 0.5, 1.0, 3), out), "") << "later rows as the input";
}

} // namespace

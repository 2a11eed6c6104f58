#include "support/blurscene.h"
#include "support/processors.h"
#include "support/refusals.h"

#include "il/vfcore/blurrecursive.h"

#include <vfil/blur.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace vfil::test;

namespace {

const GUID* const kFormatIds[] = {&PXFormat_RGBA32, &PXFormat_RGBA64, &PXFormat_Mono8, &PXFormat_Mono16};

/// The kernel of a disc or a Gaussian, in double.
std::vector<double> KernelOf(vfILBlurType type, double rx, double ry, double degree)
{
    std::vector<double> kernel;
    double sum = 0;
    const long nx = static_cast<long>(rx), ny = static_cast<long>(ry);
    for (long y = -ny; y <= ny; ++y)
        for (long x = -nx; x <= nx; ++x) {
            const auto fx = static_cast<double>(x), fy = static_cast<double>(y);
            const bool inside = fx * fx * ry * ry + fy * fy * rx * rx <= rx * rx * ry * ry;
            const double sx = rx * degree, sy = ry * degree;
            kernel.push_back(
                type == VFIL_BLUR_DISC ? inside : std::exp(-0.5 * (fx * fx / sx / sx + fy * fy / sy / sy)));
            sum += kernel.back();
        }
    for (double& weight : kernel)
        weight *= (type == VFIL_BLUR_DISC ? degree : 1) / sum;
    if (type == VFIL_BLUR_DISC) kernel[kernel.size() / 2] = 1 - (sum - 1) * degree / sum;
    return kernel;
}

/// One direction of a recursion by its definition: fixed point with 16 fraction bits, or double.
struct Recursion {
    double current, flat, tail, back;
    long m, n;
    bool gauss;

    Recursion(bool isGauss, double s, long radius) : m(0), n(radius), gauss(isGauss)
    {
        if (!gauss) {
            const double alpha = (std::sqrt(8 * s * s + 4) - 2) / (2 * s * s);
            back = 1 - alpha;
            current = alpha / (1 - std::pow(back, static_cast<double>(n) + 1));
            flat = 0;
            tail = std::pow(back, static_cast<double>(n) + 1) * current;
            return;
        }
        const double t =
            std::min(s >= 5 ? (s - 5) * 1.6 + 7.3 : std::max(0.0, 1.5 * s - 0.2), static_cast<double>(n));
        back = std::exp(-2 / s);
        m = static_cast<long>(t);
        const double e = std::pow(back, 1 - (t - static_cast<double>(m)));
        double skirt = 0;
        for (long i = m + 1; i <= n; ++i)
            skirt = skirt * back + e;
        current = 1 / (static_cast<double>(m) + 1 + skirt);
        flat = e * current;
        tail = std::pow(back, static_cast<double>(n - m)) * flat;
    }

    std::vector<float> Pass(const std::vector<float>& x) const
    {
        std::vector<float> y(x.size() - static_cast<std::size_t>(n));
        double box = 0, last = 0;
        for (long i = 0; i < static_cast<long>(x.size()); ++i) {
            const auto at = [&](long k) { return k < 0 ? 0.0 : double{x[static_cast<std::size_t>(k)]}; };
            if (gauss) {
                box += (at(i) - at(i - m - 1)) * current;
                last = last * back + at(i - m - 1) * flat - at(i - n - 1) * tail;
            } else {
                last = at(i) * current - at(i - n - 1) * tail + last * back;
            }
            if (i >= n) y[x.size() - 1 - static_cast<std::size_t>(i)] = static_cast<float>(box + last);
        }
        return y;
    }
    std::vector<long> Pass(const std::vector<long>& x) const
    {
        const auto fixed = [](double v) { return static_cast<long>(std::floor(v * 65536 + 0.5)); };
        const long A = fixed(current), E = fixed(flat), C = fixed(tail), P = fixed(back);
        std::vector<long> y(x.size() - static_cast<std::size_t>(n));
        long box = gauss ? 0x8000 : 0, last = 0;
        for (long i = 0; i < static_cast<long>(x.size()); ++i) {
            const auto at = [&](long k) { return k < 0 ? 0 : x[static_cast<std::size_t>(k)]; };
            if (gauss) {
                box += (at(i) - at(i - m - 1)) * A;
                last = (last >> 16) * P + at(i - m - 1) * E - at(i - n - 1) * C;
            } else {
                last = (at(i) * A - at(i - n - 1) * C + 0x8000 + last * P) >> 16;
            }
            const long result = gauss ? (box + last) >> 16 : last;
            if (i >= n) y[x.size() - 1 - static_cast<std::size_t>(i)] = result;
        }
        return y;
    }
    template <class Value>
    std::vector<Value> Both(const std::vector<Value>& x) const
    {
        return n == 0 ? x : Pass(Pass(x));
    }
};

void Apply(vfILBlurImg& blur, vfILBlurType type, float degree)
{
    blur.SetType(type);
    blur.SetDegree(degree);
}

TEST(Blur, BoxFollowsItsDefinition)
{
    std::mt19937 random(1);
    for (int i = 0; i < 120 && !HasFatalFailure(); ++i) {
        const bool isTall = i >= 117; // so that the run comes in bands
        BlurScene scene(random, *kFormatIds[random() % 2 * 2], RandomIn(random, 1, isTall ? 2000 : 60),
                          isTall ? 140 : RandomIn(random, 1, 12));
        Switched<vfILBlurImg> blur(random() % 4);
        const long rx = RandomIn(random, 1,
                                 isTall  ? 2
                                 : i % 5 ? 7
                                         : 90),
                   ry = RandomIn(random, 0, isTall ? 1 : 9);
        Apply(blur, VFIL_BLUR_BOX, 0.3F);
        if (i % 2) scene.Mask(random);
        scene.Arrange(blur, static_cast<float>(rx) + 0.5F, static_cast<float>(ry));
        const long width = 2 * rx + 1, height = 2 * ry + 1;
        const auto scale = static_cast<std::uint64_t>(4294967295.0 / static_cast<double>(width * height));
        SCOPED_TRACE(testing::Message() << "case " << i);
        scene.Check(blur, [&](const WindowSample& at) {
            std::uint64_t sum = 0;
            for (long k = 0; k < width * height; ++k)
                sum += static_cast<std::uint64_t>(at(k % width, k / width));
            return static_cast<int>((sum * scale + 0x80000000U) >> 32);
        });
    }
}

// Sums of a window beyond 32 bits, and the same in all samples of a flat picture.
TEST(Blur, BoxOfAHugeRadius)
{
    GuardedImage image(PXFormat_Mono8, 3, 2);
    vfILBlurImg blur;
    blur.SetInputImg(&image);
    blur.SetOutputImg(&image);
    blur.SetType(VFIL_BLUR_BOX);
    blur.SetEdgeMode(VFIL_EDGE_CLAMP);
    blur.SetRadius(2100);
    for (long i = 0; i < 6; ++i)
        image.Set(i % 3, i / 3, {i % 3 == 0 ? 0 : 255});
    ASSERT_EQ(blur.Execute(), VFIL_SUCCESS);
    for (long i = 0; i < 6; ++i)
        EXPECT_NEAR(image.Get(i % 3, i / 3)[0], 127.5, 0.6);
}

// A definition in double, from which rounding may be one off: two passes of fixed point round three times.
TEST(Blur, DiscAndGaussFollowTheirDefinitions)
{
    std::mt19937 random(2);
    long differences = 0, samples = 0;
    for (int i = 0; i < 120; ++i) {
        BlurScene scene(random, *kFormatIds[i % 4], RandomIn(random, 3, 30), RandomIn(random, 3, 12));
        Switched<vfILBlurImg> blur(random() % 2);
        const auto type = i % 3 == 0 ? VFIL_BLUR_DISC : i % 3 == 1 ? VFIL_BLUR_GAUSS : VFIL_BLUR_FAST_GAUSS;
        const auto rx = static_cast<float>(RandomIn(random, 4, 19)) / 4;
        const auto ry = static_cast<float>(RandomIn(random, type == VFIL_BLUR_DISC ? 4 : 1, 19)) / 4;
        const auto degree = static_cast<float>(RandomIn(random, 1, 8)) / 8;
        scene.Arrange(blur, rx, ry);
        Apply(blur, type, degree);
        const std::vector<double> kernel = KernelOf(type, rx, ry, degree);
        const long width = 2 * scene.run.radiusX + 1;
        const Snapshot expected =
            ModelSpatialRun(scene.run, scene.input, scene.output, [&](const WindowSample& at) {
                double sum = 0.5;
                for (std::size_t k = 0; k < kernel.size(); ++k)
                    sum += kernel[k] * at(static_cast<long>(k) % width, static_cast<long>(k) / width);
                return static_cast<int>(std::min<double>(sum, scene.input.Format().Full()));
            });
        ASSERT_EQ(blur.Verify(), VFIL_SUCCESS);
        EXPECT_EQ(blur.GetKernel(), nullptr);
        ASSERT_EQ(blur.Execute(), VFIL_SUCCESS);
        for (long k = 0; k < scene.input.Width() * scene.input.Height(); ++k)
            for (std::size_t c = 0; c < static_cast<std::size_t>(scene.input.Format().channels); ++c) {
                const long x = k % scene.input.Width(), y = k / scene.input.Width();
                const int off = std::abs(expected.At(x, y)[c] - scene.output.Get(x, y)[c]);
                ASSERT_LE(off, 1) << "case " << i << " type " << type;
                differences += off;
                ++samples;
            }
    }
    EXPECT_LT(differences, samples / 50);
}

// Byte for byte, though the run makes its rows from the last one up, and in parts.
TEST(Blur, RecursiveBlursFollowTheirDefinitions)
{
    std::mt19937 random(3);
    for (int i = 0; i < 160 && !HasFatalFailure(); ++i) {
        const bool isTall = i >= 150; // so that the frame holds a band only
        const GUID& format = *kFormatIds[i % 4];
        BlurScene scene(random, format, isTall ? RandomIn(random, 900, 1500) : RandomIn(random, 1, 40),
                          isTall ? 150 : RandomIn(random, 1, 30));
        Switched<vfILBlurImg> blur(random() % 4);
        const auto type = static_cast<vfILBlurType>(RandomIn(random, 4, 7));
        const auto rx = static_cast<float>(RandomIn(random, i % 5 ? 4 : 1, isTall ? 9 : 50)) / 4;
        const auto ry = static_cast<float>(RandomIn(random, rx < 1 ? 4 : 1, isTall ? 9 : 50)) / 4;
        const auto degree = static_cast<float>(RandomIn(random, 1, 8)) / 8;
        if (type == VFIL_BLUR_FAST_GAUSS && rx < 5 && ry < 5) continue;
        Apply(blur, type, degree);
        if (random() % 2) scene.Mask(random);
        scene.Arrange(blur, rx, ry);
        const bool gauss = type >= VFIL_BLUR_FAST_GAUSS;
        const bool fixed = type % 2 == 0 && scene.input.Format().sampleBytes == 1;
        const Recursion across(gauss, double{rx} * degree, scene.run.radiusX);
        const Recursion down(gauss, double{ry} * degree, scene.run.radiusY);
        const vfILBbox2l valid = scene.run.regions.roi;
        // What the filters see of a channel: the effect box and what its windows reach, columns first.
        const long width = valid.GetSizeX() + 2 * scene.run.radiusX,
                   height = valid.GetSizeY() + 2 * scene.run.radiusY;
        const auto blurred = [&](std::size_t c, auto value) {
            using Value = decltype(value);
            std::vector<std::vector<Value>> columns, rows(static_cast<std::size_t>(valid.GetSizeY()));
            for (long x = 0; x < width; ++x) {
                std::vector<Value> column;
                for (long y = 0; y < height; ++y) {
                    const long sx = EdgeIndex(scene.run.edgeMode, valid.GetOffsetX() + x - scene.run.radiusX,
                                              scene.input.Width());
                    const long sy = EdgeIndex(scene.run.edgeMode, valid.GetOffsetY() + y - scene.run.radiusY,
                                              scene.input.Height());
                    column.push_back(static_cast<Value>(sx < 0 || sy < 0 ? 0 : scene.input.Get(sx, sy)[c]) *
                                     (fixed ? 64 : 1));
                }
                columns.push_back(down.Both(column));
            }
            for (std::size_t y = 0; y < rows.size(); ++y) {
                for (const auto& column : columns)
                    rows[y].push_back(column[y]);
                rows[y] = across.Both(rows[y]);
            }
            return rows;
        };
        const int full = scene.input.Format().Full();
        GuardedImage result(format, scene.input.Width(), scene.input.Height());
        for (std::size_t c = 0; c < static_cast<std::size_t>(scene.input.Format().channels); ++c) {
            const auto put = [&](const auto& rows, auto round) {
                for (long y = 0; y < valid.GetSizeY(); ++y)
                    for (long x = 0; x < valid.GetSizeX(); ++x) {
                        Pixel pixel = result.Get(x + valid.GetOffsetX(), y + valid.GetOffsetY());
                        pixel[c] = round(rows[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)]);
                        result.Set(x + valid.GetOffsetX(), y + valid.GetOffsetY(), pixel);
                    }
            };
            if (fixed)
                put(blurred(c, 0L), [](long v) { return static_cast<int>(std::clamp(v >> 6, 0L, 255L)); });
            else
                put(blurred(c, 0.0F), [full](double v) {
                    return static_cast<int>(std::clamp(std::floor(v + 0.5), 0.0, double(full)));
                });
        }
        const Snapshot expected = ModelRun(scene.run.regions, scene.input, result, scene.output,
                                           [&](const Pixel& p, const Pixel& q, int mask) {
                                               return SelectAndMix(full, scene.input.Format().channels,
                                                                   scene.run.regions.mode, p, q, mask);
                                           });
        SCOPED_TRACE(testing::Message() << "case " << i << " type " << type << " radius " << rx << ' ' << ry);
        scene.Check(blur, expected);
    }
}

// Gain 1 and a symmetric response, from far below a pixel's deviation to far above.
TEST(Blur, RecursiveFiltersHaveUnitGain)
{
    using vfil::FloatRecursion;
    for (const double sigma : {1e-9, 1e-3, 0.4, 1.0, 4.9, 5.0, 33.3, 900.0})
        for (const long radius : {1L, 2L, 9L, 100L})
            for (const bool gauss : {false, true}) {
                vfil::vfILBlurRecursiveFilter<FloatRecursion> filter;
                ASSERT_TRUE(filter.SetUp(gauss ? vfil::DesignFastGauss(sigma, radius)
                                               : vfil::DesignExponential(sigma, radius),
                                         vfil::kSequenceGroup, true));
                const long length = 6 * radius + 1;
                std::vector<float> values(static_cast<std::size_t>(length) * vfil::kSequenceGroup),
                    temporary(values);
                const auto at = [&](long i) -> float& {
                    return values[static_cast<std::size_t>(i) * vfil::kSequenceGroup + 5];
                };
                at(3 * radius) = 1;
                filter.FilterTwoPass(values.data(), temporary.data(), length);
                double sum = 0;
                for (long i = radius; i < length - radius; ++i) {
                    sum += at(i);
                    EXPECT_NEAR(at(i), at(6 * radius - i), 1e-7);
                }
                EXPECT_NEAR(sum, 1, 2e-6) << sigma << ' ' << radius << ' ' << gauss;
            }
}

TEST(Blur, FlatPicturesStayFlat)
{
    GuardedImage in(PXFormat_RGBA32, 70, 60), out(PXFormat_RGBA32, 70, 60);
    for (long i = 0; i < 70 * 60; ++i)
        in.Set(i % 70, i / 70, {200, 255, 1, 0});
    for (int type = VFIL_BLUR_DISC; type <= VFIL_BLUR_FAST_GAUSS_FLOAT; ++type)
        for (const float radius : {1.5F, 5.0F, 25.0F, 90.0F})
            for (const float degree : {0.3F, 1.0F}) {
                if (type == VFIL_BLUR_DISC && radius > 30) continue;
                vfILBlurImg blur;
                blur.SetInputImg(&in);
                blur.SetOutputImg(&out);
                blur.SetProcessingMode(VFIL_MODE_RGBA);
                blur.SetEdgeMode(VFIL_EDGE_MIRROR);
                blur.SetType(static_cast<vfILBlurType>(type));
                blur.SetRadius(radius, radius / 2);
                blur.SetDegree(degree);
                ASSERT_EQ(blur.Execute(), VFIL_SUCCESS);
                const int slack = type == VFIL_BLUR_EXPONENTIAL || type == VFIL_BLUR_FAST_GAUSS ? 1 : 0;
                for (const auto& [x, y] : {std::pair{0L, 0L}, {69L, 59L}, {33L, 20L}})
                    for (std::size_t c = 0; c < 4; ++c)
                        ASSERT_NEAR(out.Get(x, y)[c], in.Get(x, y)[c], slack)
                            << type << ' ' << radius << ' ' << degree;
            }
}

int g_polls = 0;

int StopAtThird()
{
    return ++g_polls == 3;
}

// A copy looks at no mask, but at the field bits and the interruption. So it does with a radius of its own.
TEST(Blur, NothingToBlurIsACopy)
{
    std::mt19937 random(4);
    GuardedImage in(PXFormat_RGBA64, 5, 6), mask(PXFormat_Mono16, 5, 6);
    in.Randomise(random);
    const struct {
        float rx, ry, degree;
        bool stops;
        int rows;
    } cases[] = {{9, 9, 0, false, 6}, {0.9F, 0.5F, 1, false, 6}, {0, 0, 1, true, 2}};
    for (const auto& c : cases) {
        GuardedImage out(PXFormat_RGBA64, 5, 6);
        vfILBlurImg blur;
        blur.SetInputImg(&in);
        blur.SetOutputImg(&out);
        blur.SetMask({0, 0, 5, 6}, &mask, PXImageChannel_MONO);
        blur.SetRadius(c.rx, c.ry);
        blur.SetDegree(c.degree);
        g_polls = 0;
        if (c.stops) blur.SetInterruptFct(StopAtThird, nullptr);
        ASSERT_EQ(blur.Execute(), VFIL_SUCCESS);
        for (long y = 0; y < 6; ++y)
            EXPECT_EQ(out.Get(2, y), y < c.rows ? in.Get(2, y) : Pixel{}) << y;
    }
}

TEST(Blur, VerifyChecksInOrder)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    GuardedImage rgba(PXFormat_RGBA32, 4, 4), deep(PXFormat_RGBA64, 4, 4), bgr(PXFormat_BGR24, 4, 4);
    const struct {
        unsigned long code;
        GuardedImage* image;
        int type;
        float radius, degree;
    } cases[] = {{0, &rgba, 3, 2, 1},          {0, &deep, 7, 2, 0},           {0x1000D, &deep, 3, 2, 7},
                 {0x1000D, &bgr, 9, 2, 7},     {0x10024, &deep, 0, 2, 7},     {0x10024, &deep, 8, 2, 7},
                 {0x10026, &deep, 1, 2, 1.1F}, {0x10026, &deep, 4, 2, -0.1F}, {0x10026, &rgba, 3, 2, kNaN},
                 {0x10023, &bgr, 1, -1, 7},    {0x10023, &bgr, 1, kNaN, 7},   {0x10023, &bgr, 2, INFINITY, 7},
                 {0x10001, &bgr, 1, 1e9F, 7}};
    for (const auto& c : cases) {
        vfILBlurImg blur;
        blur.SetInputImg(c.image);
        blur.SetOutputImg(c.image);
        blur.SetType(static_cast<vfILBlurType>(c.type));
        blur.SetRadius(c.radius);
        blur.SetDegree(c.degree);
        EXPECT_EQ(blur.Verify() == VFIL_SUCCESS ? 0 : blur.GetLastError().GetErrorCode(), c.code)
            << &c - cases;
    }
    vfILBlurImg blur;
    blur.SetRadiusNormalizedForBlurType(3, 5);
    EXPECT_EQ(blur.GetRadiusY(), 5);
    blur.SetType(VFIL_BLUR_BOX);
    blur.SetRadiusNormalizedForBlurType(3, 5);
    EXPECT_EQ(blur.GetRadiusX(), 1.5F);
}

TEST(Blur, MissingMemoryIsAnError)
{
    std::mt19937 random(5);
    GuardedImage in(PXFormat_RGBA32, 9, 8), out(PXFormat_RGBA32, 9, 8);
    in.Randomise(random);
    const auto check = [&](vfILMonadicSpatialProc& filter, long least) {
        filter.SetInputImg(&in);
        filter.SetOutputImg(&out);
        EXPECT_GE(CountRefusedRuns(filter), least);
    };
    std::vector<float> row(9, 0.1F);
    vfILConvolveImg convolve;
    convolve.SetKernel(row.data(), 4, 0);
    check(convolve, 3);
    for (const auto type :
         {VFIL_BLUR_GAUSS, VFIL_BLUR_BOX, VFIL_BLUR_EXPONENTIAL, VFIL_BLUR_FAST_GAUSS_FLOAT}) {
        vfILBlurImg blur;
        blur.SetType(type);
        blur.SetRadius(6, 3);
        check(blur, 3);
    }
}

} // namespace

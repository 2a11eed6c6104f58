#include "support/allocations.h"
#include "support/filterscene.h"
#include "support/processors.h"

#include "il/loops/blur/recursion.h"

#include <vfil/blur.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace vfil::test;

namespace {

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

    /// One direction: step(now, inner, outer) makes a result of three samples. The results are in reverse,
    /// less those of the warm-up.
    template <class Value, class Step>
    std::vector<Value> Pass(const std::vector<Value>& x, Step step) const
    {
        std::vector<Value> y;
        const auto at = [&](long k) { return k < 0 ? Value{0} : x[static_cast<std::size_t>(k)]; };
        for (long i = 0; i < static_cast<long>(x.size()); ++i) {
            y.push_back(static_cast<Value>(step(at(i), at(i - m - 1), at(i - n - 1))));
            if (i < n) y.clear();
        }
        return {y.rbegin(), y.rend()};
    }
    std::vector<float> Pass(const std::vector<float>& x) const
    {
        double box = 0, last = 0;
        return Pass(x, [&](double now, double inner, double outer) {
            if (gauss) box += (now - inner) * current;
            last = gauss ? last * back + inner * flat - outer * tail
                         : now * current - outer * tail + last * back;
            return box + last;
        });
    }
    std::vector<long> Pass(const std::vector<long>& x) const
    {
        const auto fixed = [](double v) { return static_cast<long>(std::floor(v * 65536 + 0.5)); };
        const long A = fixed(current), E = fixed(flat), C = fixed(tail), P = fixed(back);
        long box = 0x8000, last = 0;
        return Pass(x, [&](long now, long inner, long outer) {
            if (!gauss) return last = (now * A - outer * C + 0x8000 + last * P) >> 16;
            box += (now - inner) * A;
            last = (last >> 16) * P + inner * E - outer * C;
            return (box + last) >> 16;
        });
    }
    template <class Value>
    std::vector<Value> Both(const std::vector<Value>& x) const
    {
        return n == 0 ? x : Pass(Pass(x));
    }
};

/// What the filters make of the box and what its windows reach, columns first. A value is `unit` times a
/// sample; sampleOf(value) rounds.
template <class Value, class SampleOf>
Snapshot Blurred(const EdgedPicture& picture, const vfILBbox2l& box, const Recursion& across,
                 const Recursion& down, Value unit, SampleOf sampleOf)
{
    Snapshot result = picture.picture;
    for (std::size_t c = 0; c < 4; ++c) {
        std::vector<std::vector<Value>> rows(static_cast<std::size_t>(box.GetSizeY()));
        for (long x = -across.n; x < box.GetSizeX() + across.n; ++x) {
            std::vector<Value> column;
            for (long y = -down.n; y < box.GetSizeY() + down.n; ++y)
                column.push_back(static_cast<Value>(picture(box.GetOffsetX() + x, box.GetOffsetY() + y)[c]) *
                                 unit);
            column = down.Both(column);
            for (std::size_t y = 0; y < rows.size(); ++y)
                rows[y].push_back(column[y]);
        }
        for (std::size_t y = 0; y < rows.size(); ++y) {
            long x = box.GetOffsetX();
            for (const Value value : across.Both(rows[y]))
                result.At(x++, box.GetOffsetY() + static_cast<long>(y))[c] = sampleOf(value);
        }
    }
    return result;
}

void Apply(vfILBlurImg& blur, vfILBlurType type, float degree)
{
    blur.SetType(type);
    blur.SetDegree(degree);
}

TEST(Blur, BoxFollowsItsDefinition)
{
    std::mt19937 random(1);
    for (int i = 0; i < 120 && !HasFatalFailure(); ++i) {
        const bool isTall = i >= 114; // so that the run comes in bands
        FilterScene scene(random, *kFilterFormats[random() % 2], RandomIn(random, 1, isTall ? 2000 : 60),
                          isTall ? 140 : RandomIn(random, 1, 12));
        Switched<vfILBlurImg> blur(random() % 4);
        const long rx = RandomIn(random, 1, i % 5 == 0 && !isTall ? 90 : 3);
        const long ry = RandomIn(random, 0, isTall ? 1 : 9);
        Apply(blur, VFIL_BLUR_BOX, 0.3F);
        blur.SetRadius(static_cast<float>(rx) + 0.5F, static_cast<float>(ry));
        scene.Arrange(blur);
        const long width = 2 * rx + 1, height = 2 * ry + 1;
        const auto scale = static_cast<std::uint64_t>(4294967295.0 / static_cast<double>(width * height));
        SCOPED_TRACE(testing::Message() << "case " << i);
        scene.Check(blur, scene.Expected(rx, ry, [&](const WindowSample& at) {
            std::uint64_t sum = 0;
            for (long k = 0; k < width * height; ++k)
                sum += static_cast<std::uint64_t>(at(k % width, k / width));
            return static_cast<int>((sum * scale + 0x80000000U) >> 32);
        }));
    }
}

/// How often a window's axis shows each place of the picture's; the last one is the edge colour's.
std::vector<std::uint64_t> CountPlaces(vfILEdgeMode mode, long centre, long radius, long size)
{
    std::vector<std::uint64_t> counts(static_cast<std::size_t>(size) + 1);
    for (long i = centre - radius; i <= centre + radius; ++i) {
        const long place = EdgeIndex(mode, i, size);
        ++counts[static_cast<std::size_t>(place < 0 ? size : place)];
    }
    return counts;
}

// Also where sums of a window go beyond 32 bits, and where the picture repeats often.
TEST(Blur, BoxesLargerThanThePictureFollowTheirDefinition)
{
    std::mt19937 random(6);
    for (int i = 0; i < 70 && !HasFatalFailure(); ++i) {
        FilterScene scene(random, *kFilterFormats[random() % 2], RandomIn(random, 1, i % 3 ? 7 : 40),
                          RandomIn(random, 1, 9));
        Switched<vfILBlurImg> blur(random() % 4);
        const long most = i % 10 == 1 ? 4000 : i % 2 == 0 ? 300 : 20;
        const long rx = RandomIn(random, 0, most), ry = RandomIn(random, rx == 0 ? 1 : 0, most);
        blur.SetType(VFIL_BLUR_BOX);
        blur.SetRadius(static_cast<float>(rx), static_cast<float>(ry));
        scene.Arrange(blur);
        const auto weights = static_cast<double>((2 * rx + 1) * (2 * ry + 1));
        const auto scale = static_cast<std::uint64_t>(4294967295.0 / weights);
        const EdgedPicture picture = scene.Picture();
        const long width = scene.input.Width(), height = scene.input.Height();
        SCOPED_TRACE(testing::Message() << "case " << i << " radius " << rx << ' ' << ry);
        scene.Check(blur, scene.Expected(Filtered(picture, [&](long x, long y) {
            const auto across = CountPlaces(scene.edgeMode, x, rx, width);
            const auto down = CountPlaces(scene.edgeMode, y, ry, height);
            Pixel pixel{};
            for (std::size_t c = 0; c < 4; ++c) {
                std::uint64_t sum = 0;
                for (long v = 0; v <= height; ++v)
                    for (long u = 0; u <= width; ++u) {
                        const bool isEdge = u == width || v == height;
                        const int value = (isEdge ? picture.edgePixel : picture.picture.At(u, v))[c];
                        sum += across[static_cast<std::size_t>(u)] * down[static_cast<std::size_t>(v)] *
                               static_cast<std::uint64_t>(value);
                    }
                pixel[c] = static_cast<int>((sum * scale + 0x80000000U) >> 32);
            }
            return pixel;
        })));
    }
}

// A definition in double, from which rounding may be one off: two passes of fixed point round three times.
TEST(Blur, DiscAndGaussFollowTheirDefinitions)
{
    std::mt19937 random(2);
    long differences = 0, samples = 0;
    for (int i = 0; i < 120; ++i) {
        FilterScene scene(random, *kFilterFormats[i % 4], RandomIn(random, 3, 30), RandomIn(random, 3, 12));
        scene.DropMask(); // which fixed results mix by a rule of their own
        Switched<vfILBlurImg> blur(random() % 2);
        const auto type = i % 3 == 0 ? VFIL_BLUR_DISC : i % 3 == 1 ? VFIL_BLUR_GAUSS : VFIL_BLUR_FAST_GAUSS;
        const auto rx = static_cast<float>(RandomIn(random, 4, 19)) / 4;
        const auto ry = static_cast<float>(RandomIn(random, type == VFIL_BLUR_DISC ? 4 : 1, 19)) / 4;
        const auto degree = static_cast<float>(RandomIn(random, 1, 8)) / 8;
        Apply(blur, type, degree);
        blur.SetRadius(rx, ry);
        scene.Arrange(blur);
        const std::vector<double> kernel = KernelOf(type, rx, ry, degree);
        const long wholeX = static_cast<long>(rx), width = 2 * wholeX + 1;
        const Snapshot expected = scene.Expected(wholeX, static_cast<long>(ry), [&](const WindowSample& at) {
            double sum = 0.5;
            for (std::size_t k = 0; k < kernel.size(); ++k)
                sum += kernel[k] * at(static_cast<long>(k) % width, static_cast<long>(k) / width);
            return static_cast<int>(std::min<double>(sum, scene.format.Full()));
        });
        ASSERT_EQ(blur.Verify(), VFIL_SUCCESS);
        EXPECT_EQ(blur.GetKernel(), nullptr);
        ASSERT_EQ(blur.Execute(), VFIL_SUCCESS);
        const Snapshot actual(*scene.output);
        for (std::size_t k = 0; k < 4 * actual.pixels.size(); ++k) {
            const int off = std::abs(expected.pixels[k / 4][k % 4] - actual.pixels[k / 4][k % 4]);
            ASSERT_LE(off, 1) << "case " << i << " type " << type;
            differences += off;
            ++samples;
        }
    }
    EXPECT_LT(differences, samples / 100);
}

// Byte for byte, though the run makes its rows from the last one up, and in parts.
TEST(Blur, RecursiveBlursFollowTheirDefinitions)
{
    std::mt19937 random(3);
    for (int i = 0; i < 160 && !HasFatalFailure(); ++i) {
        const bool isTall = i >= 148; // so that the frame holds a band only
        FilterScene scene(random, *kFilterFormats[i % 4],
                          isTall ? RandomIn(random, 900, 1500) : RandomIn(random, 1, 40),
                          isTall ? 150 : RandomIn(random, 1, 30));
        Switched<vfILBlurImg> blur(random() % 4);
        const auto type = static_cast<vfILBlurType>(RandomIn(random, 4, 7));
        const bool isNext = i % 8 == 1; // to the largest radii of a kernel
        const long most = isTall ? 9 : isNext ? 19 : 50;
        const auto rx = static_cast<float>(isNext ? 21 : RandomIn(random, i % 5 ? 4 : 1, most)) / 4;
        const auto ry = static_cast<float>(RandomIn(random, rx < 1 ? 4 : 1, most)) / 4;
        const auto degree = static_cast<float>(RandomIn(random, 1, 8)) / 8;
        if (type == VFIL_BLUR_FAST_GAUSS && rx < 5 && ry < 5) continue;
        Apply(blur, type, degree);
        blur.SetRadius(rx, ry);
        scene.Arrange(blur);
        const bool gauss = type >= VFIL_BLUR_FAST_GAUSS;
        const Recursion across(gauss, double{rx} * degree, static_cast<long>(rx));
        const Recursion down(gauss, double{ry} * degree, static_cast<long>(ry));
        const vfILBbox2l box = vfILBbox2l(0, 0, scene.input.Width(), scene.input.Height()) &
                               scene.regions.roi & scene.regions.maskBox;
        const int full = scene.format.Full();
        const Snapshot result =
            type % 2 == 0 && full == 255
                ? Blurred(scene.Picture(), box, across, down, 64L,
                          [](long v) { return static_cast<int>(std::clamp(v >> 6, 0L, 255L)); })
                : Blurred(scene.Picture(), box, across, down, 1.0F, [full](double v) {
                      return static_cast<int>(std::clamp(std::floor(v + 0.5), 0.0, double(full)));
                  });
        SCOPED_TRACE(testing::Message() << "case " << i << " type " << type << " radius " << rx << ' ' << ry);
        scene.Check(blur, scene.Expected(result));
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

// At the huge radius sums of a window go beyond 32 bits.
TEST(Blur, FlatPicturesStayFlat)
{
    GuardedImage in(PXFormat_RGBA32, 70, 60), out(PXFormat_RGBA32, 70, 60);
    const Pixel pixel{200, 255, 1, 0};
    constexpr int kSlack[] = {0, 0, 0, 1, 1, 0, 1, 0}; // by types: for fixed point, and a truncated scale
    for (long i = 0; i < 70 * 60; ++i)
        in.Set(i % 70, i / 70, pixel);
    for (int type = VFIL_BLUR_DISC; type <= VFIL_BLUR_FAST_GAUSS_FLOAT; ++type)
        for (const float radius : {1.5F, 25.0F, 90.0F, 3000.0F}) {
            if (radius > 30 && (type == VFIL_BLUR_DISC || (radius > 90 && type != VFIL_BLUR_BOX))) continue;
            vfILBlurImg blur;
            blur.SetInputImg(&in);
            blur.SetOutputImg(&out);
            blur.SetProcessingMode(VFIL_MODE_RGBA);
            blur.SetEdgeMode(VFIL_EDGE_MIRROR);
            Apply(blur, static_cast<vfILBlurType>(type), 0.7F);
            blur.SetRadius(radius, radius / 2);
            ASSERT_EQ(blur.Execute(), VFIL_SUCCESS);
            for (const auto& [x, y] : {std::pair{0L, 0L}, {69L, 59L}, {33L, 20L}})
                for (std::size_t c = 0; c < 4; ++c)
                    ASSERT_NEAR(out.Get(x, y)[c], pixel[c], kSlack[type]) << type << ' ' << radius;
        }
}

// A copy looks at no mask, but at the interruption. So it does with a radius of its own. A recursion makes
// its rows from the last one up.
TEST(Blur, NothingToBlurIsACopyThatStops)
{
    std::mt19937 random(4);
    GuardedImage in(PXFormat_RGBA64, 5, 60), mask(PXFormat_Mono16, 5, 60);
    in.Randomise(random);
    const struct {
        vfILBlurType type;
        float rx, ry, degree;
        int first, last;
    } cases[] = {{VFIL_BLUR_GAUSS, 9, 9, 0, 0, 60},
                 {VFIL_BLUR_GAUSS, 0.9F, 0.5F, 1, 0, 60},
                 {VFIL_BLUR_GAUSS, 0, 0, 1, 0, 2},
                 {VFIL_BLUR_EXPONENTIAL, 1, 1, 1e-30F, 58, 60}};
    for (const auto& c : cases) {
        GuardedImage out(PXFormat_RGBA64, 5, 60);
        vfILBlurImg blur;
        blur.SetInputImg(&in);
        blur.SetOutputImg(&out);
        blur.SetProcessingMode(VFIL_MODE_RGBA);
        if (c.type == VFIL_BLUR_GAUSS) blur.SetMask({0, 0, 5, 60}, &mask, PXImageChannel_MONO);
        blur.SetRadius(c.rx, c.ry);
        Apply(blur, c.type, c.degree);
        g_pollsToStop = 3;
        if (c.last - c.first < 60) blur.SetInterruptFct(StopOnce, nullptr);
        ASSERT_EQ(blur.Execute(), VFIL_SUCCESS);
        for (int y = 0; y < 60; ++y)
            EXPECT_EQ(out.Get(2, y), y >= c.first && y < c.last ? in.Get(2, y) : Pixel{})
                << c.type << ' ' << y;
    }
}

// An interruption is heard before the first row is written, and rows that were written are whole. The
// recursive types write from the last row up.
TEST(Blur, InterruptedRunsLeaveWholeRows)
{
    std::mt19937 random(7);
    GuardedImage in(PXFormat_RGBA32, 1100, 1000), deep(PXFormat_RGBA64, 1100, 400);
    in.Randomise(random);
    deep.Randomise(random);
    const struct {
        GuardedImage* image;
        vfILBlurType type;
        float radius;
        bool isInPlace;
    } cases[] = {{&in, VFIL_BLUR_BOX, 700, false},         {&in, VFIL_BLUR_EXPONENTIAL, 9, false},
                 {&in, VFIL_BLUR_FAST_GAUSS, 9, false},    {&deep, VFIL_BLUR_EXPONENTIAL_FLOAT, 9, false},
                 {&deep, VFIL_BLUR_FAST_GAUSS, 90, false}, {&in, VFIL_BLUR_GAUSS, 60, false},
                 {&deep, VFIL_BLUR_GAUSS, 60, false},      {&in, VFIL_BLUR_BOX, 1, true}};
    for (const auto& c : cases) {
        const bool isUpwards = c.type >= VFIL_BLUR_EXPONENTIAL;
        const auto run = [&](int polls) {
            GuardedImage out(c.image->Format().id, c.image->Width(), c.image->Height());
            void* pixels = nullptr;
            out.GetPixelArray(&pixels);
            if (c.isInPlace) c.image->ReadRegion(pixels, 0, 0, out.Width(), out.Height());
            const std::vector<std::uint8_t> before = out.Bytes();
            vfILBlurImg blur;
            blur.SetInputImg(c.isInPlace ? &out : c.image);
            blur.SetOutputImg(&out);
            blur.SetEdgeMode(VFIL_EDGE_CLAMP);
            Apply(blur, c.type, 1);
            blur.SetRadius(c.radius);
            g_pollsToStop = polls;
            blur.SetInterruptFct(StopOnce, nullptr);
            EXPECT_EQ(blur.Execute(), VFIL_SUCCESS);
            return std::pair(before, out.Bytes());
        };
        const auto whole = run(0).second;
        for (const int polls : {2, 40}) {
            const auto [before, after] = run(polls);
            const auto rowBytes = after.size() / static_cast<std::size_t>(c.image->Height());
            std::vector<int> isWritten;
            for (std::size_t at = 0; at < after.size(); at += rowBytes) {
                isWritten.push_back(std::equal(&after[at], &after[at] + rowBytes, &before[at]) ? 0 : 1);
                ASSERT_TRUE(isWritten.back() == 0 ||
                            std::equal(&after[at], &after[at] + rowBytes, &whole[at]))
                    << c.type;
            }
            EXPECT_EQ(std::ranges::count(isWritten, 1) == 0, polls == 2) << c.type << ' ' << &c - cases;
            if (!isUpwards) std::ranges::reverse(isWritten);
            EXPECT_TRUE(std::ranges::is_sorted(isWritten)) << c.type;
        }
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
        Apply(blur, static_cast<vfILBlurType>(c.type), c.degree);
        blur.SetRadius(c.radius);
        EXPECT_EQ(CodeOf(blur, *c.image), c.code) << &c - cases;
    }
    vfILBlurImg blur;
    blur.SetRadius(900);
    g_allocations.count = 0;
    EXPECT_EQ(CodeOf(blur, rgba), 0);
    EXPECT_EQ(g_allocations.count, 0) << "no kernel to try the memory";
    Apply(blur, vfILBlurType{}, 1);
    EXPECT_EQ(blur.Execute(), VFIL_FAILURE);
    blur.SetType(VFIL_BLUR_DISC);
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
    const auto check = [&](vfILConvolveImg& filter) {
        filter.SetInputImg(&in);
        filter.SetOutputImg(&out);
        EXPECT_GE(CountRefusedRuns(filter, out), 3);
    };
    std::vector<float> weights(9, 0.1F);
    vfILConvolveImg convolve;
    for (const vfILVector2f& radius : {vfILVector2f(4, 0), vfILVector2f(1, 1)}) {
        convolve.SetKernel(weights.data(), radius);
        check(convolve);
    }
    for (const auto type :
         {VFIL_BLUR_GAUSS, VFIL_BLUR_BOX, VFIL_BLUR_EXPONENTIAL, VFIL_BLUR_FAST_GAUSS_FLOAT}) {
        vfILBlurImg blur;
        blur.SetType(type);
        blur.SetRadius(6, 3);
        check(blur);
    }
}

} // namespace

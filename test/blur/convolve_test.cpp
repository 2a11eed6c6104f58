#include "support/filterscene.h"
#include "support/processors.h"

#include "il/loops/blur/fixedweights.h"

#include <vfil/convolve.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

using namespace vfil::test;

namespace {

const GUID& kRgba8 = PXFormat_RGBA32;

int TruncateFloat(float value, int full)
{
    if (!(value > 0)) return 0;
    return value >= static_cast<float>(full) ? full : static_cast<int>(value);
}

/// A kernel, its size, and the sums by its definition.
struct Kernel {
    long width, height;
    std::vector<float> weights;
    float offset = 0;

    static int Fixed(float w)
    {
        return std::min(32767, static_cast<int>(w * 32768.0 + (w < 0 ? -0.5 : 0.5)));
    }
    int InFloat(const WindowSample& at, int full) const
    {
        float sum = 0;
        for (long y = 0; y < height; ++y)
            for (long x = 0; x < width; ++x) {
                const float weight = weights[static_cast<std::size_t>(y * width + x)];
                if (weight != 0) sum += weight * static_cast<float>(at(x, y));
            }
        return TruncateFloat(sum + offset + 0.5F, full);
    }
    int InFixed(const WindowSample& at) const
    {
        long sum = 0;
        for (long y = 0; y < height; ++y)
            for (long x = 0; x < width; ++x)
                sum += long{at(x, y)} * Fixed(weights[static_cast<std::size_t>(y * width + x)]);
        return static_cast<int>(std::clamp((sum + 0x4000) >> 15, 0L, 255L));
    }
};

/// A column and a row, each way by itself.
struct Factors {
    std::vector<float> kx, ky;

    int InFloat(const WindowSample& at, int full) const
    {
        float result = 0;
        for (std::size_t y = 0; y < ky.size(); ++y) {
            float sum = 0;
            for (std::size_t x = 0; x < kx.size(); ++x)
                sum += kx[x] * static_cast<float>(at(static_cast<long>(x), static_cast<long>(y)));
            result += ky[y] * sum;
        }
        return TruncateFloat(result + 0.5F, full);
    }
    int InFixed(const WindowSample& at) const
    {
        long result = 0x4000;
        for (std::size_t y = 0; y < ky.size(); ++y) {
            long sum = 0x4000;
            for (std::size_t x = 0; x < kx.size(); ++x)
                sum += long{at(static_cast<long>(x), static_cast<long>(y))} * Kernel::Fixed(kx[x]);
            result += std::clamp(sum >> 15, -32768L, 32767L) * Kernel::Fixed(ky[y]);
        }
        return static_cast<int>(std::clamp(result >> 15, 0L, 255L));
    }
};

/// Weights of both signs, some of them 0, of the given sum of magnitudes.
Kernel RandomKernel(std::mt19937& random, long radiusX, long radiusY, float magnitude)
{
    Kernel kernel{2 * radiusX + 1, 2 * radiusY + 1, {}};
    kernel.weights.resize(static_cast<std::size_t>(kernel.width * kernel.height));
    for (float& weight : kernel.weights)
        weight = random() % 5 == 0 ? 0.0F : static_cast<float>(static_cast<int>(random() % 301) - 60) / 200;
    float sum = 0;
    for (const float weight : kernel.weights)
        sum += std::abs(weight);
    for (float& weight : kernel.weights)
        weight *= magnitude / std::max(sum, 1e-3F);
    return kernel;
}

/// Checks a run of a filter by a model of both arithmetics.
template <class Model>
void CheckRun(vfILConvolveImg& filter, FilterScene& scene, const Model& model, bool fixed)
{
    scene.isFixed = fixed;
    scene.Arrange(filter);
    const auto rx = static_cast<long>(filter.GetRadiusX()), ry = static_cast<long>(filter.GetRadiusY());
    scene.Check(filter, scene.Expected(rx, ry, [&](const WindowSample& at) {
        return fixed ? model.InFixed(at) : model.InFloat(at, scene.format.Full());
    }));
}

// Both arithmetics, as the formats, the weights and the offset ask for them.
TEST(Convolve, SinglePassFollowsItsDefinition)
{
    std::mt19937 random(1);
    for (int i = 0; i < 400 && !HasFatalFailure(); ++i) {
        const GUID& format = *kFilterFormats[i % 4];
        FilterScene scene(random, format, RandomIn(random, 1, 40), RandomIn(random, 1, 12));
        const long rx = RandomIn(random, 0, 4), ry = RandomIn(random, 0, 3);
        Kernel kernel = RandomKernel(random, rx, ry, i % 3 == 0 ? 3.0F : 0.99F);
        kernel.weights.front() += 0.001F; // none is of rank 1
        if (random() % 3 == 0) kernel.offset = static_cast<float>(RandomIn(random, -90, 90)) / 2;
        const bool simd = random() % 2;
        Switched<vfILConvolveImg> filter(simd);
        filter.SetKernel(kernel.weights.data(), static_cast<float>(rx), static_cast<float>(ry));
        filter.SetOffset(kernel.offset);
        if (kernel.width > 1 && kernel.height > 1 && filter.IsKernelSeparable()) continue;
        const auto [least, most] = std::minmax_element(kernel.weights.begin(), kernel.weights.end());
        const bool fixed = format == kRgba8 && simd && kernel.offset == 0 && *most < 1 && *least > -1;
        SCOPED_TRACE(testing::Message() << "case " << i << ", fixed " << fixed);
        CheckRun(filter, scene, kernel, fixed);
    }
}

TEST(Convolve, DualPassFollowsItsDefinition)
{
    std::mt19937 random(2);
    for (int i = 0; i < 200 && !HasFatalFailure(); ++i) {
        const GUID& format = *kFilterFormats[i % 4];
        const bool isTall = i >= 192; // so that the run comes in bands
        FilterScene scene(random, format, RandomIn(random, 1, isTall ? 2500 : 40),
                          isTall ? 130 : RandomIn(random, 1, 30));
        const long rx = RandomIn(random, 1, isTall ? 1 : 5), ry = RandomIn(random, 1, isTall ? 1 : 4);
        Kernel row = RandomKernel(random, rx, 0, i % 3 ? 1.0F : 2.5F);
        Kernel column = RandomKernel(random, 0, ry, i % 5 ? 1.0F : 0.5F);
        row.weights[1] += 0.4F;
        column.weights[1] += 0.4F;
        std::vector<float> product;
        for (const float y : column.weights)
            for (const float x : row.weights)
                product.push_back(x * y);
        const bool simd = random() % 4 != 0;
        Switched<vfILConvolveImg> filter(simd);
        filter.SetOffset(77); // which two passes take no notice of
        filter.SetKernel(product.data(), static_cast<float>(rx), static_cast<float>(ry));
        Factors factors{std::vector<float>(row.weights.size()), std::vector<float>(column.weights.size())};
        ASSERT_EQ(filter.IsKernelSeparable(), 1);
        ASSERT_EQ(filter.SeparateKernel(factors.kx.data(), factors.ky.data()), VFIL_SUCCESS);
        for (std::size_t k = 0; k < product.size(); ++k)
            ASSERT_NEAR(factors.ky[k / factors.kx.size()] * factors.kx[k % factors.kx.size()], product[k],
                        1e-6);
        // Which weights go in fixed point is told by the tests of their bound.
        const bool fixed =
            format == kRgba8 && simd &&
            vfil::AreFixedPassesExact(factors.kx.data(), row.width, factors.ky.data(), column.height);
        SCOPED_TRACE(testing::Message() << "case " << i << ", fixed " << fixed);
        CheckRun(filter, scene, factors, fixed);
    }
}

// Fixed and float are one code apart at most; where weights don't fit, or their roundings add up, they are
// one.
TEST(Convolve, FixedIsCloseToFloat)
{
    std::mt19937 random(4);
    int largest = 0;
    for (int i = 0; i < 60; ++i) {
        const long radius = RandomIn(random, 1, 3);
        Kernel kernel = RandomKernel(random, radius, radius, 1);
        if (i % 4 == 0) kernel.weights[2] = 0.99999F;
        const long size = 2 * radius + 1;
        if (i % 4 == 1)
            for (long k = 0; k < size * size; ++k)
                kernel.weights[static_cast<std::size_t>(k)] =
                    static_cast<float>((1 + k % size) * (3 + k / size)) / 900;
        GuardedImage in(kRgba8, 30, 9), fast(kRgba8, 30, 9), slow(kRgba8, 30, 9);
        in.Randomise(random);
        for (const bool simd : {false, true}) {
            Switched<vfILConvolveImg> filter(simd);
            filter.SetInputImg(&in);
            filter.SetOutputImg(simd ? &fast : &slow);
            filter.SetKernel(kernel.weights.data(), static_cast<float>(radius));
            ASSERT_EQ(filter.Execute(), VFIL_SUCCESS);
        }
        const auto a = fast.Bytes(), b = slow.Bytes();
        for (std::size_t k = 0; k < a.size(); ++k)
            largest = std::max(largest, std::abs(a[k] - b[k]));
    }
    EXPECT_EQ(largest, 1);
}

/// A filter of two passes by given weights.
class Separable : public Switched<vfILConvolveImg> {
public:
    Separable(bool simd, const Factors& factors) : Switched(simd), m_factors(factors)
    {
        SetKernel(m_factors.kx.data(), static_cast<float>(factors.kx.size() / 2),
                  static_cast<float>(factors.ky.size() / 2));
    }
    int IsKernelSeparable() override { return 1; }
    vfILStatus SeparateKernel(float* kx, float* ky) override
    {
        std::ranges::copy(m_factors.kx, kx);
        std::ranges::copy(m_factors.ky, ky);
        return VFIL_SUCCESS;
    }

private:
    Factors m_factors;
};

/// How many samples of a run by fixed weights differ from those in float, and by how much at most.
std::pair<double, int> DistanceToFloat(const Factors& factors, GuardedImage& in)
{
    std::vector<std::uint8_t> results[2];
    for (const bool simd : {false, true}) {
        GuardedImage out(kRgba8, in.Width(), in.Height());
        Separable filter(simd, factors);
        filter.SetInputImg(&in);
        filter.SetOutputImg(&out);
        filter.SetProcessingMode(VFIL_MODE_RGBA);
        filter.SetEdgeMode(VFIL_EDGE_WRAP);
        EXPECT_EQ(filter.Execute(), VFIL_SUCCESS);
        results[simd] = out.Bytes();
    }
    double differences = 0;
    int largest = 0;
    for (std::size_t k = 0; k < results[0].size(); ++k) {
        const int off = std::abs(results[0][k] - results[1][k]);
        differences += off != 0;
        largest = std::max(largest, off);
    }
    return {differences / static_cast<double>(results[0].size()), largest};
}

/// As many weights of nearly the given sum, of which so many lie between two fixed ones.
std::vector<float> WeightsThatMiss(long count, long missing, double sum, double miss)
{
    std::vector<float> weights(static_cast<std::size_t>(count));
    for (long i = 0; i < count; ++i)
        weights[static_cast<std::size_t>(i)] = static_cast<float>(
            (std::floor(32768 * sum / static_cast<double>(count)) + (i < missing ? miss : 0)) / 32768);
    return weights;
}

// As many weights miss, in the same direction, as the fixed form may be taken for, and one more.
TEST(Convolve, FixedPassesAreOneCodeFromFloatUpToTheirBound)
{
    std::mt19937 random(5);
    const auto byteFrom = [&](long least) { return static_cast<int>(RandomIn(random, least, 255)); };
    GuardedImage in(kRgba8, 90, 24);
    for (long i = 0; i < 90 * 24; ++i)
        in.Set(i % 90, i / 90, {byteFrom(225), byteFrom(0), 255, 254});
    int largest = 0;
    long mostWeights = 0;
    for (int i = 0; i < 60; ++i) {
        const long count = 2 * RandomIn(random, 20, 160) + 1;
        const double miss = i % 2 == 0 ? 0.499 : -0.499;
        const double sum = i % 5 == 0 ? -0.7 : 0.95;
        const auto factors = [&](long missing) {
            Factors made{WeightsThatMiss(count, missing, sum, miss),
                         WeightsThatMiss(2 * (i % 7) + 3, i % 4, i % 5 == 0 ? -0.9 : 0.98, miss)};
            if (i % 3 == 0) std::swap(made.kx, made.ky);
            return made;
        };
        const auto isFixed = [&](long missing) {
            const Factors made = factors(missing);
            return vfil::AreFixedPassesExact(made.kx.data(), std::ssize(made.kx), made.ky.data(),
                                             std::ssize(made.ky));
        };
        long most = 0;
        ASSERT_TRUE(isFixed(0));
        while (most < count && isFixed(most + 1))
            ++most;
        const auto [share, distance] = DistanceToFloat(factors(most), in);
        EXPECT_GT(share, 0) << i;
        ASSERT_LE(distance, 1) << "case " << i << ", " << count << " weights, of which miss " << most;
        largest = std::max(largest, distance);
        mostWeights = std::max(mostWeights, most);
        if (!isFixed(count)) {
            EXPECT_EQ(DistanceToFloat(factors(count), in).second, 0) << i;
        }
    }
    EXPECT_EQ(largest, 1);
    EXPECT_GT(mostWeights, 100);
    // Sums between the passes that leave 16 bits.
    EXPECT_EQ(DistanceToFloat({std::vector<float>(301, 0.5F), std::vector<float>(3, 0.002F)}, in).second, 0);
}

// What docs/blur.md says of noise.
TEST(Convolve, FixedPassesOfSmallKernelsDifferHereAndThere)
{
    std::mt19937 random(6);
    GuardedImage in(kRgba8, 200, 200);
    for (long i = 0; i < 200 * 200; ++i) {
        const auto noise = random();
        in.Set(i % 200, i / 200,
               {static_cast<int>(noise & 255), static_cast<int>(noise >> 8 & 255),
                static_cast<int>(noise >> 16 & 255), static_cast<int>(noise >> 24 & 255)});
    }
    std::vector<float> kernel{1, 2, 1, 2, 4, 2, 1, 2, 1};
    for (float& weight : kernel)
        weight /= 16;
    vfILConvolveImg filter;
    filter.SetKernel(kernel.data(), 1);
    Factors factors{std::vector<float>(3), std::vector<float>(3)};
    ASSERT_EQ(filter.SeparateKernel(factors.kx.data(), factors.ky.data()), VFIL_SUCCESS);
    const auto [share, distance] = DistanceToFloat(factors, in);
    EXPECT_NEAR(share, 0.13, 0.01);
    EXPECT_EQ(distance, 1);
}

TEST(Convolve, LargeAndNotFiniteWeights)
{
    constexpr float kNaN = std::numeric_limits<float>::quiet_NaN();
    GuardedImage in(kRgba8, 3, 3), out(kRgba8, 3, 3);
    for (long i = 0; i < 9; ++i)
        in.Set(i % 3, i / 3, {static_cast<int>(20 + i), 200, 3, 255});
    Switched<vfILConvolveImg> filter(true);
    filter.SetInputImg(&in);
    filter.SetOutputImg(&out);
    filter.SetProcessingMode(VFIL_MODE_RGBA);
    filter.SetEdgeMode(VFIL_EDGE_CLAMP);
    const auto middle = [&](std::vector<float> kernel, float radius) {
        filter.SetKernel(kernel.data(), radius, 0);
        EXPECT_EQ(filter.Execute(), VFIL_SUCCESS);
        return out.Get(1, 1);
    };
    EXPECT_EQ(middle({0.0F, 1.0F, 0.0F}, 1), in.Get(1, 1)) << "a weight of 1 is exact";
    EXPECT_EQ(middle({0.0F, 1e30F, -1.0F}, 1), (Pixel{255, 255, 255, 255}));
    EXPECT_EQ(middle({0.0F, kNaN, 0.5F}, 1), (Pixel{0, 0, 0, 0}));
    EXPECT_EQ(middle({INFINITY, -INFINITY, 0.5F}, 1), (Pixel{0, 0, 0, 0}));
    // Sums of so many weights of nearly 1 leave 32 bits: 301 * 255 * 31785.
    EXPECT_EQ(middle(std::vector<float>(301, 0.97F), 150)[3], 255);
}

TEST(Convolve, VerifyChecksInOrder)
{
    GuardedImage rgba(kRgba8, 4, 4), bgr(PXFormat_BGR24, 4, 4);
    float weight = 1;
    const struct {
        unsigned long code;
        GuardedImage* image;
        float* kernel;
        float radius;
    } cases[] = {{0, &rgba, &weight, 0},
                 {0x10021, &rgba, nullptr, 0},
                 {0x1000D, &bgr, nullptr, 0},
                 {0x10023, &bgr, nullptr, -1}};
    for (const auto& c : cases) {
        vfILConvolveImg filter;
        filter.SetKernel(c.kernel, c.radius);
        EXPECT_EQ(CodeOf(filter, *c.image), c.code);
    }
}

} // namespace

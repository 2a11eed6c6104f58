#include "support/randommodel.h"

#include <vfil/numeric.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

using vfil::test::RandomModel;

namespace {

constexpr long kCapSeed = 21277353; // whose first draw would round to 1

TEST(RandomNumber, UniformIsTheShuffledGenerator)
{
    vfILRandomNumber untouched;
    EXPECT_NEAR(untouched.GetNumber(), 0.41599936, 1e-7) << "16807 and 2^31 - 1 behind a shuffle, from 1";
    for (const std::int32_t seed : {1, 7, 0x49960a8f, 2147483646}) {
        vfILRandomNumber random;
        random.SetUniform(-2.0F, 3.0F);
        random.SetFixedSeed(99);
        random.GetNumber();
        random.SetFixedSeed(seed);
        RandomModel model(seed);
        for (int i = 0; i < 2000; ++i)
            ASSERT_EQ(random.GetNumber(), -2.0F + 5.0F * model.Draw()) << "seed " << seed << " draw " << i;
    }
}

TEST(RandomNumber, SeedsAtTheEdge)
{
    const auto firstOf = [](long seed) {
        vfILRandomNumber random;
        random.SetFixedSeed(seed);
        return random.GetNumber();
    };
    const float one = RandomModel(1).Draw();
    for (const long seed : {0L, -5L, std::numeric_limits<long>::min()})
        EXPECT_EQ(firstOf(seed), one) << seed;
    EXPECT_EQ(firstOf(kCapSeed), 0x1.fffffcp-1F);
    EXPECT_EQ(firstOf(2147483647), 0.0F);

    vfILRandomNumber used;
    RandomModel model(1);
    for (int i = 0; i < 5; ++i)
        EXPECT_EQ(used.GetNumber(), model.Draw());
    used.SetFixedSeed(-77);
    EXPECT_EQ(used.GetNumber(), model.Draw()) << "a negative seed restarts nothing";
    EXPECT_NE(used.GetNumber(), 0.0F);

    vfILRandomNumber copy(used);
    copy.SetFixedSeed(3);
    used = copy;
    EXPECT_EQ(used.GetNumber(), RandomModel(3).Draw());
}

TEST(RandomNumber, TheOtherLawsAreBentUniformDraws)
{
    vfILRandomNumber random;
    RandomModel model(11);
    random.SetFixedSeed(11);
    random.SetExponential(3.0F);
    for (int i = 0; i < 20; ++i)
        EXPECT_NEAR(random.GetNumber(), -std::log(model.Draw() / 3.0), 1e-5);
    random.SetWeibull(2.0F, 3.0F);
    for (int i = 0; i < 20; ++i)
        EXPECT_NEAR(random.GetNumber(), std::pow(-std::log(model.Draw()) / 2.0, 1 / 3.0), 1e-5);
    random.SetGaussian(10.0F, 2.0F);
    double spare = 0;
    for (int i = 0; i < 20; ++i) {
        double v1 = 0, v2 = 0, r = 0;
        do {
            v1 = 2.0 * model.Draw() - 1;
            v2 = 2.0 * model.Draw() - 1;
            r = v1 * v1 + v2 * v2;
        } while (r >= 1 || r == 0);
        const double f = std::sqrt(-2 * std::log(r) / r);
        EXPECT_NEAR(random.GetNumber(), 10 + 2 * v2 * f, 1e-4);
        spare = v1 * f;
        if (i < 19) {
            EXPECT_NEAR(random.GetNumber(), 10 + 2 * spare, 1e-4);
        }
    }
    random.SetFixedSeed(11);
    random.SetGaussian(-1.0F, 5.0F);
    EXPECT_NEAR(random.GetNumber(), -1 + 5 * spare, 1e-4) << "a waiting value outlives the seed";
}

TEST(Statistics, WorkedByHand)
{
    std::vector<double> data{9, 1, 4, 2};
    vfILStatistics s(data.data(), 4);
    EXPECT_EQ(s.GetMean(), 4.0);
    EXPECT_EQ(s.GetMedian(), 3.0);
    EXPECT_EQ(data, (std::vector<double>{9, 1, 4, 2})) << "the order stays";
    EXPECT_NEAR(s.GetVariance(), 38 / 3.0, 1e-12);
    double mean = 3, deviation = 10;
    EXPECT_NEAR(s.GetVariance(&mean), 42 / 3.0, 1e-12);
    EXPECT_NEAR(s.GetStandardDeviation(&mean), std::sqrt(14.0), 1e-12);
    double limits[2];
    s.GetChebyshevLimits(0.75, limits, &mean, &deviation);
    EXPECT_NEAR(limits[0], -17, 1e-12);
    EXPECT_NEAR(limits[1], 23, 1e-12);
    s.GetChebyshevLimits(0.75, limits);
    EXPECT_NEAR(limits[1], 4 + 2 * std::sqrt(38 / 3.0), 1e-12);
    s.SetData(data.data(), 3);
    EXPECT_EQ(s.GetMedian(), 4.0);
    s.SetData(data.data(), 1);
    EXPECT_EQ(s.GetMedian(), 9.0);
    EXPECT_TRUE(std::isnan(s.GetVariance()));
    s.SetData(nullptr, 0);
    for (const double result : {s.GetMean(), s.GetMedian(), s.GetVariance(), s.GetStandardDeviation()})
        EXPECT_TRUE(std::isnan(result));
}

TEST(Statistics, SmoothingReadsWhatWasThereBefore)
{
    std::vector<double> data{90, 0, 3, 6, 12, 0, 90};
    vfILStatistics s(data.data(), 7);
    const long first = 1, last = 5;
    s.SmoothData(&first, &last);
    for (std::size_t i = 0; const double expected : {90, 0, 3, 7, 6, 0, 90})
        EXPECT_NEAR(data[i++], expected, 1e-12) << i;
    s.SmoothData();
    EXPECT_NEAR(data[1], 31, 1e-12);
    EXPECT_NEAR(data[5], 32, 1e-12);
    s.SetData(data.data(), 1);
    s.SmoothData();
    EXPECT_EQ(data[0], 90);
}

TEST(SortingEngine, SortsRangesInPlace)
{
    std::mt19937 random(1);
    for (int count : {1, 2, 3, 17, 1000, 100000})
        for (const unsigned values : {1U, 5U, 1000000U}) {
            std::vector<double> data;
            for (int i = 0; i < count; ++i)
                data.push_back(static_cast<double>(random() % values));
            std::vector<double> expected = data;
            vfILSortingEngine engine(data.data(), count, VFIL_SORT_QUICK);
            const long first = count / 3, last = count / 2;
            engine.Sort(&first, &last);
            std::sort(expected.begin() + first, expected.begin() + last + 1);
            ASSERT_EQ(data, expected);
            engine.SetAlgorithm(static_cast<vfILSortingAlgorithm>(1));
            engine.Sort();
            ASSERT_EQ(data, expected) << "no such algorithm";
            engine.SetAlgorithm(VFIL_SORT_QUICK);
            engine.Sort();
            std::sort(expected.begin(), expected.end());
            ASSERT_EQ(data, expected);
        }
}

// Orders that make a quicksort by the middle part off one value at a time, and NaN, which no order suits.
TEST(SortingEngine, NoOrderTakesTheSquareOfItsLength)
{
    constexpr int kCount = 100000;
    std::vector<double> data(kCount + 2, -7), sorted;
    for (const bool withNaN : {false, true}) {
        for (int i = 0; i < kCount; ++i)
            data[i + 1U] = withNaN && i % 7 == 0 ? double{NAN} : std::min(i, kCount - i);
        sorted = data;
        const auto start = std::chrono::steady_clock::now();
        vfILSortingEngine(sorted.data() + 1, kCount, VFIL_SORT_QUICK).Sort();
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2));
        EXPECT_TRUE(sorted.front() == -7 && sorted.back() == -7);
        EXPECT_TRUE(withNaN || std::is_sorted(sorted.begin() + 1, sorted.end() - 1));
        // Each value is still there, as often as before: the sum of the numbers and the count of the others.
        const auto numbers = [](const std::vector<double>& v) {
            return std::accumulate(v.begin(), v.end(), 0.0,
                                   [](double sum, double x) { return x == x ? sum + x : sum - 1e9; });
        };
        EXPECT_EQ(numbers(sorted), numbers(data));
    }
}

} // namespace

/// \file
/// The vector forms of the kernels of the colour ramps against the plain ones.
#include "il/rows/treat/ramprows.h"

#include "support/rowcheck.h"

#include <bit>
#include <cmath>
#include <limits>

namespace vfil {
namespace {

template <class Sample, class Member>
void CheckRamp(Member member)
{
    std::mt19937 random(31);
    const auto component = [&] {
        return random() % 3 ? static_cast<double>(random() % 512) / 511
                            : static_cast<double>(random() % 5) / 4;
    };
    for (const Level level : VectorLevels()) {
        for (int round = 0; round < 700; ++round) {
            RampSpan span{};
            span.channels = random() % 2 ? 4 : 1;
            constexpr std::size_t kLengths[] = {1, 2, 40, 300, 5000, 20000};
            span.pixels = random() % kLengths[random() % (round < 20 ? 6 : 4)];
            span.inverse = span.pixels > 1 ? 1.0 / static_cast<double>(span.pixels - 1) : 0;
            for (std::size_t c = 0; c < 4; ++c) {
                span.first[c] = component();
                span.difference[c] = random() % 4 ? component() - span.first[c] : 0;
            }
            const std::vector<Sample> row(span.pixels * span.channels, Sample{0x5B});
            const PlacedRow<Sample> before(row, static_cast<std::size_t>(round) * sizeof(Sample) % 64, true);
            auto expected = before;
            (RampRowsAt(Level::Plain).*member)[0](span, expected.Data());
            for (const auto kernel : RampRowsAt(level).*member) {
                auto made = before;
                kernel(span, made.Data());
                ASSERT_TRUE(made == expected) << "level " << static_cast<int>(level) << ", " << span.pixels
                                              << " pixels, at " << made.start;
            }
        }
        EXPECT_NE((RampRowsAt(level).*member)[1], (RampRowsAt(Below(level)).*member)[1]);
    }
}

TEST(RampRows, RunsAreThePlainForms)
{
    CheckRamp<std::uint8_t>(&RampRows::ramp8);
    CheckRamp<std::uint16_t>(&RampRows::ramp16);
}

template <class Places, class Member, class RandomPlaces>
void CheckPlaces(Member member, RandomPlaces randomPlaces)
{
    std::mt19937 random(32);
    for (const Level level : VectorLevels()) {
        for (int round = 0; round < 3000; ++round) {
            const Places places = randomPlaces(random);
            const std::vector<std::int32_t> row(random() % 100, -7);
            PlacedRow<std::int32_t> made(row, 4 * (random() % 16), true);
            auto expected = made;
            (RampRowsAt(level).*member)(places, made.Data(), row.size());
            (RampRowsAt(Level::Plain).*member)(places, expected.Data(), row.size());
            ASSERT_TRUE(made == expected) << "level " << static_cast<int>(level) << ", round " << round;
        }
        EXPECT_NE(RampRowsAt(level).*member, RampRowsAt(Below(level)).*member);
    }
}

/// Of any scale.
double RandomWhole(std::mt19937& random)
{
    return std::floor(std::ldexp(static_cast<double>(random()), -static_cast<int>(random() % 32)));
}

TEST(RampRows, PlacesAreThePlainForms)
{
    CheckPlaces<LinearPlaces>(&RampRows::linear, [](std::mt19937& random) {
        const double dx = RandomWhole(random) - RandomWhole(random);
        const double dy = random() % 2 ? 0 : RandomWhole(random);
        const double length = std::max(std::sqrt(dx * dx + dy * dy), 1.0);
        const double x = RandomWhole(random) - RandomWhole(random), y = RandomWhole(random);
        return LinearPlaces{x * dx + y * dy, dx, length, 1 / length, std::min(RandomWhole(random), 1e9)};
    });
    CheckPlaces<RadialPlaces>(&RampRows::radial, [](std::mt19937& random) {
        constexpr double kRatios[] = {1, 0.1, 1e-30, 1e200, std::numeric_limits<double>::infinity()};
        const double height =
            (RandomWhole(random) + 1) * kRatios[random() % 5] + static_cast<double>(random() % 2);
        const double x = std::ldexp(RandomWhole(random), -static_cast<int>(random() % 16)) - 50;
        return RadialPlaces{std::floor(x), height * height, std::min(RandomWhole(random), 1e9)};
    });
}

template <class Entry>
void CheckLookUp()
{
    constexpr std::size_t kEntries = 50;
    constexpr auto kSize = static_cast<std::size_t>(std::countr_zero(sizeof(Entry)));
    std::mt19937 random(33);
    std::vector<Entry> table(kEntries + kLookUpPad);
    for (Entry& entry : table)
        entry = static_cast<Entry>(random() * 0x1'0000'0001ULL * random());
    for (const Level level : VectorLevels()) {
        for (int round = 0; round < 600; ++round) {
            // Neighbours that rise, fall, do both, and leap.
            std::vector<std::int32_t> indices(random() % 70);
            std::int32_t at = static_cast<std::int32_t>(random() % kEntries), way = 1;
            for (std::int32_t& index : indices) {
                if (random() % 16 == 0) way = 1 - static_cast<std::int32_t>(random() % 3);
                if (random() % 64 == 0) at = static_cast<std::int32_t>(random() % kEntries);
                index = at = std::clamp(at + (random() % 4 ? way : 0), 0, static_cast<int>(kEntries) - 1);
            }
            const PlacedRow<Entry> before(std::vector<Entry>(indices.size()), sizeof(Entry) * (random() % 8),
                                          true);
            auto expected = before;
            RampRowsAt(Level::Plain)
                .lookUp[kSize][0](table.data(), indices.data(), expected.Data(), indices.size());
            for (const auto kernel : RampRowsAt(level).lookUp[kSize]) {
                auto made = before;
                kernel(table.data(), indices.data(), made.Data(), indices.size());
                ASSERT_TRUE(made == expected) << "level " << static_cast<int>(level) << ", round " << round;
            }
        }
    }
}

TEST(RampRows, LookUpsAreThePlainForms)
{
    CheckLookUp<std::uint8_t>();
    CheckLookUp<std::uint16_t>();
    CheckLookUp<std::uint32_t>();
    CheckLookUp<std::uint64_t>();
    for (const Level level : VectorLevels())
        for (const std::size_t size : {2, 3}) {
            if (level == Level::Sse2) continue; // which has no way to choose lanes
            EXPECT_NE(RampRowsAt(level).lookUp[size][1], RampRowsAt(Below(level)).lookUp[size][1]);
        }
}

} // namespace
} // namespace vfil

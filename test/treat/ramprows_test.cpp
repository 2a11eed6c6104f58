/// \file
/// The vector forms of the kernels of the colour ramps against the plain ones.
#include "il/rows/treat/placerows.h"
#include "il/rows/treat/ramprows.h"

#include "support/rowcheck.h"

#include <bit>
#include <cmath>
#include <limits>
#include <numeric>

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

TEST(RampRows, AreThePlainForms)
{
    CheckRamp<std::uint8_t>(&RampRows::ramp8);
    CheckRamp<std::uint16_t>(&RampRows::ramp16);
}

/// In tables of entries that are all different.
template <class Places, class Entry, class Member, class RandomPlaces>
void CheckPlaces(Member member, RandomPlaces randomPlaces)
{
    constexpr std::size_t kSize = std::countr_zero(sizeof(Entry));
    std::mt19937 random(32);
    for (const Level level : VectorLevels()) {
        for (int round = 0; round < 2500; ++round) {
            const Places places = randomPlaces(random);
            std::vector<Entry> table(static_cast<std::size_t>(places.last) + 1 + 2 * kTablePad);
            for (std::size_t i = 0; i < table.size(); ++i)
                table[i] = static_cast<Entry>(std::clamp(i, kTablePad, table.size() - kTablePad - 1) *
                                              0x1'0000'0101);
            const std::vector<Entry> row(random() % 100, Entry{7});
            const PlacedRow<Entry> before(row, sizeof(Entry) * (random() % 16), true);
            auto expected = before;
            (PlaceRowsAt(Level::Plain).*member)[kSize][0](places, table.data() + kTablePad, expected.Data(),
                                                          row.size());
            for (const auto kernel : (PlaceRowsAt(level).*member)[kSize]) {
                auto made = before;
                kernel(places, table.data() + kTablePad, made.Data(), row.size());
                ASSERT_TRUE(made == expected) << "level " << static_cast<int>(level) << ", round " << round;
            }
        }
        EXPECT_NE((PlaceRowsAt(level).*member)[kSize][1], (PlaceRowsAt(Below(level)).*member)[kSize][1]);
    }
}

/// Of any scale.
double RandomWhole(std::mt19937& random, int bits)
{
    const int down = 32 - static_cast<int>(random() % static_cast<unsigned>(bits + 1));
    return std::floor(std::ldexp(static_cast<double>(random()), -down));
}

template <class Entry>
void CheckAllPlaces()
{
    SCOPED_TRACE(sizeof(Entry));
    CheckPlaces<LinearPlaces, Entry>(&PlaceRows::linear, [](std::mt19937& random) {
        const int bits = random() % 8 ? 12 : 31;
        const double dx = RandomWhole(random, bits) - RandomWhole(random, bits);
        const double dy = random() % 2 ? 0 : RandomWhole(random, bits);
        const double length = std::max(std::sqrt(dx * dx + dy * dy), 1.0);
        const double x = RandomWhole(random, bits) - RandomWhole(random, bits), y = RandomWhole(random, bits);
        return LinearPlaces{x * dx + y * dy, dx, length, 1 / length, RandomWhole(random, 12)};
    });
    CheckPlaces<RadialPlaces, Entry>(&PlaceRows::radial, [](std::mt19937& random) {
        constexpr double kRatios[] = {1, 1, 0.1, 1e-30, 1e200, std::numeric_limits<double>::infinity()};
        const double height = (RandomWhole(random, 10) + 1) * kRatios[random() % 6];
        const double x = RandomWhole(random, random() % 8 ? 11 : 32) - 50;
        const double last = RandomWhole(random, random() % 99 ? 11 : 18);
        return RadialPlaces{random() % 2 ? x : -x, random() % 4 ? height * height : 0, last};
    });
}

// No root just below a whole number may be rounded up to it, nor one above be lost.
TEST(PlaceRows, RootsNearWholeNumbers)
{
    std::vector<std::uint16_t> table(10000 + 2 * kTablePad);
    std::iota(table.begin(), table.end(), std::uint16_t{0});
    for (const Level level : VectorLevels())
        for (const double last : {4095.0, 9000.0})
            for (double m = 2; m <= last + 1; ++m)
                for (const double square : {m * m - 1, std::nextafter(m * m, 0), m * m, m * m * (1 - 1e-7)}) {
                    std::uint16_t found[16], expected[16];
                    const RadialPlaces places{0, square, last};
                    PlaceRowsAt(level).radial[1][0](places, table.data() + kTablePad, found, 16);
                    PlaceRowsAt(Level::Plain).radial[1][0](places, table.data() + kTablePad, expected, 1);
                    ASSERT_EQ(found[0], expected[0]) << "level " << static_cast<int>(level) << ", near " << m;
                }
}

TEST(PlaceRows, AreThePlainForms)
{
    CheckAllPlaces<std::uint8_t>();
    CheckAllPlaces<std::uint16_t>();
    CheckAllPlaces<std::uint32_t>();
    CheckAllPlaces<std::uint64_t>();
}

} // namespace
} // namespace vfil

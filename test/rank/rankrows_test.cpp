#include "il/loops/rank/rankties.h"
#include "il/rows/pixarith.h"
#include "il/rows/rank/findmedian.h"
#include "il/rows/rank/rankrows.h"
#include "support/rowcheck.h"

#include <utility>

using namespace vfil;

namespace {

template <class Sample>
const RankCases<Sample>& CasesAt(Level level)
{
    if constexpr (sizeof(Sample) == 1) {
        return RankRowsAt(level).cases8;
    } else {
        return RankRowsAt(level).cases16;
    }
}

template <class Sample>
class RankRows : public testing::Test {};
using Samples = testing::Types<std::uint8_t, std::uint16_t>;
TYPED_TEST_SUITE(RankRows, Samples);

/// Rows of their own memory, so that reads past an end are seen. Of few values, when told so.
template <class Sample>
std::vector<std::vector<Sample>> MakeRows(std::size_t count, std::size_t length, unsigned values,
                                          std::mt19937& random)
{
    std::vector<std::vector<Sample>> rows(count, std::vector<Sample>(length));
    for (auto& row : rows)
        for (Sample& sample : row)
            sample = static_cast<Sample>(random() % values * (static_cast<Sample>(~Sample{0}) / values));
    return rows;
}

template <class Sample>
std::vector<const Sample*> Pointers(const std::vector<std::vector<Sample>>& rows)
{
    std::vector<const Sample*> pointers;
    for (const auto& row : rows)
        pointers.push_back(row.data());
    return pointers;
}

/// Calls check(kernel, plain) with what get(cases) is at each vector level.
template <class Sample, class Get, class Check>
void ForEachKernel(Get get, Check check)
{
    for (const Level level : VectorLevels()) {
        SCOPED_TRACE(testing::Message() << "level " << static_cast<int>(level));
        ASSERT_NE(get(CasesAt<Sample>(level)), get(CasesAt<Sample>(Below(level)))) << "compared with itself";
        check(get(CasesAt<Sample>(level)), get(CasesAt<Sample>(Level::Plain)));
    }
}

TYPED_TEST(RankRows, ExtremesAreThePlainOnes)
{
    using Sample = TypeParam;
    std::mt19937 random(1);
    const auto check = [&](ExtremeRow<Sample> kernel, ExtremeRow<Sample> plain) {
        for (std::size_t length = 0; length < 300; length += 1 + length / 9)
            for (const std::size_t count : {1U, 2U, 3U, 5U}) {
                auto rows = MakeRows<Sample>(count, length, 250, random);
                std::vector<Sample> expected(length);
                plain(Pointers(rows).data(), count, expected.data(), length);
                // The result goes where the last row was.
                kernel(Pointers(rows).data(), count, rows.back().data(), length);
                ASSERT_EQ(rows.back(), expected) << length << " samples of " << count << " rows";
            }
    };
    for (const unsigned which : {0U, 1U, 2U, 3U})
        ForEachKernel<Sample>([which](auto& cases) { return cases.extreme[which / 2][which % 2]; }, check);
}

TYPED_TEST(RankRows, WindowsAreThePlainOnes)
{
    using Sample = TypeParam;
    std::mt19937 random(5);
    const auto check = [&](ExtremeWindows<Sample> kernel, ExtremeWindows<Sample> plain) {
        for (std::size_t height = kWindowsAtOnce; height < 12; height += 3)
            for (std::size_t length = 0; length < 300; length += 1 + length / 9) {
                const auto rows = MakeRows<Sample>(height + kWindowsAtOnce - 1, length, 250, random);
                const auto windowsOf = [&](ExtremeWindows<Sample> run) {
                    std::vector<std::vector<Sample>> windows(kWindowsAtOnce, std::vector<Sample>(length));
                    Sample* outs[kWindowsAtOnce];
                    std::ranges::transform(windows, outs, [](auto& window) { return window.data(); });
                    run(Pointers(rows).data(), height, outs, length);
                    return windows;
                };
                ASSERT_EQ(windowsOf(kernel), windowsOf(plain)) << length << " of " << height;
            }
    };
    for (const bool largest : {false, true})
        ForEachKernel<Sample>([largest](auto& cases) { return cases.windows[largest]; }, check);
}

TYPED_TEST(RankRows, MiddlesAreThePlainOnes)
{
    using Sample = TypeParam;
    std::mt19937 random(2);
    const auto check = [&](MiddleRow<Sample> kernel, MiddleRow<Sample> plain) {
        for (std::size_t count = 1; count <= kMostMiddleRows; count += 1 + count / 12)
            for (const unsigned values : {2U, 7U, 250U}) {
                const std::size_t length = random() % (count < 30 ? 150 : 20);
                const auto rows = MakeRows<Sample>(count, length, values, random);
                std::vector<Sample> chosen(length), expected(length);
                kernel(Pointers(rows).data(), count, chosen.data(), length);
                plain(Pointers(rows).data(), count, expected.data(), length);
                ASSERT_EQ(chosen, expected) << count << " rows of " << values << " values";
            }
    };
    ForEachKernel<Sample>([](auto& cases) { return cases.middle; }, check);
}

// What follows the exchanges without making them ends where they do.
TYPED_TEST(RankRows, PlacesAmongEqualKeys)
{
    using Sample = TypeParam;
    std::mt19937 random(3);
    KeyCounts<Sample> counts;
    MiddlePlace<Sample> place;
    ASSERT_TRUE(counts.Allocate() && place.Allocate(99));
    counts.Clear();
    for (int i = 0; i < 4000; ++i) {
        const unsigned values = 1U << random() % 8;
        const std::vector<Sample> keys = MakeRows<Sample>(1, 1 + random() % 99, values, random)[0];
        std::vector<RankedPlace<Sample>> list;
        for (const Sample key : keys) {
            list.push_back({key, list.size()});
            counts.Add(key);
        }
        const MiddleKey<Sample> middle = counts.KeyAt(keys.size() / 2);
        const std::size_t expected = FindMedian(list.data(), list.size());
        ASSERT_EQ(middle.key, keys[expected]);
        ASSERT_EQ(place(keys.data(), keys.size(), counts, middle), expected)
            << keys.size() << " of " << values << " values";
        for (const Sample key : keys)
            counts.Remove(key);
    }
}

TEST(RankRows, PicksAreThePlainOnes)
{
    using Words = std::vector<std::uint32_t>;
    std::mt19937 random(4);
    for (const Level level : VectorLevels()) {
        ASSERT_NE(RankRowsAt(level).pick, RankRowsAt(Below(level)).pick);
        for (std::size_t words = 0; words < 200; words += 1 + words / 9)
            for (const std::size_t count : {1U, 2U, 5U}) {
                std::vector<Words> keys(count, Words(words)), pixels(keys);
                std::vector<KeyedPixels> rows;
                for (std::size_t row = 0; row < count; ++row) {
                    for (std::uint32_t& key : keys[row])
                        key = static_cast<std::uint32_t>(random() % 4 * 0x2AAAAAAA % 0x7FFFFFFF);
                    for (std::uint32_t& pixel : pixels[row])
                        pixel = static_cast<std::uint32_t>(random());
                    rows.push_back(
                        {keys[row].data(), reinterpret_cast<const std::uint8_t*>(pixels[row].data())});
                }
                const auto resultsOf = [&](Level at) {
                    std::pair<Words, Words> out{keys[0], keys[0]};
                    RankRowsAt(at).pick(rows.data(), count, out.first.data(),
                                        reinterpret_cast<std::uint8_t*>(out.second.data()), words);
                    return out;
                };
                ASSERT_EQ(resultsOf(level), resultsOf(Level::Plain)) << words << ' ' << count;
            }
    }
}

// Every colour; alpha, which is not looked at, varies with it.
TEST(RankRows, KeysOfEveryColour)
{
    std::vector<std::uint8_t> pixels(4 * 65536), keys(65536), expected(65536);
    for (const Level level : {Level::Plain, Level::Sse2, Level::Avx2, Level::Avx512}) {
        for (std::size_t red = 0; red < 256; ++red) {
            for (std::size_t i = 0; i < 65536; ++i) {
                const std::size_t colour[] = {red, i >> 8, i & 255, i * red};
                for (std::size_t c = 0; c < 4; ++c)
                    pixels[4 * i + c] = static_cast<std::uint8_t>(colour[c]);
                expected[i] = static_cast<std::uint8_t>((red * 29 + (i >> 8) * 57 + (i & 255) * 11) / 97);
            }
            RankRowsAt(level).cases8.key(pixels.data(), keys.data(), keys.size());
            ASSERT_EQ(keys, expected) << "red " << red;
        }
        std::vector<std::uint8_t> few(37);
        for (std::size_t count = 0; count <= few.size(); ++count) {
            RankRowsAt(level).cases8.key(pixels.data(), few.data(), count);
            ASSERT_TRUE(std::equal(few.begin(), few.begin() + static_cast<long>(count), expected.begin()));
        }
    }
}

} // namespace

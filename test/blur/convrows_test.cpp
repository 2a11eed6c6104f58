/// \file
/// The vector forms of the convolutions' sums against the plain ones.
#include "il/rows/blur/convrows.h"

#include "support/rowcheck.h"

#include <limits>

namespace vfil {
namespace {

/// Values rich in the ends of what a source can hold.
template <class Value>
std::vector<Value> RichValues(std::size_t count, std::mt19937& random)
{
    std::vector<Value> values(count);
    for (Value& value : values)
        value = static_cast<Value>(random() % 4 == 0 ? 0x7FFF + static_cast<int>(random() % 2)
                                                     : static_cast<int>(random()));
    return values;
}

/// Runs a kernel of all levels on rows of every length to some vectors, of every alignment, with a guard
/// behind the output; call(kernel, sources, weights, out, samples) runs one.
template <class In, class Out, class Weight, class Member, class MakeWeight, class Call>
void CheckSums(Member member, MakeWeight makeWeight, Call call)
{
    std::mt19937 random(8);
    for (const Level level : VectorLevels()) {
        EXPECT_NE(ConvRowsAt(level).*member, ConvRowsAt(Below(level)).*member) << "compared with itself";
        for (std::size_t samples = 0; samples < 330; samples += samples < 130 ? 1 : 37) {
            const std::size_t count = random() % 8 / 2 * 2;
            std::vector<PlacedRow<In>> rows;
            std::vector<const In*> sources;
            std::vector<Weight> weights;
            for (std::size_t k = 0; k < count; ++k) {
                rows.emplace_back(RichValues<In>(samples, random), random() % 64 / sizeof(In) * sizeof(In),
                                  false);
                weights.push_back(makeWeight(random));
            }
            for (PlacedRow<In>& row : rows)
                sources.push_back(row.Data());
            PlacedRow<Out> out(std::vector<Out>(samples), samples % 64 / sizeof(Out) * sizeof(Out), true);
            PlacedRow<Out> plain = out;
            call(ConvRowsAt(level).*member, sources.data(), weights, out.Data(), samples);
            call(ConvRowsAt(Level::Plain).*member, sources.data(), weights, plain.Data(), samples);
            ASSERT_EQ(out, plain) << "level " << static_cast<int>(level) << ", " << samples << " samples";
        }
    }
}

/// Sums of six stay within 32 bits whatever the samples are. Those of quarters fall on halves.
std::int16_t FixedWeight(std::mt19937& random)
{
    const int quarter = random() % 2 ? 8192 : -8192;
    return static_cast<std::int16_t>(random() % 2 ? quarter : static_cast<int>(random() % 21801) - 10900);
}

void CheckFixed(FixedSumRow ConvRows::*member)
{
    CheckSums<std::uint8_t, std::uint8_t, std::int16_t>(
        member, FixedWeight, [](auto row, auto* sources, auto& weights, std::uint8_t* out, auto n) {
            row(sources, weights.data(), weights.size(), out, n);
        });
}

/// Runs an entry of a level's table and of the plain one; call(entry, out) runs one.
template <class Out, class Member, class Call>
void CheckEntry(Level level, Member member, std::size_t outs, Call call)
{
    EXPECT_NE(ConvRowsAt(level).*member, ConvRowsAt(Below(level)).*member) << "compared with itself";
    PlacedRow<Out> out(std::vector<Out>(outs), 0, true);
    PlacedRow<Out> plain = out;
    call(ConvRowsAt(level).*member, out.Data());
    call(ConvRowsAt(Level::Plain).*member, plain.Data());
    ASSERT_EQ(out, plain) << "level " << static_cast<int>(level) << ", " << outs << " results";
}

template <class In, class Out>
void CheckFloat(FloatSumRow<In, Out> ConvRows::*member)
{
    const auto weight = [](std::mt19937& random) {
        if (random() % 50 == 0) return random() % 2 ? std::numeric_limits<float>::infinity() : 1e36F;
        return static_cast<float>(static_cast<int>(random() % 4001) - 1500) / 4000;
    };
    CheckSums<In, Out, float>(member, weight, [](auto row, auto* sources, auto& weights, Out* out, auto n) {
        row(sources, weights.data(), weights.size(), 1.75F, out, n);
    });
}

TEST(ConvRows, AreThePlainForms)
{
    CheckFixed(&ConvRows::fixed);
    CheckFloat(&ConvRows::float8);
    CheckFloat(&ConvRows::float8Down);
    CheckFloat(&ConvRows::float16);
    CheckFloat(&ConvRows::float16Down);
    CheckFloat(&ConvRows::float8Across);
    CheckFloat(&ConvRows::float16Across);
}

TEST(ConvRows, PairsAreThePlainForms)
{
    std::mt19937 random(9);
    for (const Level level : VectorLevels())
        for (std::size_t samples = 0; samples < 100; ++samples) {
            PlacedRow<std::uint8_t> row(RichValues<std::uint8_t>(samples, random), samples % 5, false);
            CheckEntry<std::uint32_t>(level, &ConvRows::pairs, samples, [&](auto makePairs, auto* pairs) {
                makePairs(row.Data(), pairs, samples);
            });
        }
}

TEST(ConvRows, FixedPassesAreThePlainForms)
{
    std::mt19937 random(10);
    for (const Level level : VectorLevels())
        for (std::size_t trial = 0; trial < 32; ++trial) {
            const std::size_t samples = trial % 4 * kGrain;
            const std::size_t count = trial / 4 % 4 * 2;
            std::vector<std::int16_t> weights(count * kTileRows);
            std::generate(weights.begin(), weights.end(), [&] { return FixedWeight(random); });
            std::vector<std::uint32_t> pairs(samples + 4 * count);
            std::generate(pairs.begin(), pairs.end(), [&] { return random() & 0x00FF00FF; });
            CheckEntry<std::int16_t>(level, &ConvRows::fixedAcross, samples, [&](auto row, auto* out) {
                row(pairs.data(), weights.data(), count, out, samples);
            });
            std::vector<std::vector<std::int16_t>> rows;
            std::vector<const std::int16_t*> sources;
            for (std::size_t k = 0; k < count; ++k)
                sources.push_back(rows.emplace_back(RichValues<std::int16_t>(samples, random)).data());
            const std::size_t step = samples + 3;
            CheckEntry<std::uint8_t>(level, &ConvRows::fixedDown, kTileRows * step,
                                     [&](auto tile, auto* out) {
                                         tile(sources.data(), weights.data(), count, out, step, samples);
                                     });
        }
}

} // namespace
} // namespace vfil

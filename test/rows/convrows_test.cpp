/// \file
/// The vector forms of the convolutions' sums against the plain ones.
#include "il/rows/convrows.h"

#include "rowcheck.h"

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

template <class In, class Out>
void CheckFixed(FixedSumRow<In, Out> ConvRows::*member)
{
    // Sums of so many stay within 32 bits whatever the samples are. Those of quarters fall on halves.
    const auto weight = [](std::mt19937& random) {
        const int quarter = random() % 2 ? 8192 : -8192;
        return static_cast<std::int16_t>(random() % 2 ? quarter : static_cast<int>(random() % 21801) - 10900);
    };
    CheckSums<In, Out, std::int16_t>(member, weight,
                                     [](auto row, auto* sources, auto& weights, Out* out, auto n) {
                                         row(sources, weights.data(), weights.size(), out, n);
                                     });
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
    CheckFixed(&ConvRows::fixedAcross);
    CheckFixed(&ConvRows::fixedDown);
    CheckFloat(&ConvRows::float8);
    CheckFloat(&ConvRows::float8Down);
    CheckFloat(&ConvRows::float16);
    CheckFloat(&ConvRows::float16Down);
    CheckFloat(&ConvRows::float8Across);
    CheckFloat(&ConvRows::float16Across);
}

} // namespace
} // namespace vfil

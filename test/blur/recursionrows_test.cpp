/// \file
/// The vector forms of the recursions against the plain ones.
#include "il/rows/blur/recursionrows.h"

#include "support/rowcheck.h"

#include <cmath>

namespace vfil {
namespace {

/// Some steps of three groups, with rows that repeat and rows that move on, back and forth, results that are
/// wanted and that are not.
template <class Input, class Number, class MakeInput>
void CheckRecursion(RecursionRow<Input, Number> RecursionPair<Input, Number>::*member,
                    const RecursionFactors<Number>& factors, Level lowest, MakeInput makeInput)
{
    using Pair = RecursionPair<Input, Number>;
    constexpr std::size_t kGroups = 3, kSequences = kGroups * RecursionForm<Number>::kGroup, kSteps = 9;
    constexpr auto kStep = static_cast<std::ptrdiff_t>(kSequences);
    constexpr auto kAcross = static_cast<std::ptrdiff_t>(RecursionForm<Number>::kGroup);
    std::mt19937 random(11);
    for (const Level level : VectorLevels()) {
        const Pair &pair = RecursionRowsAt(level), &plain = RecursionRowsAt(Level::Plain);
        ASSERT_TRUE(level < lowest || level > BestLevel() || pair.*member != plain.*member);
        for (int i = 0; i < 40; ++i) {
            std::vector<Input> inputs(3 * kSteps * kSequences);
            for (Input& value : inputs)
                value = makeInput(random);
            std::vector<Number> states(2 * kSequences);
            for (Number& state : states)
                state = static_cast<Number>(makeInput(random));
            const auto run = [&](const Pair& at) {
                std::vector<typename RecursionForm<Number>::Value> results((kSteps + 1) * kSequences);
                std::vector<Number> ownStates = states;
                (at.*
                 member)({{inputs.data(), kStep, kAcross},
                          {inputs.data() + kSteps * kSequences, i % 2 == 0 ? 0 : kStep, kAcross},
                          {inputs.data() + (3 * kSteps - 1) * kSequences, -kStep, i % 5 == 0 ? 0 : kAcross},
                          {i % 4 == 0 ? nullptr : results.data() + (kSteps - 1) * kSequences,
                           i % 3 == 0 ? 0 : -kStep, kAcross},
                          ownStates.data(),
                          kGroups,
                          kSteps},
                         factors);
                return std::pair(results, ownStates);
            };
            ASSERT_EQ(run(pair), run(plain)) << "level " << static_cast<int>(level);
        }
    }
}

template <class Input, class Number, class MakeInput>
void CheckPair(const RecursionFactors<Number>& factors, Level lowest, MakeInput makeInput)
{
    CheckRecursion(&RecursionPair<Input, Number>::exponential, factors, lowest, makeInput);
    CheckRecursion(&RecursionPair<Input, Number>::fastGauss, factors, lowest, makeInput);
}

TEST(RecursionRows, AreThePlainForms)
{
    // Any values: what leaves 32 bits wraps in the same way.
    const auto whole = [](std::mt19937& random) { return static_cast<std::int16_t>(random()); };
    const auto byte = [](std::mt19937& random) { return static_cast<std::uint8_t>(random()); };
    const RecursionFactors<std::int32_t> fixed{65536, 12345, 40001, 65530};
    CheckPair<std::int16_t>(fixed, Level::Avx2, whole);
    CheckPair<std::uint8_t>(fixed, Level::Avx2, byte);
    const auto real = [](std::mt19937& random) { return static_cast<float>(random() % 65536) / 3; };
    const auto pair = [](std::mt19937& random) { return static_cast<std::uint16_t>(random()); };
    const RecursionFactors<double> floating{0.37, 0.11, 0.25, 0.93};
    CheckPair<float>(floating, Level::Sse2, real);
    CheckPair<std::uint8_t>(floating, Level::Sse2, byte);
    CheckPair<std::uint16_t>(floating, Level::Sse2, pair);
}

/// Of all lengths to some vectors, with guards behind the samples.
template <class Value, class Sample>
void CheckSamples(const std::vector<Value>& values)
{
    using Row = ResultSamples<Value, Sample>;
    for (const Level level : VectorLevels()) {
        const Row &row = RecursionRowsAt(level), &plain = RecursionRowsAt(Level::Plain);
        ASSERT_TRUE(level > BestLevel() || row.toSamples != plain.toSamples);
        for (std::size_t count = 0; count <= values.size();
             count = count == 200 ? values.size() : count + 1) {
            const auto run = [&](const Row& at) {
                const std::vector<Value> own(values.begin(),
                                             values.begin() + static_cast<std::ptrdiff_t>(count));
                std::vector<Sample> samples(count + 64, Sample{0xA5});
                at.toSamples(own.data(), samples.data(), count);
                return samples;
            };
            ASSERT_EQ(run(row), run(plain)) << "level " << static_cast<int>(level) << " count " << count;
        }
    }
}

TEST(RecursionRows, ResultsBecomeTheSamplesOfThePlainForms)
{
    std::vector<std::int16_t> fixed;
    for (int value = -0x8000; value < 0x8000; value += 13)
        fixed.push_back(static_cast<std::int16_t>(value));
    CheckSamples<std::int16_t, std::uint8_t>(fixed);
    // Halves and their neighbours, which are rounded apart.
    std::vector<float> reals{-1e30F, -0.5F, 1e30F, 65534.5F, 65535.5F, std::nanf("")};
    for (float half = 0.5F; half < 66000; half += half < 300 ? 1 : 37)
        for (const float value : {std::nextafter(half, 0.0F), half, std::nextafter(half, 1e9F)})
            reals.push_back(value);
    CheckSamples<float, std::uint8_t>(reals);
    CheckSamples<float, std::uint16_t>(reals);
}

} // namespace
} // namespace vfil

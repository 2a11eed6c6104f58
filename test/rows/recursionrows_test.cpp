/// \file
/// The vector forms of the recursions against the plain ones.
#include "il/rows/recursionrows.h"

#include "rowcheck.h"

namespace vfil {
namespace {

/// Some steps of 96 sequences, with rows that repeat and rows that move on, back and forth.
template <class Value, class Number, class MakeValue>
void CheckRecursion(RecursionRow<Value, Number> RecursionRows::*member,
                    const RecursionFactors<Number>& factors, Level lowest, MakeValue makeValue)
{
    constexpr std::size_t kSequences = 3 * kSequenceGroup, kSteps = 9;
    std::mt19937 random(11);
    for (const Level level : VectorLevels()) {
        ASSERT_TRUE(level != lowest ||
                    RecursionRowsAt(level).*member != RecursionRowsAt(Level::Plain).*member);
        for (int i = 0; i < 40; ++i) {
            std::vector<Value> inputs(3 * kSteps * kSequences);
            for (Value& value : inputs)
                value = makeValue(random);
            std::vector<Number> states(2 * kSequences);
            for (Number& state : states)
                state = static_cast<Number>(makeValue(random));
            const auto run = [&](Level at) {
                std::vector<Value> results((kSteps + 1) * kSequences);
                std::vector<Number> ownStates = states;
                const auto step = static_cast<std::ptrdiff_t>(kSequences);
                (RecursionRowsAt(at).*
                 member)({{inputs.data(), step},
                          {inputs.data() + kSteps * kSequences, i % 2 == 0 ? 0 : step},
                          {inputs.data() + (3 * kSteps - 1) * kSequences, -step},
                          {results.data() + (kSteps - 1) * kSequences, i % 3 == 0 ? 0 : -step},
                          ownStates.data(),
                          kSequences,
                          kSteps},
                         factors);
                return std::pair(results, ownStates);
            };
            ASSERT_EQ(run(level), run(Level::Plain)) << "level " << static_cast<int>(level);
        }
    }
}

TEST(RecursionRows, AreThePlainForms)
{
    // Any values: what leaves 32 bits wraps in the same way.
    const auto whole = [](std::mt19937& random) { return static_cast<std::int16_t>(random()); };
    const RecursionFactors<std::int32_t> fixed{65536, 12345, 40001, 65530};
    CheckRecursion(&RecursionRows::exponentialFixed, fixed, Level::Avx2, whole);
    CheckRecursion(&RecursionRows::fastGaussFixed, fixed, Level::Avx2, whole);
    const auto real = [](std::mt19937& random) { return static_cast<float>(random() % 65536) / 3; };
    const RecursionFactors<double> floating{0.37, 0.11, 0.25, 0.93};
    CheckRecursion(&RecursionRows::exponentialFloat, floating, Level::Sse2, real);
    CheckRecursion(&RecursionRows::fastGaussFloat, floating, Level::Sse2, real);
}

} // namespace
} // namespace vfil

/// \file
/// The vector forms of the kernels that make rows of rows against the plain ones.
#include "il/rows/field/weaverows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

/// Compares one kernel of all levels with the plain form; call(kernel, rows, out, samples) runs one on three
/// rows.
template <class Sample, class Member, class Call>
void CheckWeaveRow(Member member, bool inPlace, Call call)
{
    std::mt19937 random(15);
    const auto plain = (WeaveRowsAt(Level::Plain).*member)[0];
    for (const Level level : VectorLevels()) {
        for (const auto kernel : WeaveRowsAt(level).*member) {
            ForEachPlacement<Sample>([&](std::size_t pixels, const Placement& place) {
                if (place.target != Target::Apart && !inPlace) return;
                const std::size_t samples = 4 * pixels + pixels % 3;
                const auto below = EndRichSamples<Sample>(samples, random);
                const auto middle = EndRichSamples<Sample>(samples, random);
                PlacedRow<Sample> above(EndRichSamples<Sample>(samples, random), place.front, false);
                const auto run = [&](auto row) {
                    return [&, row](const Sample* a, const Sample* b, Sample* out) {
                        const Sample* const rows[] = {a, b, above.Data()};
                        call(row, rows, out, samples);
                    };
                };
                ASSERT_TRUE(SameRuns(below, middle, place, run(kernel), run(plain)))
                    << "level " << static_cast<int>(level) << ", samples " << samples << ", at " << place.out;
            });
        }
        EXPECT_NE((WeaveRowsAt(level).*member)[1], (WeaveRowsAt(Below(level)).*member)[1]);
    }
}

TEST(WeaveRows, AreThePlainForms)
{
    const auto merge = [](auto row, auto* const* rows, auto* out, std::size_t samples) {
        row(rows[0], rows[1], rows[2], out, samples);
    };
    CheckWeaveRow<std::uint8_t>(&WeaveRows::merge8, true, merge);
    CheckWeaveRow<std::uint16_t>(&WeaveRows::merge16, true, merge);
    CheckWeaveRow<std::uint8_t>(
        &WeaveRows::weave, false,
        [](auto row, auto* const* rows, auto* out, std::size_t bytes) { row(rows[1], rows[2], out, bytes); });
}

} // namespace
} // namespace vfil

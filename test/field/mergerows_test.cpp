/// \file
/// The vector forms of the kernels that melt fields against the plain ones.
#include "il/rows/field/mergerows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

template <class Sample, class Get>
void CheckMergeRow(Get get)
{
    std::mt19937 random(15);
    for (const Level level : VectorLevels()) {
        ForEachPlacement<Sample>([&](std::size_t pixels, const Placement& place) {
            const std::size_t samples = pixels * 4 + pixels % 3;
            PlacedRow<Sample> above(EndRichSamples<Sample>(samples, random), place.front / 2 * 2, false);
            const auto run = [&](Level at) {
                return [&, at](const Sample* below, const Sample* middle, Sample* out) {
                    get(MergeRowsAt(at))(below, middle, above.Data(), out, samples);
                };
            };
            ASSERT_TRUE(SameRuns<Sample>(EndRichSamples<Sample>(samples, random),
                                         EndRichSamples<Sample>(samples, random), place, run(level),
                                         run(Level::Plain)))
                << "level " << static_cast<int>(level) << ", samples " << samples;
        });
        EXPECT_NE(get(MergeRowsAt(level)), get(MergeRowsAt(Below(level))));
    }
}

TEST(MergeRows, AreThePlainForms)
{
    for (const bool streaming : {false, true}) {
        CheckMergeRow<std::uint8_t>([=](const MergeRows& rows) { return rows.merge8[streaming]; });
        CheckMergeRow<std::uint16_t>([=](const MergeRows& rows) { return rows.merge16[streaming]; });
    }
}

} // namespace
} // namespace vfil

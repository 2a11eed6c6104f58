/// \file
/// The vector forms of the edge filters' kernels against the plain ones.
#include "il/rows/edge/edgerows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

/// Compares a kernel of all levels with the plain form: rows of all lengths to more than two vectors, with
/// one and with four samples a pixel, then at all alignments. get(rows, kernel) gives the table's entry,
/// run(entry, window, out, samples, params) runs it.
template <class Sample, class Get, class Run>
void CheckEdgeRow(Get get, Run run)
{
    std::mt19937 random(11);
    constexpr std::size_t kMost = 2 * 64 / sizeof(Sample) + 7;
    for (const Level level : VectorLevels()) {
        ASSERT_NE(get(EdgeRowsAt(level)), get(EdgeRowsAt(Below(level))));
        for (std::size_t i = 0; i < 2 * kMost + 64 / sizeof(Sample); ++i) {
            const std::size_t samples = std::min(i / 2, kMost - 1), pixelSamples = i % 2 == 0 ? 4 : 1;
            const std::size_t offset = i < 2 * kMost ? 0 : (i - 2 * kMost) * sizeof(Sample);
            std::vector<PlacedRow<Sample>> rows;
            for (const std::size_t step : {1, 3, 5})
                rows.emplace_back(EndRichSamples<Sample>(samples + 2 * pixelSamples, random),
                                  offset * step % 64, false);
            PlacedRow<Sample> fast(EndRichSamples<Sample>(samples, random), offset, true), plain = fast;
            const EdgeWindow<Sample> window{rows[0].Data(), rows[1].Data(), rows[2].Data(), pixelSamples};
            const auto limits = EndRichSamples<Sample>(2, random);
            const EdgeParams<Sample> params{random() % 3 ? limits[0] : Sample{0}, limits[1],
                                            random() % 2 == 0};
            run(get(EdgeRowsAt(level)), window, fast.Data(), samples, params);
            run(get(EdgeRowsAt(Level::Plain)), window, plain.Data(), samples, params);
            ASSERT_EQ(fast, plain) << "level " << static_cast<int>(level) << ", samples " << samples;
        }
    }
}

TEST(EdgeRows, AreThePlainForms)
{
    const auto edge = [](auto row, auto& window, auto* out, std::size_t samples, auto& params) {
        row(window, out, samples, params);
    };
    for (std::size_t op = 0; op < kEdgeOps; ++op) {
        SCOPED_TRACE(testing::Message() << "response " << op);
        CheckEdgeRow<std::uint8_t>([op](const EdgeRows& rows) { return rows.edge8[op]; }, edge);
        CheckEdgeRow<std::uint16_t>([op](const EdgeRows& rows) { return rows.edge16[op]; }, edge);
    }
    const auto angle = [](auto row, auto& window, auto* out, std::size_t samples, auto&) {
        row(window, out, samples);
    };
    for (std::size_t op = 0; op < kAngleOps; ++op) {
        SCOPED_TRACE(testing::Message() << "angle " << op);
        CheckEdgeRow<std::uint8_t>([op](const EdgeRows& rows) { return rows.angle8[op]; }, angle);
        CheckEdgeRow<std::uint16_t>([op](const EdgeRows& rows) { return rows.angle16[op]; }, angle);
    }
}

} // namespace
} // namespace vfil

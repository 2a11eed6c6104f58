/// \file
/// The vector forms of invert and copy against the plain ones.
#include "il/rows/pixel/pointrows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

/// Compares one kernel of all levels with the plain form; call(kernel, in, out, pixels) runs one.
template <class Sample, class Member, class Call>
void CheckPointRow(Member member, Call call)
{
    std::mt19937 random(7);
    const auto plain = (PointRowsAt(Level::Plain).*member)[0];
    for (const Level level : VectorLevels()) {
        for (const auto kernel : PointRowsAt(level).*member) {
            ForEachPlacement<Sample>([&](std::size_t pixels, const Placement& place) {
                if (place.target == Target::Front) return;
                const auto in = EndRichSamples<Sample>(4 * pixels, random);
                const auto run = [&](auto row) {
                    return [&call, pixels, row](const Sample* b, const Sample*, Sample* out) {
                        call(row, b, out, pixels);
                    };
                };
                ASSERT_TRUE(SameRuns(in, in, place, run(kernel), run(plain)))
                    << "level " << static_cast<int>(level) << ", pixels " << pixels << ", at " << place.out;
            });
        }
        EXPECT_NE((PointRowsAt(level).*member)[1], (PointRowsAt(Below(level)).*member)[1]);
    }
}

TEST(PointRows, AreThePlainForms)
{
    CheckPointRow<std::uint8_t>(&PointRows::invert8, [](auto row, auto* in, auto* out, std::size_t pixels) {
        row(in, out, pixels, pixels % 2 == 0 ? 0xFF00FF00u : 0x00FFFFFFu);
    });
    CheckPointRow<std::uint16_t>(&PointRows::invert16, [](auto row, auto* in, auto* out, std::size_t pixels) {
        row(in, out, pixels, pixels % 2 == 0 ? 0x0000'0000'0000'FFFFull : 0xFFFF'0000'FFFF'0000ull);
    });
    // Counts of samples that are no multiple of four, too.
    const auto ragged = [](std::size_t pixels) { return pixels == 0 ? 0 : 4 * pixels - pixels % 4; };
    const auto mono = [=](auto row, auto* in, auto* out, std::size_t pixels) {
        row(in, out, ragged(pixels));
    };
    CheckPointRow<std::uint8_t>(&PointRows::invertMono8, mono);
    CheckPointRow<std::uint16_t>(&PointRows::invertMono16, mono);
    CheckPointRow<std::uint8_t>(&PointRows::copy, [=](auto row, auto* in, auto* out, std::size_t pixels) {
        if (in != out) row(in, out, ragged(pixels));
    });
}

} // namespace
} // namespace vfil

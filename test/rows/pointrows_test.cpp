/// \file
/// The vector forms of invert and copy against the plain ones.
#include "il/rows/pointrows.h"

#include "rowcheck.h"

namespace vfil {
namespace {

/// Compares one kernel of all levels with the plain form; call(kernel, in, out, pixels) runs one.
template <class Sample, class Member, class Call>
void CheckPointRow(Member member, Call call)
{
    std::mt19937 random(7);
    const auto plain = (PointRowsAt(Level::Plain).*member)[0];
    for (const Level level : VectorLevels()) {
        for (const bool streaming : {false, true}) {
            const auto kernel = (PointRowsAt(level).*member)[streaming];
            ForEachPlacement<Sample>([&](std::size_t pixels, Offsets offsets, Target target) {
                if (target == Target::Front) return;
                const auto in = EndRichSamples<Sample>(4 * pixels, random);
                const auto run = [&](auto row) {
                    return [&call, pixels, row](const Sample* b, const Sample*, Sample* out) {
                        call(row, b, out, pixels);
                    };
                };
                ASSERT_TRUE(SameRuns(in, in, offsets, target, run(kernel), run(plain)))
                    << LevelName(level) << ", pixels " << pixels << ", at " << offsets.out;
            });
        }
    }
}

TEST(PointRows, AreThePlainForms)
{
    for (const std::uint32_t select : {0u, 0x000000FFu, 0xFF00FF00u, 0x00FFFFFFu}) {
        CheckPointRow<std::uint8_t>(
            &PointRows::invert8,
            [=](auto row, auto* in, auto* out, std::size_t pixels) { row(in, out, pixels, select); });
    }
    for (const std::uint64_t select : {0x0000'0000'0000'FFFFull, 0xFFFF'0000'FFFF'0000ull}) {
        CheckPointRow<std::uint16_t>(
            &PointRows::invert16,
            [=](auto row, auto* in, auto* out, std::size_t pixels) { row(in, out, pixels, select); });
    }
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

TEST(PointRows, InvertFullLessSelectedChannels)
{
    const std::uint8_t in[8] = {0, 1, 254, 255, 10, 20, 30, 40};
    std::uint8_t out[8];
    PointRowsAt(Level::Plain).invert8[0](in, out, 2, 0xFF0000FFu);
    const std::uint8_t expected[8] = {255, 1, 254, 0, 245, 20, 30, 215};
    EXPECT_TRUE(std::equal(out, out + 8, expected));
    const std::uint16_t in16[4] = {0, 1, 0x1234, 65535};
    std::uint16_t out16[4];
    PointRowsAt(Level::Plain).invert16[0](in16, out16, 1, 0x0000'FFFF'FFFF'0000ull);
    const std::uint16_t expected16[4] = {0, 65534, 0xEDCB, 65535};
    EXPECT_TRUE(std::equal(out16, out16 + 4, expected16));
}

TEST(PointRows, EachLevelHasItsOwn)
{
    for (const Level level : VectorLevels()) {
        const PointRows& rows = PointRowsAt(level);
        const PointRows& below = PointRowsAt(Below(level));
        for (const int streaming : {0, 1}) {
            EXPECT_NE(rows.invert8[streaming], below.invert8[streaming]);
            EXPECT_NE(rows.invertMono8[streaming], below.invertMono8[streaming]);
            EXPECT_NE(rows.invert16[streaming], below.invert16[streaming]);
            EXPECT_NE(rows.invertMono16[streaming], below.invertMono16[streaming]);
        }
        EXPECT_NE(rows.copy[1], below.copy[1]);
    }
}

} // namespace
} // namespace vfil

/// \file
/// The vector forms of the kernels that fill missing rows against the plain ones.
#include "il/rows/field/deinterlacerows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

/// Compares one kernel of all levels with the plain form; call(kernel, here, compared, out, samples, random)
/// runs one.
template <class Sample, class Member, class Call>
void CheckFieldRow(Member member, Call call)
{
    std::mt19937 random(7);
    const auto plain = (DeinterlaceRowsAt(Level::Plain).*member)[0];
    for (const Level level : VectorLevels()) {
        for (const auto kernel : DeinterlaceRowsAt(level).*member) {
            ForEachPlacement<Sample>([&](std::size_t pixels, const Placement& place) {
                const std::size_t samples = pixels == 0 ? 0 : 4 * pixels - pixels % 4;
                const auto here = EndRichSamples<Sample>(samples, random);
                auto compared = EndRichSamples<Sample>(samples, random);
                for (std::size_t i = 0; i < samples; i += 2)
                    compared[i] = static_cast<Sample>(here[i] ^ (compared[i] & 0x1F));
                const auto seed = random();
                const auto run = [&](auto row) {
                    return [&call, samples, row, seed](const Sample* b, const Sample* f, Sample* out) {
                        call(row, b, f, out, samples, seed);
                    };
                };
                ASSERT_TRUE(SameRuns(here, compared, place, run(kernel), run(plain)))
                    << "level " << static_cast<int>(level) << ", samples " << samples << ", at " << place.out;
            });
        }
        EXPECT_NE((DeinterlaceRowsAt(level).*member)[1], (DeinterlaceRowsAt(Below(level)).*member)[1]);
    }
}

template <class Sample>
MotionRamp RandomRamp(std::mt19937& random)
{
    constexpr std::array<std::array<double, 2>, 8> kThresholds = {
        {{0, 0.15}, {0, 0.03}, {0.1, 0.1}, {0, 0}, {0, 1}, {1, 1}, {0.02, 0.0671}, {0.01, 0.2}}};
    const auto& [low, high] = kThresholds[random() % kThresholds.size()];
    return MotionRampOf<Sample>(low, high);
}

TEST(DeinterlaceRows, AreThePlainForms)
{
    const auto mean = [](auto row, auto* a, auto* b, auto* out, std::size_t samples,
                         std::mt19937::result_type) { row(a, b, out, samples); };
    CheckFieldRow<std::uint8_t>(&DeinterlaceRows::mean8, mean);
    CheckFieldRow<std::uint16_t>(&DeinterlaceRows::mean16, mean);
    const auto adaptive = [](auto row, auto* here, auto* compared, auto* out, std::size_t samples,
                             std::mt19937::result_type seed) {
        using Sample = std::remove_reference_t<decltype(*out)>;
        std::mt19937 random(seed);
        const auto above = EndRichSamples<Sample>(samples, random);
        const auto below = EndRichSamples<Sample>(samples, random);
        row({above.data(), below.data(), here, compared}, out, samples, RandomRamp<Sample>(random));
    };
    CheckFieldRow<std::uint8_t>(&DeinterlaceRows::adaptive8, adaptive);
    CheckFieldRow<std::uint16_t>(&DeinterlaceRows::adaptive16, adaptive);
}

/// All bytes here, compared and beside, by ramps whose widths are odd, powers of two, and others, where
/// halves come.
TEST(DeinterlaceRows, MixAllBytesAlike)
{
    constexpr std::size_t kSamples = 65536;
    std::vector<std::uint8_t> here(kSamples), compared(kSamples), beside(kSamples), result(kSamples),
        expected;
    for (std::size_t i = 0; i < kSamples; ++i) {
        compared[i] = static_cast<std::uint8_t>(i);
        beside[i] = static_cast<std::uint8_t>(i >> 8);
    }
    for (const std::array<int, 2> ramp :
         {std::array{0, 38}, {2, 8}, {10, 59}, {100, 164}, {0, 254}, {3, 4}}) {
        const MotionRamp motion{ramp[0], ramp[1], 1.0 / (ramp[1] - ramp[0])};
        for (int value = 0; value < 256; ++value) {
            std::fill(here.begin(), here.end(), static_cast<std::uint8_t>(value));
            const RowsAround<std::uint8_t> rows{beside.data(), beside.data(), here.data(), compared.data()};
            DeinterlaceRowsAt(Level::Plain).adaptive8[0](rows, result.data(), kSamples, motion);
            expected = result;
            for (const Level level : VectorLevels()) {
                DeinterlaceRowsAt(level).adaptive8[0](rows, result.data(), kSamples, motion);
                ASSERT_EQ(result, expected) << "level " << static_cast<int>(level) << ", " << ramp[0]
                                            << " to " << ramp[1] << ", here " << value;
            }
        }
    }
}

} // namespace
} // namespace vfil

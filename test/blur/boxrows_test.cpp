/// \file
/// The vector forms of the box blur's sums against the plain ones.
#include "il/rows/blur/boxrows.h"

#include "support/rowcheck.h"

#include <array>

namespace vfil {
namespace {

TEST(BoxRows, ColumnsMoveAsInThePlainForm)
{
    std::mt19937 random(9);
    for (const Level level : VectorLevels()) {
        EXPECT_NE(BoxRowsAt(level).move, BoxRowsAt(Below(level)).move) << "compared with itself";
        for (std::size_t samples = 0; samples < 200; ++samples) {
            PlacedRow<std::uint8_t> gained(EndRichSamples<std::uint8_t>(samples, random), samples % 64,
                                           false);
            PlacedRow<std::uint8_t> lost(EndRichSamples<std::uint8_t>(samples, random), samples * 5 % 64,
                                         false);
            std::vector<std::uint32_t> sums(samples + kColumnSlack, 1000), plain(sums);
            BoxRowsAt(level).move(gained.Data(), lost.Data(), sums.data(), samples);
            BoxRowsAt(Level::Plain).move(gained.Data(), lost.Data(), plain.data(), samples);
            sums.resize(samples);
            plain.resize(samples);
            ASSERT_EQ(sums, plain) << "level " << static_cast<int>(level) << ", " << samples << " samples";
        }
    }
}

// Up to the largest sums that 32 bits hold.
TEST(BoxRows, RowsAreThePlainForms)
{
    std::mt19937 random(10);
    for (const Level level : VectorLevels())
        for (const std::size_t channels : {1U, 4U}) {
            const auto member = channels == 4 ? &BoxRows::pixels : &BoxRows::mono;
            EXPECT_NE(BoxRowsAt(level).*member, BoxRowsAt(Below(level)).*member) << "compared with itself";
            for (std::size_t pixels = 0; pixels < 150; ++pixels) {
                const std::size_t width = 1 + random() % (pixels % 7 == 0 ? 90 : 9);
                const std::uint32_t height = pixels % 2 == 0 ? 1 + static_cast<std::uint32_t>(random() % 50)
                                                             : 16843009 / static_cast<std::uint32_t>(width);
                std::vector<std::uint32_t> columns(channels + (pixels + width - 1) * channels + kColumnSlack);
                std::array<std::uint32_t, 4> beyond{0 - height, height, 0, height / 2};
                for (std::uint32_t& sum : columns)
                    sum = height * (random() % 4 == 0 ? 254 : 1 + static_cast<std::uint32_t>(random() % 254));
                auto scale = static_cast<std::uint32_t>(0xFFFFFFFF / (width * height));
                if (pixels % 3 == 0) { // halves of small sums
                    scale = 0x80000000;
                    for (std::uint32_t& sum : columns)
                        sum %= 5;
                    beyond = {3, 1, 0, 2};
                }
                PlacedRow<std::uint8_t> out(std::vector<std::uint8_t>(pixels * channels), pixels % 64, true);
                PlacedRow<std::uint8_t> plain = out;
                (BoxRowsAt(level).*member)(columns.data() + channels, width, beyond.data(), scale, out.Data(),
                                           pixels);
                (BoxRowsAt(Level::Plain).*member)(columns.data() + channels, width, beyond.data(), scale,
                                                  plain.Data(), pixels);
                ASSERT_EQ(out, plain) << "level " << static_cast<int>(level) << ", " << pixels << " pixels";
            }
        }
}

} // namespace
} // namespace vfil

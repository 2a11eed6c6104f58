/// \file
/// The vector forms of the RGBA keyers' kernels against the plain ones, which the keyers' models check.
#include "il/rows/keyer/keyrows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Random pixels, then every pair of bytes in two of the channels.
Bytes KeyPixels(unsigned seed, std::size_t one, std::size_t other)
{
    std::mt19937 random(seed);
    Bytes pixels = EndRichSamples<std::uint8_t>(4 * 65536, random);
    Bytes any(4 * 65536);
    for (std::size_t i = 0; i < any.size(); ++i)
        any[i] = static_cast<std::uint8_t>(random());
    for (std::size_t i = 0; i < 65536; ++i) {
        any[4 * i + one] = static_cast<std::uint8_t>(i);
        any[4 * i + other] = static_cast<std::uint8_t>(i >> 8);
    }
    pixels.insert(pixels.end(), any.begin(), any.end());
    return pixels;
}

/// The kernels of each level with each of the parameters, in every placement, then on many pixels.
template <class Params>
void CheckKeys(const char* name, KeyRow<Params> (KeyRows::*member)[2], const std::vector<Params>& sets)
{
    const Bytes allA = KeyPixels(1, 1, 2);
    const Bytes allB = KeyPixels(2, 0, 3);
    const KeyRow<Params> plain = (KeyRowsAt(Level::Plain).*member)[0];
    for (const Level level : VectorLevels()) {
        EXPECT_NE((KeyRowsAt(level).*member)[1], (KeyRowsAt(Below(level)).*member)[1]) << name;
        for (std::size_t set = 0; set < sets.size(); ++set) {
            for (const KeyRow<Params> kernel : KeyRowsAt(level).*member) {
                const auto check = [&](std::size_t pixels, const Placement& place) {
                    const auto bytes = static_cast<std::ptrdiff_t>(4 * pixels);
                    const auto by = [&](KeyRow<Params> row) {
                        return [&sets, set, pixels, row](const std::uint8_t* a, const std::uint8_t* b,
                                                         std::uint8_t* out) {
                            row(a, b, out, pixels, sets[set]);
                        };
                    };
                    ASSERT_TRUE(SameRuns(Bytes(allA.begin(), allA.begin() + bytes),
                                         Bytes(allB.begin(), allB.begin() + bytes), place, by(kernel),
                                         by(plain)))
                        << name << " " << set << ", level " << static_cast<int>(level) << ", pixels "
                        << pixels << ", target " << static_cast<int>(place.target) << ", at " << place.out;
                };
                ForEachPlacement<std::uint8_t>(check);
                check(allA.size() / 4, {});
            }
        }
    }
}

TEST(KeyRows, SectorTablesHaveThePlainMattes)
{
    std::vector<SectorKeyParams> sets{
        {{-9714, -19070, 28784}, {28784, -24104, -4681}, -0.6, 0.8, 1.7, 0.05, 5, nullptr, false},
        {{-6596, -22189, 28784}, {28784, -26145, -2639}, 1, 0, -8e15, 0.4, 1, nullptr, true}};
    std::vector<Bytes> mattes(sets.size(), Bytes(kSectorMattes));
    for (std::size_t i = 0; i < sets.size(); ++i) {
        MakeSectorMattes(sets[i], mattes[i].data());
        sets[i].mattes = mattes[i].data();
    }
    CheckKeys("sector", &KeyRows::sector, sets);
}

TEST(KeyRows, OthersAreThePlainForms)
{
    // Sums up to the ends of 32 bits.
    CheckKeys<BlueGreenKeyParams>("blue-green", &KeyRows::blueGreen,
                                  {{{{131072, -131072, 32768}, 0xFFFFC0FF, 0xFF0000}, false},
                                   {{{-98305, 65535, -32769}, 0xFF80FFFF, 0xFF0000}, true},
                                   {{{0, 65535, -32769}, 0xFFFFFFFF, -0x7E00FF00}, false},
                                   {{{8355000, 0, 0}, 0xFFFFFFFF, 0xFF0000}, true},
                                   {{{-8355000, 1, 0}, 0xFFFFFFFF, 0xFF0000}, false}});
    CheckKeys<LinearKeyParams>("linear", &KeyRows::linear,
                               {{false, 0, 64},
                                {true, 0, 0},
                                {false, 51, 255},
                                {true, -77, 130},
                                {false, INT32_MAX, 100},
                                {true, INT32_MIN, INT32_MIN},
                                {false, -1, INT32_MAX}});
    CheckKeys<LumaKeyParams>("luma", &KeyRows::luma,
                             {{{19595, 38469, 7471}, 65536, 0, false, false},
                              {{13932, 46871, 4731}, 131072, -200, true, true},
                              {{13932, 46871, 4731}, 54321, 99, true, false},
                              {{19595, 38469, 7471}, 64 * 65536, -0x3FFF, false, true}});
}

} // namespace
} // namespace vfil

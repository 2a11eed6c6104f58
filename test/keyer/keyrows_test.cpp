/// \file
/// The vector forms of the kernels of the keyers of RGBA against the plain ones, which the keyers' models
/// check.
#include "il/rows/keyer/keybytes.h"
#include "il/rows/keyer/keyrows.h"
#include "il/rows/keyer/tablekeyrows.h"

#include "keyer/keyrowcheck.h"

namespace vfil {
namespace {

using Byte = std::uint8_t;

template <class Params>
void CheckKeys(const char* name, KeyRow<Params> (KeyRows::*member)[2], Params (*any)(std::mt19937&))
{
    CheckKeyRows(
        name, Level::Sse2, [=](Level level) -> auto& { return KeyRowsAt(level).*member; }, any);
}

TEST(KeyRows, SectorTablesHaveThePlainMattes)
{
    CheckKeys<SectorKeyParams>("sector", &KeyRows::sector, [](std::mt19937& random) {
        static Byte mattes[2][kSectorMattes];
        static const auto sets = [] {
            std::array<SectorKeyParams, 2> made{
                {{{-9714, -19070, 28784}, {28784, -24104, -4681}, -0.6, 0.8, 1.7, 0.05, 5, mattes[0], false},
                 {{-6596, -22189, 28784}, {28784, -26145, -2639}, 1, 0, -8e15, 0.4, 1, mattes[1], true}}};
            for (std::size_t i = 0; i < 2; ++i)
                MakeSectorMattes(made[i], mattes[i]);
            return made;
        }();
        return sets[random() % 2];
    });
}

TEST(KeyRows, OthersAreThePlainForms)
{
    CheckKeys<BlueGreenKeyParams>("blue-green", &KeyRows::blueGreen, [](std::mt19937& random) {
        // Sums up to the ends of 32 bits.
        const long most = random() % 2 ? 200000 : 8420000;
        DifferenceKey key{};
        do {
            key = {
                {Any(random, -most, most), random() % 2 ? Any(random, -most, most) : 0, Any(random, -9, 9)},
                static_cast<std::uint32_t>(random()) | (random() % 2 ? 0xFF00FFFF : 0),
                random() % 2 ? 0xFF0000 : Any(random, INT32_MIN, INT32_MAX)};
        } while (!FitsVectors(key));
        return BlueGreenKeyParams{key, random() % 2 == 0};
    });
    CheckKeys<LinearKeyParams>("linear", &KeyRows::linear, [](std::mt19937& random) {
        const auto any = [&] {
            return random() % 8 == 0 ? Any(random, INT32_MIN, INT32_MAX) : Any(random, -20, 260);
        };
        return LinearKeyParams{random() % 2 == 0, any(), any()};
    });
    CheckKeys<LumaKeyParams>("luma", &KeyRows::luma, [](std::mt19937& random) {
        const bool is709 = random() % 2;
        return LumaKeyParams{is709 ? KeyWeights{13932, 46871, 4731} : KeyWeights{19595, 38469, 7471},
                             Any(random, 0, random() % 2 ? 131072 : 64 * 65536),
                             random() % 2 ? Any(random, -255, 255) : Any(random, -0x3FFF, 0x3FFF),
                             random() % 2 == 0, random() % 2 == 0};
    });
}

template <std::size_t count>
void Randomise(Byte (&bytes)[count], std::mt19937& random)
{
    std::generate(bytes, bytes + count, [&] { return static_cast<Byte>(random()); });
}

HlsKeyTables RandomTables(std::mt19937& random)
{
    HlsKeyTables tables;
    Randomise(tables.alphaOfHue, random);
    Randomise(tables.outsideLightnesses, random);
    Randomise(tables.outsideSaturations, random);
    tables.outsideAlpha = static_cast<Byte>(random());
    return tables;
}

TEST(TableKeyRows, AreThePlainForms)
{
    const auto at = [](Level level) -> const TableKeyRows& { return TableKeyRowsAt(level); };
    for (const int i : {0, 1}) {
        CheckKeyRows(
            "hls", Level::Avx2, [=](Level level) -> auto& { return at(level).hlsKey[i]; }, RandomTables);
        CheckKeyRows(
            "luminance", Level::Avx2, [=](Level level) -> auto& { return at(level).lumKey[i]; },
            [](std::mt19937& random) {
                LumKeyTable table;
                Randomise(table.alphaOf, random);
                return table;
            });
        CheckKeyRows(
            "surpress", Level::Sse2, [=](Level level) -> auto& { return at(level).surpress[i]; },
            [](std::mt19937&) { return 0; });
    }
    CheckKeyRows(
        "replace", Level::Avx2, [=](Level level) -> auto& { return at(level).replace; },
        [](std::mt19937& random) {
            ChromaReplacement replacement;
            Randomise(replacement.lumaOf, random);
            replacement.cb = static_cast<Byte>(random());
            replacement.cr = static_cast<Byte>(random());
            replacement.weights = random() % 2 ? YccWeights::Bt601 : YccWeights::Bt709;
            return replacement;
        });
}

// Every colour, for the quotients that make hue and saturation.
TEST(TableKeyRows, OfEveryColourAreThePlainForms)
{
    std::mt19937 random(8);
    const HlsKeyTables tables = RandomTables(random);
    std::vector<Byte> colours(4 << 16);
    std::vector<Byte> plain(colours.size());
    std::vector<Byte> result(colours.size());
    for (unsigned red = 0; red < 256; ++red) {
        for (std::size_t i = 0; i < 1 << 16; ++i) {
            colours[4 * i] = static_cast<Byte>(red);
            colours[4 * i + 1] = static_cast<Byte>(i >> 8);
            colours[4 * i + 2] = static_cast<Byte>(i);
        }
        TableKeyRowsAt(Level::Plain).hlsKey[0][0](colours.data(), plain.data(), 1 << 16, tables);
        for (const Level level : VectorLevels()) {
            TableKeyRowsAt(level).hlsKey[0][0](colours.data(), result.data(), 1 << 16, tables);
            ASSERT_EQ(result, plain) << "level " << static_cast<int>(level) << ", red " << red;
        }
    }
}

} // namespace
} // namespace vfil

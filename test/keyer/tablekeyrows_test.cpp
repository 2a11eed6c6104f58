/// \file
/// The vector forms of the keys by tables against the plain ones.
#include "il/rows/keyer/tablekeyrows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

using Byte = std::uint8_t;

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

/// A kernel with the parameters behind its pixels.
template <class Row, class Parameters>
struct With {
    Row row;
    const Parameters* parameters;
    void operator()(const Byte* in, Byte* out, std::size_t pixels) const
    {
        row(in, out, pixels, *parameters);
    }
    bool operator==(const With& other) const { return row == other.row; }
    friend std::ostream& operator<<(std::ostream& stream, const With&) { return stream << "a kernel"; }
};

template <class Row, class Parameters>
std::array<With<Row, Parameters>, 2> Both(const Row (&rows)[2], const Parameters& parameters)
{
    return {{{rows[0], &parameters}, {rows[1], &parameters}}};
}

TEST(TableKeyRows, AreThePlainForms)
{
    std::mt19937 random(3);
    const HlsKeyTables tables = RandomTables(random);
    LumKeyTable luminances;
    Randomise(luminances.alphaOf, random);
    for (const int i : {0, 1}) {
        const auto at = [](Level level) -> const TableKeyRows& { return TableKeyRowsAt(level); };
        CheckShapedRow<Byte, Byte>("hls", {4, 4}, Level::Avx2,
                                   [&](Level level) { return Both(at(level).hlsKey[i], tables); });
        CheckShapedRow<Byte, Byte>("luminance", {4, 4}, Level::Avx2,
                                   [&](Level level) { return Both(at(level).lumKey[i], luminances); });
        CheckShapedRow<Byte, Byte>(
            "surpress", {4, 4}, Level::Sse2, [&](Level level) -> auto& { return at(level).surpress[i]; });
    }
}

TEST(TableKeyRows, ReplaceIsThePlainForm)
{
    std::mt19937 random(5);
    ChromaReplacement replacement;
    Randomise(replacement.lumaOf, random);
    replacement.cb = 30;
    replacement.cr = 201;
    for (const YccWeights weights : {YccWeights::Bt601, YccWeights::Bt709}) {
        replacement.weights = weights;
        for (const Level level : VectorLevels()) {
            ForEachPlacement<Byte>([&](std::size_t pixels, const Placement& place) {
                const auto a = EndRichSamples<Byte>(4 * 3 * pixels, random);
                const auto b = EndRichSamples<Byte>(4 * 3 * pixels, random);
                const auto run = [&](Level at) {
                    return [&, at](const Byte* as, const Byte* bs, Byte* out) {
                        TableKeyRowsAt(at).replace[pixels % 2](as, bs, out, 3 * pixels, replacement);
                    };
                };
                ASSERT_TRUE(SameRuns(a, b, place, run(level), run(Level::Plain)))
                    << "level " << static_cast<int>(level) << ", pixels " << pixels;
            });
        }
    }
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

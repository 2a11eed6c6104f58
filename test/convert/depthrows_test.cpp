/// \file
/// The kernels of depths, byte orders and alpha: the plain forms by hand, the vector forms against them.
#include "il/rows/convert/depthrows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

/// What kernel makes of the bytes, or words, from `in` on.
template <class Out, class In, class Kernel>
std::vector<Out> Made(Kernel kernel, const std::vector<In>& in, std::size_t outSamples, std::size_t pixels)
{
    std::vector<Out> out(outSamples);
    kernel(in.data(), out.data(), pixels);
    return out;
}

using Bytes = std::vector<std::uint8_t>;
using Words = std::vector<std::uint16_t>;

TEST(DepthRows, PlainFormsMoveBytes)
{
    const DepthRows& plain = DepthRowsAt(Level::Plain);
    EXPECT_EQ(Made<std::uint8_t>(plain.narrow[0], Words{0x80FF, 0x7F00, 0xFFFF, 0x00FF}, 4, 4),
              (Bytes{0x80, 0x7F, 0xFF, 0}));
    EXPECT_EQ(Made<std::uint16_t>(plain.widen[0], Bytes{0, 1, 0x80, 255}, 4, 4),
              (Words{0, 0x0101, 0x8080, 65535}));
    const Bytes threes{1, 2, 3, 4, 5, 6};
    const Bytes fours{1, 2, 3, 9, 4, 5, 6, 8};
    EXPECT_EQ(Made<std::uint8_t>(plain.swap[0], fours, 8, 2), (Bytes{3, 2, 1, 9, 6, 5, 4, 8}));
    EXPECT_EQ(Made<std::uint8_t>(plain.expand[0][0], threes, 8, 2), (Bytes{1, 2, 3, 255, 4, 5, 6, 255}));
    EXPECT_EQ(Made<std::uint8_t>(plain.expand[1][0], threes, 8, 2), (Bytes{3, 2, 1, 255, 6, 5, 4, 255}));
    EXPECT_EQ(Made<std::uint8_t>(plain.drop[0][0], fours, 6, 2), threes);
    EXPECT_EQ(Made<std::uint8_t>(plain.drop[1][0], fours, 6, 2), (Bytes{3, 2, 1, 6, 5, 4}));
    EXPECT_EQ(Made<std::uint8_t>(plain.takeAlpha[0], fours, 2, 2), (Bytes{9, 8}));
    // White, red, and the greatest sum that still truncates to 0: 29 * 2 + 11 * 3 = 91.
    EXPECT_EQ(
        Made<std::uint8_t>(plain.lumaToAlpha[0], Bytes{255, 255, 255, 0, 255, 0, 0, 7, 2, 0, 3, 7}, 12, 3),
        (Bytes{255, 255, 255, 255, 255, 0, 0, 76, 2, 0, 3, 0}));
}

/// The samples of a pixel on both sides of a kernel.
struct Shape {
    std::size_t in, out;
};

/// Compares the entries that `select` finds in a level's table with the plain form, in rows of no pixel to
/// more than two blocks and over every alignment of the output. Equal shapes are tried in place too.
template <class In, class Out, class Select>
void CheckDepthRow(const char* name, Shape shape, Level lowest, Select select)
{
    constexpr std::size_t kMost = 2 * 64 + 3;
    std::mt19937 random(11);
    const auto plain = select(DepthRowsAt(Level::Plain))[0];
    for (const Level level : VectorLevels()) {
        if (level < lowest) continue;
        const auto check = [&](auto kernel, std::size_t pixels, std::size_t offset) {
            const auto samples = EndRichSamples<In>(pixels * shape.in, random);
            PlacedRow<In> in(samples, (64 - offset) % 64 / sizeof(In) * sizeof(In), false);
            PlacedRow<Out> out(std::vector<Out>(pixels * shape.out, Out{0x5B}), offset, true);
            PlacedRow<Out> expected = out;
            kernel(in.Data(), out.Data(), pixels);
            plain(in.Data(), expected.Data(), pixels);
            ASSERT_TRUE(out == expected) << name << ", level " << static_cast<int>(level) << ", pixels "
                                         << pixels << ", at " << offset;
            if constexpr (std::is_same_v<In, Out>) {
                if (shape.in != shape.out) return;
                PlacedRow<In> place(samples, offset, true);
                kernel(place.Data(), place.Data(), pixels);
                ASSERT_TRUE(place == expected) << name << " in place, pixels " << pixels << ", at " << offset;
            }
        };
        for (const auto kernel : select(DepthRowsAt(level))) {
            for (std::size_t pixels = 0; pixels <= kMost; ++pixels)
                check(kernel, pixels, 0);
            for (std::size_t offset = 0; offset < 64; offset += sizeof(Out))
                check(kernel, kMost - offset / 8, offset);
        }
        EXPECT_NE(select(DepthRowsAt(level))[1], select(DepthRowsAt(Below(level)))[1]) << name;
    }
}

TEST(DepthRows, VectorFormsAreThePlainForms)
{
    using Byte = std::uint8_t;
    using Word = std::uint16_t;
    CheckDepthRow<Word, Byte>(
        "narrow", {1, 1}, Level::Sse2, [](auto& rows) -> auto& { return rows.narrow; });
    CheckDepthRow<Byte, Word>(
        "widen", {1, 1}, Level::Sse2, [](auto& rows) -> auto& { return rows.widen; });
    CheckDepthRow<Byte, Byte>(
        "swap", {4, 4}, Level::Sse2, [](auto& rows) -> auto& { return rows.swap; });
    CheckDepthRow<Byte, Byte>(
        "alpha", {4, 1}, Level::Sse2, [](auto& rows) -> auto& { return rows.takeAlpha; });
    CheckDepthRow<Byte, Byte>(
        "luma", {4, 4}, Level::Sse2, [](auto& rows) -> auto& { return rows.lumaToAlpha; });
    for (const std::size_t swap : {0, 1}) {
        CheckDepthRow<Byte, Byte>(
            "expand", {3, 4}, Level::Avx2, [swap](auto& rows) -> auto& { return rows.expand[swap]; });
        CheckDepthRow<Byte, Byte>(
            "drop", {4, 3}, Level::Avx2, [swap](auto& rows) -> auto& { return rows.drop[swap]; });
    }
}

/// Over 99 in 100 of the sums that can occur, and so each step of the quotient.
TEST(DepthRows, LumaIsTheTruncatedQuotient)
{
    Bytes pixels;
    for (int r = 0; r < 256; ++r)
        for (int g = 0; g < 256; g += 51)
            for (int b = 0; b < 256; ++b)
                pixels.insert(pixels.end(), {static_cast<std::uint8_t>(r), static_cast<std::uint8_t>(g),
                                             static_cast<std::uint8_t>(b), 77});
    for (const Level level : VectorLevels()) {
        const auto out =
            Made<std::uint8_t>(DepthRowsAt(level).lumaToAlpha[0], pixels, pixels.size(), pixels.size() / 4);
        for (std::size_t i = 0; i < out.size(); i += 4)
            ASSERT_EQ(out[i + 3], (29 * out[i] + 57 * out[i + 1] + 11 * out[i + 2]) / 97);
    }
}

} // namespace
} // namespace vfil

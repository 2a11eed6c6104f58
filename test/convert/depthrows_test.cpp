/// \file
/// The vector forms of the kernels of depths, byte orders and alpha against the plain ones, which the
/// converters' models check.
#include "il/rows/convert/depthrows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

template <class In, class Out, class Select>
void CheckDepthRow(const char* name, Shape shape, Level lowest, Select select)
{
    CheckShapedRow<In, Out>(
        name, shape, lowest, [&](Level level) -> auto& { return select(DepthRowsAt(level)); });
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
    std::vector<std::uint8_t> pixels, out;
    for (int r = 0; r < 256; ++r)
        for (int g = 0; g < 256; g += 51)
            for (int b = 0; b < 256; ++b)
                pixels.insert(pixels.end(), {static_cast<std::uint8_t>(r), static_cast<std::uint8_t>(g),
                                             static_cast<std::uint8_t>(b), 77});
    for (const Level level : VectorLevels()) {
        out.resize(pixels.size());
        DepthRowsAt(level).lumaToAlpha[0](pixels.data(), out.data(), pixels.size() / 4);
        for (std::size_t i = 0; i < out.size(); i += 4)
            ASSERT_EQ(out[i + 3], (29 * out[i] + 57 * out[i + 1] + 11 * out[i + 2]) / 97);
    }
}

} // namespace
} // namespace vfil

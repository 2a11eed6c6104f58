/// \file
/// The vector forms of the fill and key kernels against the plain ones.
#include "il/rows/fillkey/fillkeyrows.h"

#include "support/rowcheck.h"

#include <numeric>

namespace vfil {
namespace {

using Bytes = std::vector<std::uint8_t>;

/// Compares the kernels of a byte order with the plain form: in rows of no pixel to more than two blocks, and
/// over every alignment of the output.
void CheckKeyRow(const char* name, FillKeyRow (FillKeyRows::*member)[2][2], bool chromaFirst,
                 std::size_t inBytes, std::size_t outBytes)
{
    constexpr std::size_t kMost = 2 * 64 + 3;
    std::mt19937 random(13);
    const auto kernels = [=](Level level) -> auto&
    {
        return (FillKeyRowsAt(level).*member)[chromaFirst];
    };
    const auto check = [&](FillKeyRow kernel, std::size_t pixels, std::size_t offset) {
        PlacedRow<std::uint8_t> in(EndRichSamples<std::uint8_t>(pixels * inBytes, random), 63 - offset,
                                   false);
        PlacedRow<std::uint8_t> out(Bytes(pixels * outBytes, 0x5B), offset, true);
        PlacedRow<std::uint8_t> expected = out;
        kernel(in.Data(), out.Data(), pixels);
        kernels(Level::Plain)[0](in.Data(), expected.Data(), pixels);
        ASSERT_TRUE(out == expected) << name << chromaFirst << ", pixels " << pixels << ", at " << offset;
    };
    for (const Level level : VectorLevels()) {
        SCOPED_TRACE(static_cast<int>(level));
        for (const FillKeyRow kernel : kernels(level)) {
            for (std::size_t pixels = 0; pixels <= kMost; ++pixels)
                check(kernel, pixels, 0);
            for (std::size_t offset = 0; offset < 64; ++offset)
                check(kernel, kMost - offset / 8, offset);
        }
        EXPECT_NE(kernels(level)[1], kernels(Below(level))[1]) << name;
    }
}

TEST(FillKeyRows, VectorFormsAreThePlainForms)
{
    for (const bool chromaFirst : {false, true}) {
        CheckKeyRow("colour", &FillKeyRows::colour, chromaFirst, 2, 2);
        CheckKeyRow("alpha to key", &FillKeyRows::alphaToKey, chromaFirst, 1, 2);
        CheckKeyRow("key to alpha", &FillKeyRows::keyToAlpha, chromaFirst, 2, 1);
    }
}

/// Every alpha and every luma, by levels: the vector forms round by other means than the plain ones.
TEST(FillKeyRows, EveryValueAtEveryLevel)
{
    Bytes all(256), key(512), lumas(512, 77), back(256);
    std::iota(all.begin(), all.end(), std::uint8_t{0});
    for (std::size_t i = 0; i < 256; ++i)
        lumas[2 * i + 1] = all[i];
    auto levels = VectorLevels();
    levels.push_back(Level::Plain);
    for (const Level level : levels) {
        FillKeyRowsAt(level).alphaToKey[1][0](all.data(), key.data(), 256);
        FillKeyRowsAt(level).keyToAlpha[1][0](lumas.data(), back.data(), 256);
        for (int v = 0; v < 256; ++v) {
            const auto i = static_cast<std::size_t>(v);
            // Doubled quotients, so that the whole numbers round to nearest.
            ASSERT_EQ(key[2 * i + 1], 16 + (2 * 219 * v + 255) / 510) << "alpha " << v;
            ASSERT_EQ(key[2 * i], 128);
            const int rounded = (2 * 255 * (v - 16) + 219 + 438 * 256) / 438 - 256;
            ASSERT_EQ(back[i], rounded & 255) << "luma " << v;
        }
    }
}

} // namespace
} // namespace vfil

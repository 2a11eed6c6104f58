/// \file
/// The vector forms of the kernels between RGB and 4:2:2 against the plain ones.
#include "il/rows/convert/yccrows.h"

#include "support/rowcheck.h"

#include <array>

namespace vfil {
namespace {

struct Row {
    std::size_t pixels;
    YccLayout layout;
    bool alpha;
};

/// Rows of every layout and many widths, for kernels whose outputs have `outBytes` bytes a pixel. Compares
/// all bytes, those behind an odd last pixel's pair too.
template <class Run>
void CheckRows(std::size_t inBytes, std::size_t outBytes, std::mt19937& random, Run run)
{
    std::vector<std::size_t> widths{160, 161, 162, 164, 190};
    for (std::size_t width = 0; width < 100; ++width)
        widths.push_back(width);
    for (const std::size_t pixels : widths) {
        for (int which = 0; which < 16; ++which) {
            const Row row{
                pixels,
                {which % 2 == 0 ? YccWeights::Bt601 : YccWeights::Bt709, (which & 2) != 0, (which & 4) != 0},
                (which & 8) != 0};
            // An aligned output and one that is not.
            for (const std::size_t offset : {std::size_t{0}, outBytes}) {
                const PlacedRow<std::uint8_t> in(EndRichSamples<std::uint8_t>(inBytes * pixels, random), 1,
                                                 false);
                const PlacedRow<std::uint8_t> alpha(EndRichSamples<std::uint8_t>(pixels, random), 3, false);
                std::array<std::vector<std::uint8_t>, 2> outs;
                for (int form = 0; form < 2; ++form) {
                    alignas(64) std::array<std::uint8_t, 1024> memory;
                    memory.fill(0x5B);
                    PlacedRow<std::uint8_t> from = in;
                    PlacedRow<std::uint8_t> plane = alpha;
                    run(form, from.Data(), row.alpha ? plane.Data() : nullptr, memory.data() + 64 + offset,
                        row);
                    outs[static_cast<std::size_t>(form)].assign(memory.begin(), memory.end());
                }
                ASSERT_EQ(outs[0], outs[1]) << pixels << " pixels, layout " << which;
            }
        }
    }
}

/// Calls check(kernel, plain, pixel bytes) for all cases of a table's member.
template <class Member, class Check>
void ForEachCase(Member member, Check check)
{
    const auto& plain = YccRowsAt(Level::Plain).*member;
    for (const Level level : VectorLevels()) {
        const auto& rows = YccRowsAt(level).*member;
        for (int i = 0; i < 16; ++i) {
            const int arithmetic = i & 1, wide = i >> 1 & 1, filtered = i >> 2 & 1, streaming = i >> 3 & 1;
            const auto kernel = rows[arithmetic][wide][filtered][streaming];
            if (kernel == plain[arithmetic][wide][filtered][streaming]) continue;
            check(kernel, plain[arithmetic][wide][filtered][streaming], wide == 0 ? 3U : 4U);
        }
    }
}

TEST(YccRows, AreThePlainForms)
{
    std::mt19937 random(11);
    int checked = 0;
    ForEachCase(&YccRows::encode, [&](EncodeRow kernel, EncodeRow plain, std::size_t bytes) {
        ++checked;
        CheckRows(bytes, 2, random, [&](int form, const auto* in, const auto*, auto* out, const Row& row) {
            (form == 0 ? kernel : plain)(in, out, row.pixels, row.layout);
        });
    });
    ForEachCase(&YccRows::decode, [&](DecodeRow kernel, DecodeRow plain, std::size_t bytes) {
        ++checked;
        CheckRows(2, bytes, random,
                  [&](int form, const auto* in, const auto* alpha, auto* out, const Row& row) {
                      (form == 0 ? kernel : plain)(in, alpha, out, row.pixels, row.layout, 0);
                  });
    });
    EXPECT_TRUE(checked != 0 || BestLevel() < Level::Avx2);
}

} // namespace
} // namespace vfil

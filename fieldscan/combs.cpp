/// \file
/// Combs and changes.
#include "fieldscan/combs.h"

#include <algorithm>
#include <cstdlib>

namespace vfil::fieldscan {

namespace {

// Calls add(row, sums) for each row of each row of blocks, which adds to each column's sum at most
// kLevel * 255 * 2, and makes a figure a block: kBlockRows of these fit 16 bits.
template <class Add>
BlockFigures Collect(const NarrowLuma& like, float unit, Add add)
{
    static_assert(kBlockRows * kLevel * 255 * 2 < 65536);
    // The first row and the last have a neighbour less.
    const long down = std::max(0L, like.rows - 2) / kBlockRows;
    const long across = like.columns / kBlockColumns;
    std::vector<std::uint16_t> sums(static_cast<std::size_t>(like.columns));
    BlockFigures figures;
    for (long block = 0; block < down; ++block) {
        std::fill(sums.begin(), sums.end(), std::uint16_t{0});
        for (long i = 0; i < kBlockRows; ++i)
            add(block * kBlockRows + i + 1, sums.data());
        for (long i = 0; i < across; ++i) {
            const auto first = sums.begin() + i * kBlockColumns;
            unsigned sum = 0;
            std::for_each(first, first + kBlockColumns, [&sum](std::uint16_t s) { sum += s; });
            figures.push_back(static_cast<float>(sum) * unit);
        }
    }
    return figures;
}

constexpr float kSamples = kBlockColumns * kBlockRows;

} // namespace

BlockFigures CombsOf(const NarrowLuma& top, const NarrowLuma& bottom)
{
    return Collect(top, 1 / (2 * kLevel * kSamples), [&](long y, std::uint16_t* sums) {
        const NarrowLuma& own = y % 2 != 0 ? bottom : top;
        const NarrowLuma& other = y % 2 != 0 ? top : bottom;
        const std::int16_t* above = other.Row(y - 1);
        const std::int16_t* row = own.Row(y);
        const std::int16_t* below = other.Row(y + 1);
        for (long x = 0; x < top.columns; ++x) {
            const int comb = std::abs(above[x] + below[x] - 2 * row[x]);
            sums[x] = static_cast<std::uint16_t>(sums[x] + comb);
        }
    });
}

BlockFigures ChangesOf(const NarrowLuma& one, const NarrowLuma& other)
{
    return Collect(one, 1 / (kLevel * kSamples), [&](long y, std::uint16_t* sums) {
        const std::int16_t* a = one.Row(y);
        const std::int16_t* b = other.Row(y);
        for (long x = 0; x < one.columns; ++x)
            sums[x] = static_cast<std::uint16_t>(sums[x] + std::abs(a[x] - b[x]));
    });
}

} // namespace vfil::fieldscan

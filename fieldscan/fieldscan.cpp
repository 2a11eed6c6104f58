/// \file
/// Blocks that move, and their combs.
#include "fieldscan/fieldscan.h"

#include <algorithm>
#include <cmath>

namespace vfil::fieldscan {

namespace {

// A block moves where the weaves differ by so many levels, ...
constexpr double kClearSpread = 1;
// ... and by such a part of the combs that are there anyway, from detail and noise: the combs of a block of
// pure noise differ by a fifth of themselves, ...
constexpr double kClearRise = 0.6;
// ... and change so much more over two frames than over one: noise doesn't, movement and fades do.
constexpr double kClearGrowth = 1.1;
// Movement that swings back is none to the last rule; so much of a rise needs no growth.
constexpr double kSureRise = 1.2;

// The same for the sums of a block over many pairs, whose noise is less.
constexpr double kFaintSpread = 0.25;
constexpr double kFaintRise = 0.1;
constexpr double kFaintGrowth = 1.08;
constexpr double kFaintPairs = 8;

// So many blocks have to move, and such a share of all.
constexpr double kFewBlocks = 3;
constexpr double kShareOfBlocks = 0.004;

bool AreEnough(double moving, std::size_t blocks)
{
    return moving >= std::max(kFewBlocks, kShareOfBlocks * static_cast<double>(blocks));
}

} // namespace

FieldScan::Sums& FieldScan::Sums::operator+=(const Sums& other)
{
    own += other.own;
    nextTop += other.nextTop;
    nextBottom += other.nextBottom;
    change += other.change;
    twoChange += other.twoChange;
    count += other.count;
    return *this;
}

Combs FieldScan::Sums::Means() const
{
    const double divisor = std::max(1.0, count);
    return {own / divisor, nextTop / divisor, nextBottom / divisor};
}

bool FieldScan::Sums::Moves(double leastSpread, double leastRise, double leastGrowth) const
{
    const double spread = std::max({own, nextTop, nextBottom}) - std::min({own, nextTop, nextBottom});
    if (spread < leastSpread * count || spread < leastRise * own) return false;
    return spread >= kSureRise * own || twoChange >= leastGrowth * change;
}

void FieldScan::Add(const host::Picture& picture)
{
    Frame& now = m_frames[static_cast<std::size_t>(m_count % 3)];
    now.luma = NarrowLumaOf(picture);
    now.combs = CombsOf(now.luma, now.luma);
    if (m_count > 0) Compare(m_frames[static_cast<std::size_t>((m_count - 1) % 3)], now);
    ++m_count;
}

void FieldScan::Compare(const Frame& before, const Frame& now)
{
    const BlockFigures nextTop = CombsOf(now.luma, before.luma);
    const BlockFigures nextBottom = CombsOf(before.luma, now.luma);
    const BlockFigures change = ChangesOf(before.luma, now.luma);
    BlockFigures twoChange(change.size());
    if (m_count > 1)
        twoChange = ChangesOf(m_frames[static_cast<std::size_t>((m_count - 2) % 3)].luma, now.luma);
    m_blocks.resize(change.size());
    Sums all;
    Sums moving;
    std::vector<Sums> blocks;
    for (std::size_t i = 0; i < change.size(); ++i) {
        const Sums block{
            (before.combs[i] + now.combs[i]) / 2.0, nextTop[i], nextBottom[i], change[i], twoChange[i], 1};
        blocks.push_back(block);
        all += block;
        if (block.Moves(kClearSpread, kClearRise, kClearGrowth)) moving += block;
    }
    Pair pair{.change = all.change / std::max(1.0, all.count), .combs = {}};
    pair.moves = AreEnough(moving.count, blocks.size());
    if (pair.moves) pair.combs = moving.Means();
    m_pairs.push_back(pair);
    if (pair.moves || m_count < 2) return;
    for (std::size_t i = 0; i < blocks.size(); ++i)
        m_blocks[i] += blocks[i];
}

// The blocks that move a little, but do so again and again.
std::optional<Combs> FieldScan::Faint() const
{
    Sums moving;
    for (const Sums& block : m_blocks) {
        if (block.count < kFaintPairs || !block.Moves(kFaintSpread, kFaintRise, kFaintGrowth)) continue;
        Sums mean = block;
        for (double* sum : {&mean.own, &mean.nextTop, &mean.nextBottom})
            *sum /= block.count;
        mean.count = 1;
        moving += mean;
    }
    if (!AreEnough(moving.count, m_blocks.size())) return std::nullopt;
    return moving.Means();
}

Finding FieldScan::Result() const
{
    return Judge(m_pairs, Faint());
}

} // namespace vfil::fieldscan

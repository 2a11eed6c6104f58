/// \file
/// Sure cells.
#include "keyauto/regions.h"
#include "keyauto/localmean.h"
#include "keyauto/nearest.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace vfil::keyauto {

namespace {

constexpr long kNearReach = 2; // half the side of the square whose screen counts as "here"

// Without the cells next to others: what is only just chosen may be half something else.
Mask Shrink(const Mask& mask, float by)
{
    Mask others(mask.Width(), mask.Height());
    for (std::size_t i = 0; i < mask.Size(); ++i)
        others[i] = mask[i] == 0;
    const Nearest nearest = FindNearest(others);
    Mask shrunk(mask.Width(), mask.Height());
    for (std::size_t i = 0; i < mask.Size(); ++i)
        shrunk[i] = nearest.distance[i] > by;
    return shrunk;
}

// Cells of the screen's hue that are not much darker or lighter than the screen around them: shadows and
// what is black before the screen have its hue too.
Mask FindClear(const Grid<Light>& plate, const Screen& screen)
{
    constexpr float kDarkest = 0.72F;
    constexpr float kLightest = 1.5F;
    const long reach = std::max(4L, std::max(plate.Width(), plate.Height()) / 24);
    const Mask core = Shrink(screen.mask, 1);
    const LocalMean around(plate, core);
    Mask clear(plate.Width(), plate.Height());
    for (long y = 0; y < plate.Height(); ++y) {
        for (long x = 0; x < plate.Width(); ++x) {
            if (core.At(x, y) == 0) continue;
            const float light = plate.At(x, y).Sum() / around.Mean(x, y, reach).Sum();
            clear.At(x, y) = light > kDarkest && light < kLightest;
        }
    }
    return clear;
}

// The share of the screen in a cell if the rest is grey.
float GreyShare(const Light& c, const Light& behind, const Screen& screen)
{
    return screen.Excess(c) / std::max(screen.Excess(behind), 1e-4F);
}

/// How much of the way from `behind` to `front` a colour is.
float Along(const Light& c, const Light& behind, const Light& front)
{
    const Light way = front - behind;
    return Dot(c - behind, way) / std::max(Dot(way, way), 1e-6F);
}

// The cell on the way from the nearest clear cell through this one, at so many times its distance.
Nearest::Cell Beyond(const Nearest& clear, long x, long y, float times)
{
    const Nearest::Cell from = clear.cell.At(x, y);
    return {from.x + std::lround(static_cast<float>(x - from.x) * times),
            from.y + std::lround(static_cast<float>(y - from.y) * times)};
}

// How far from the screen edges are over, by the mean course of all edges: the colour so many cells inside
// stands for the subject's.
float FindEdge(const Grid<Light>& plate, const Regions& regions, const Nearest& clear, float deep)
{
    constexpr float kOver = 0.95F;
    constexpr float kUsual = 4; // where no edge can be followed
    struct Mean {
        float sum = 0;
        float count = 0;
    };
    std::vector<Mean> course(static_cast<std::size_t>(deep) + 1);
    for (long y = 0; y < plate.Height(); ++y) {
        for (long x = 0; x < plate.Width(); ++x) {
            const float distance = clear.distance.At(x, y);
            if (distance < 0.5F || distance >= deep) continue;
            const Nearest::Cell inside = Beyond(clear, x, y, deep / distance);
            if (!plate.Contains(inside.x, inside.y) || clear.distance.At(inside.x, inside.y) < 0.8F * deep)
                continue;
            const Light& behind = regions.behind.At(x, y);
            const Light& front = plate.At(inside.x, inside.y);
            if (Dot(front - behind, front - behind) < 0.2F * Dot(behind, behind)) continue;
            Mean& mean = course[static_cast<std::size_t>(distance)];
            mean.sum += std::clamp(Along(plate.At(x, y), behind, front), -0.5F, 1.5F);
            mean.count += 1;
        }
    }
    for (std::size_t cells = 1; cells + 1 < course.size(); ++cells) {
        if (course[cells].count > 0 && course[cells].sum > kOver * course[cells].count)
            return static_cast<float>(cells);
    }
    return kUsual;
}

// The same with a depth that leaves room behind the edge.
float FindWholeEdge(const Grid<Light>& plate, const Regions& regions, const Nearest& clear)
{
    constexpr float kRoom = 0.8F;
    constexpr float kMostDeep = 40;
    float deep = 16;
    float edge = FindEdge(plate, regions, clear, deep);
    while (edge > kRoom * deep && deep < kMostDeep) {
        deep *= 1.5F;
        edge = FindEdge(plate, regions, clear, deep);
    }
    return edge;
}

// Whether a cell belongs to a long soft edge: it is a mixture of the screen and of what lies deeper, and so
// is, with less of the screen, what lies between.
bool OnSlope(const Grid<Light>& plate, const Regions& regions, const Nearest& clear, long x, long y)
{
    constexpr float kBetween = 1.6F; // times the cell's distance from the screen
    constexpr float kDeep = 2.6F;
    constexpr float kMostMiss = 0.08F;
    constexpr float kSolid = 0.94F;
    const Nearest::Cell between = Beyond(clear, x, y, kBetween);
    const Nearest::Cell deep = Beyond(clear, x, y, kDeep);
    const float distance = clear.distance.At(x, y);
    if (!plate.Contains(deep.x, deep.y) || clear.distance.At(deep.x, deep.y) < kBetween * distance)
        return false;
    const Light& behind = regions.behind.At(x, y);
    const Light& front = plate.At(deep.x, deep.y);
    const Light way = front - behind;
    const float length = std::sqrt(Dot(way, way));
    const float share = Along(plate.At(x, y), behind, front);
    const float shareBetween = Along(plate.At(between.x, between.y), behind, front);
    const auto miss = [&](const Nearest::Cell& cell, float part) {
        const Light off = plate.At(cell.x, cell.y) - (behind + way * part);
        return std::sqrt(Dot(off, off)) / std::max(length, 1e-4F);
    };
    return share < kSolid && shareBetween > share + 0.3F * (1 - share) && shareBetween < 1.1F &&
           miss({x, y}, share) < kMostMiss && miss(between, shareBetween) < kMostMiss;
}

Grid<float> GreyShares(const Grid<Light>& plate, const Screen& screen, const Regions& regions)
{
    Grid<float> shares(plate.Width(), plate.Height());
    for (std::size_t i = 0; i < plate.Size(); ++i)
        shares[i] = GreyShare(plate[i], regions.behind[i], screen);
    return shares;
}

// Cells that are reached from the clear ones in small steps: veils, smoke, what moves fast. What is opaque
// has an edge.
Mask FindSlopes(const Grid<float>& shares, const Mask& clear)
{
    constexpr float kStep = 0.035F;
    constexpr float kFarthest = 0.1F;
    Mask reached = clear;
    std::vector<std::size_t> queue;
    for (std::size_t i = 0; i < clear.Size(); ++i) {
        if (clear[i] != 0) queue.push_back(i);
    }
    const long width = shares.Width();
    for (std::size_t next = 0; next < queue.size(); ++next) {
        const std::size_t from = queue[next];
        const long x = static_cast<long>(from) % width;
        const long y = static_cast<long>(from) / width;
        for (const auto& [dx, dy] : {std::array{1L, 0L}, {-1L, 0L}, {0L, 1L}, {0L, -1L}}) {
            if (!shares.Contains(x + dx, y + dy)) continue;
            const std::size_t to = shares.Index(x + dx, y + dy);
            if (reached[to] != 0 || shares[to] < kFarthest || std::abs(shares[to] - shares[from]) > kStep)
                continue;
            reached[to] = 1;
            queue.push_back(to);
        }
    }
    return reached;
}

// Cells that are behind the edge, with nothing near by that has much of the screen's colour: what reflects a
// little of it is solid, fur and hair before it are not.
Mask FindSolid(const Grid<Light>& original, const Screen& screen, const Regions& regions,
               const Nearest& clear)
{
    constexpr float kMostTint = 0.3F;
    constexpr float kInner = 4;
    const Grid<Light> plate = Smooth(original, 1);
    const Grid<float> shares = GreyShares(plate, screen, regions);
    const Mask slopes = FindSlopes(GreyShares(Smooth(original, 2), screen, regions), regions.clear);
    Mask tinted(plate.Width(), plate.Height());
    for (std::size_t i = 0; i < plate.Size(); ++i)
        tinted[i] = shares[i] < kMostTint && slopes[i] == 0;
    const Mask inner = Shrink(tinted, kInner);
    Mask solid(plate.Width(), plate.Height());
    for (long y = 0; y < plate.Height(); ++y) {
        for (long x = 0; x < plate.Width(); ++x) {
            const std::size_t i = plate.Index(x, y);
            solid[i] = regions.outside[i] > regions.edge + 1 && screen.mask[i] == 0 && inner[i] != 0 &&
                       !OnSlope(plate, regions, clear, x, y);
        }
    }
    return solid;
}

} // namespace

Regions FindRegions(const Grid<Light>& plate, const Screen& screen)
{
    Regions regions;
    regions.clear = FindClear(plate, screen);
    const LocalMean around(plate, regions.clear);
    regions.behind = Grid<Light>(plate.Width(), plate.Height());
    for (long y = 0; y < plate.Height(); ++y) {
        for (long x = 0; x < plate.Width(); ++x)
            regions.behind.At(x, y) = around.Mean(x, y, kNearReach + 2);
    }
    const Nearest clear = FindNearest(regions.clear);
    regions.outside = clear.distance;
    regions.edge = FindWholeEdge(plate, regions, clear);
    regions.solid = FindSolid(plate, screen, regions, clear);
    return regions;
}

} // namespace vfil::keyauto

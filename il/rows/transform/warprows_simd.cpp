/// \file
/// The kernels of a mesh warp: the vector forms. Lanes are cells where these are small, as nearly all are,
/// and pixels of one cell else. Each operation is that of the plain form, and what is not tested is what the
/// plain form is certain to refuse.
#include "il/rows/transform/warpparams.h"
#include "il/rows/vecdouble.h"

namespace vfil {

namespace {

/// The corners of cells, in a coordinate.
struct Corners {
    F64 at[4];
};

/// The moved cells of the lanes, as the inverse sees them.
struct Cells {
    F64 x, y; ///< the first corner
    F64 ax, ay, bx, by, cx, cy;
};

struct Found {
    Mask64 inside;
    F64 s, t;
};

Cells CellsOf(const Corners& x, const Corners& y)
{
    return {x.at[0],
            y.at[0],
            x.at[1] - x.at[0],
            y.at[1] - y.at[0],
            x.at[2] - x.at[0],
            y.at[2] - y.at[0],
            x.at[0] - x.at[1] - x.at[2] + x.at[3],
            y.at[0] - y.at[1] - y.at[2] + y.at[3]};
}

Mask64 IsShare(F64 v)
{
    return (SplatDouble(0) <= v) & (v <= SplatDouble(1));
}

/// A root of the quadratic, tried.
Found Try(const Cells& cells, F64 dx, F64 t)
{
    const F64 s = (dx - cells.bx * t) / (t * cells.cx + cells.ax);
    return {IsShare(t) & IsShare(s), s, t};
}

/// Where the points (x, y) lie in the cells.
Found Inverse(const Cells& cells, F64 x, F64 y)
{
    const F64 dx = x - cells.x;
    const F64 dy = y - cells.y;
    const F64 back = cells.x - x;
    const F64 a = cells.bx * cells.cy - cells.cx * cells.by;
    const F64 b = dy * cells.cx + cells.cy * back - cells.by * cells.ax + cells.ay * cells.bx;
    const F64 c = cells.ay * back + cells.ax * dy;
    const F64 h = SplatDouble(0.5) * b;
    const F64 root = SquareRoot(h * h - c * a);
    const Mask64 isLinear = a == SplatDouble(0);
    const Mask64 isBelow = h < SplatDouble(0);
    const F64 gap = root - h;
    const F64 sum = root + h;
    // No root is NaN or infinite here, which is no share.
    const F64 over = Select(isLinear, Negative(c), Select(isBelow, c, Negative(sum)));
    const F64 under = Select(isLinear, b, Select(isBelow, gap, a));
    const Found first = Try(cells, dx, over / under);
    const Mask64 hasSecond = Without(Without(SplatDouble(0) < root, isLinear), first.inside);
    if (BitsOf(hasSecond) == 0) return first;
    const Found second = Try(cells, dx, Select(isBelow, gap, Negative(c)) / Select(isBelow, a, sum));
    return {first.inside | (second.inside & hasSecond), Select(first.inside, first.s, second.s),
            Select(first.inside, first.t, second.t)};
}

F64 Interp(F64 t, F64 a, F64 b)
{
    return (b - a) * t + a;
}

F64 Interp(const Found& found, const Corners& corners)
{
    return Interp(found.t, Interp(found.s, corners.at[0], corners.at[1]),
                  Interp(found.s, corners.at[2], corners.at[3]));
}

/// A coordinate's corners of cells from \p index on: where the grid has them, and its vectors times a factor.
Corners Moved(const Corners& grid, const double* const (&vectors)[2], std::size_t index, F64 factor)
{
    Corners corners;
    for (std::size_t i = 0; i < 4; ++i)
        corners.at[i] = grid.at[i] + LoadDoubles(vectors[i / 2] + index + i % 2) * factor;
    return corners;
}

Corners SplatCorners(const double (&values)[4])
{
    return {{SplatDouble(values[0]), SplatDouble(values[1]), SplatDouble(values[2]), SplatDouble(values[3])}};
}

/// The ends of what the corners span.
struct Span {
    F64 low, high;
};

Span SpanOf(const Corners& corners)
{
    return {Min(Min(corners.at[0], corners.at[1]), Min(corners.at[2], corners.at[3])),
            Max(Max(corners.at[0], corners.at[1]), Max(corners.at[2], corners.at[3]))};
}

constexpr double kFarthest = 0x1p20; ///< of regular corners
constexpr double kWidest = 2.9;      ///< of a regular cell: three pixels lie in it at most
constexpr double kLeast = 0x1p-6;    ///< extent in x of the lower and upper edges of a regular cell
/// Where a point is off its cell by more than this, no rounding makes the plain form take it: of a regular
/// cell the corners are right to 2 to the power of -32 when their sums were rounded, and what the roots leave
/// of both coordinates is less than that, as the divisors are not small.
constexpr double kMargin = 0x1p-20;

/// Small cells whose corners are numbers, whose lower and upper edges go on in x. NaN in any corner is in the
/// sum of all of them.
Mask64 AreRegular(const Cells& cells, const Corners& x, const Corners& y, const Span& spanX,
                  const Span& spanY)
{
    const F64 farthest = SplatDouble(kFarthest);
    const F64 widest = SplatDouble(kWidest);
    const F64 sumX = (x.at[0] + x.at[1]) + (x.at[2] + x.at[3]);
    const F64 sumY = (y.at[0] + y.at[1]) + (y.at[2] + y.at[3]);
    return ((spanX.high - spanX.low) <= widest) & ((spanY.high - spanY.low) <= widest) &
           (Absolute(sumX) <= farthest) & (Absolute(sumY) <= farthest) &
           (SplatDouble(kLeast) <= Absolute(cells.ax) - Absolute(cells.cx));
}

/// The pixels of a coordinate that may lie in the cells: none where low is above high.
Span PixelsOf(const Span& span, double last)
{
    const F64 margin = SplatDouble(kMargin);
    return {Max(Ceiling(span.low - margin), SplatDouble(0)),
            Min(Floor(span.high + margin), SplatDouble(last))};
}

/// The hits of all lanes at one pixel of each.
struct Slot {
    unsigned bits;
    double x[kLanes64], y[kLanes64], u[kLanes64], v[kLanes64];
};

void Append(WarpHits& hits, const Slot& slot, std::size_t lane)
{
    const std::size_t at = hits.count++;
    hits.x[at] = slot.x[lane];
    hits.y[at] = slot.y[lane];
    hits.u[at] = slot.u[lane];
    hits.v[at] = slot.v[lane];
}

constexpr unsigned kAllLanes = (1U << kLanes64) - 1;

/// All lanes.
void Append(WarpHits& hits, const Slot& slot)
{
    StoreDoubles(hits.x + hits.count, LoadDoubles(slot.x));
    StoreDoubles(hits.y + hits.count, LoadDoubles(slot.y));
    StoreDoubles(hits.u + hits.count, LoadDoubles(slot.u));
    StoreDoubles(hits.v + hits.count, LoadDoubles(slot.v));
    hits.count += kLanes64;
}

/// Where hits come from: a grid that does not move is itself, what its corners are mixed to exactly.
struct Source {
    const WarpCells& row;
    std::size_t index;
    Corners gridX, gridY;

    F64 U(const Found& found) const
    {
        if (row.source == 0) return gridX.at[0] + found.s;
        return Interp(found, Moved(gridX, row.x, index, SplatDouble(row.source)));
    }
    F64 V(const Found& found) const
    {
        if (row.source == 0) return gridY.at[0] + found.t;
        return Interp(found, Moved(gridY, row.y, index, SplatDouble(row.source)));
    }
};

/// The hits of a vector of regular cells, of the lanes in \p lanes.
void TakeCells(const Cells& cells, const Source& source, const Span& pixelsX, const Span& pixelsY,
               unsigned lanes, WarpHits& hits)
{
    Slot slots[9];
    std::size_t count = 0;
    const F64 one = SplatDouble(1);
    for (F64 y = pixelsY.low;; y = y + one) {
        const Mask64 inRow = y <= pixelsY.high;
        if ((BitsOf(inRow) & lanes) == 0) break;
        for (F64 x = pixelsX.low;; x = x + one) {
            const Mask64 isPixel = inRow & (x <= pixelsX.high);
            if ((BitsOf(isPixel) & lanes) == 0) break;
            const Found found = Inverse(cells, x, y);
            Slot& slot = slots[count++];
            slot.bits = BitsOf(found.inside & isPixel) & lanes;
            StoreDoubles(slot.x, x);
            StoreDoubles(slot.y, y);
            StoreDoubles(slot.u, source.U(found));
            StoreDoubles(slot.v, source.V(found));
        }
    }
    if (count == 1 && slots[0].bits == kAllLanes) return Append(hits, slots[0]);
    for (std::size_t lane = 0; lane < kLanes64; ++lane)
        for (std::size_t i = 0; i < count; ++i)
            if ((slots[i].bits >> lane & 1U) != 0) Append(hits, slots[i], lane);
}

bool AllEqual(const Corners& a, const Corners& b)
{
    const Mask64 below = (a.at[0] == b.at[0]) & (a.at[1] == b.at[1]);
    const Mask64 above = (a.at[2] == b.at[2]) & (a.at[3] == b.at[3]);
    return BitsOf(below & above) == kAllLanes;
}

Corners operator+(const Corners& a, F64 b)
{
    return {{a.at[0] + b, a.at[1] + b, a.at[2] + b, a.at[3] + b}};
}

/// A whole number that is not far, of which vectors of it move pixels onto pixels.
bool IsStep(double v)
{
    return v >= -kFarthest && v <= kFarthest && static_cast<double>(static_cast<int>(v)) == v;
}

/// Where whole cells land on pixels, each is at the common corners of several, and comes from the same place
/// in all of them: as where nothing moves. Takes a vector of such cells, a hit a corner.
bool TakeSteps(const WarpCells& row, const Source& source, const Corners& x, const Corners& y, WarpHits& hits)
{
    const double stepX = row.x[0][source.index] * row.target;
    const double stepY = row.y[0][source.index] * row.target;
    if (row.source != 0 || !IsStep(stepX) || !IsStep(stepY)) return false;
    const auto first = static_cast<double>(source.index);
    const double left = first + stepX;
    const double below = row.row + stepY;
    if (left < 0 || left + kLanes64 > row.lastX || below < 0 || below + 1 > row.lastY) return false;
    if (!AllEqual(x, source.gridX + SplatDouble(stepX)) || !AllEqual(y, source.gridY + SplatDouble(stepY)))
        return false;
    for (double up = 0; up < 2; up += 1)
        for (std::size_t i = 0; i <= kLanes64; ++i) {
            const std::size_t at = hits.count++;
            hits.x[at] = left + static_cast<double>(i);
            hits.y[at] = below + up;
            hits.u[at] = first + static_cast<double>(i);
            hits.v[at] = row.row + up;
        }
    return true;
}

std::size_t RegularCells(const WarpCells& row, std::size_t first, WarpHits& hits)
{
    const F64 target = SplatDouble(row.target);
    const F64 below = SplatDouble(row.row);
    const F64 above = SplatDouble(row.row + 1);
    F64 left = CountFrom(static_cast<double>(first));
    std::size_t index = first;
    for (; index + kLanes64 <= row.count && hits.count + 9 * kLanes64 <= WarpHits::kMost;
         index += kLanes64, left = left + SplatDouble(kLanes64)) {
        const F64 right = left + SplatDouble(1);
        const Source source{row, index, {{left, right, left, right}}, {{below, below, above, above}}};
        const Corners x = Moved(source.gridX, row.x, index, target);
        const Corners y = Moved(source.gridY, row.y, index, target);
        if (TakeSteps(row, source, x, y, hits)) continue;
        const Cells cells = CellsOf(x, y);
        const Span spanX = SpanOf(x);
        const Span spanY = SpanOf(y);
        const unsigned regular = BitsOf(AreRegular(cells, x, y, spanX, spanY));
        // The lanes before the first cell that is not.
        const unsigned lanes = regular & ~(regular + 1) & kAllLanes;
        TakeCells(cells, source, PixelsOf(spanX, row.lastX), PixelsOf(spanY, row.lastY), lanes, hits);
        if (regular == kAllLanes) continue;
        for (unsigned bits = regular; (bits & 1U) != 0; bits >>= 1)
            ++index;
        break;
    }
    return index;
}

void TestPixels(const WarpCell& cell, double x, double y, std::size_t pixels, WarpHits& hits)
{
    const Cells cells = CellsOf(SplatCorners(cell.targetX), SplatCorners(cell.targetY));
    const Corners sourceX = SplatCorners(cell.sourceX);
    const Corners sourceY = SplatCorners(cell.sourceY);
    Slot slot;
    StoreDoubles(slot.y, SplatDouble(y));
    for (std::size_t at = 0; at < pixels; at += kLanes64) {
        const F64 columns = CountFrom(x + static_cast<double>(at));
        const Found found = Inverse(cells, columns, SplatDouble(y));
        const std::size_t left = pixels - at;
        slot.bits = BitsOf(found.inside) & (left < kLanes64 ? (1U << left) - 1 : kAllLanes);
        if (slot.bits == 0) continue;
        StoreDoubles(slot.x, columns);
        StoreDoubles(slot.u, Interp(found, sourceX));
        StoreDoubles(slot.v, Interp(found, sourceY));
        for (std::size_t lane = 0; lane < kLanes64; ++lane)
            if ((slot.bits >> lane & 1U) != 0) Append(hits, slot, lane);
    }
}

void Shift(const double* vectorsX, const double* vectorsY, double factor, double x, double y,
           std::size_t pixels, double* u, double* v)
{
    const F64 by = SplatDouble(factor);
    const F64 row = SplatDouble(y);
    F64 column = CountFrom(x);
    std::size_t i = 0;
    for (; i + kLanes64 <= pixels; i += kLanes64, column = column + SplatDouble(kLanes64)) {
        StoreDoubles(u + i, column + LoadDoubles(vectorsX + i) * by);
        StoreDoubles(v + i, row + LoadDoubles(vectorsY + i) * by);
    }
    for (; i < pixels; ++i) {
        u[i] = x + static_cast<double>(i) + vectorsX[i] * factor;
        v[i] = y + vectorsY[i] * factor;
    }
}

} // namespace

namespace VFIL_LEVEL {

void Fill(WarpRows& rows)
{
    rows = {.cells = RegularCells, .pixels = TestPixels, .shift = Shift};
}

} // namespace VFIL_LEVEL
} // namespace vfil

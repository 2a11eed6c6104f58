/// \file
/// The shapes of footprints side by side: where they lie, and their areas in the pixels of a row. Included by
/// footprintrows_simd.cpp alone, once for each level.
#pragma once

#include "il/rows/transform/footprintparams.h"
#include "il/rows/vecfloat.h"

namespace vfil {
namespace {

constexpr double kUpright = 1e-30;
constexpr double kBeyondAll = 1e300;

/// Where footprints begin and end on an axis, before they are limited to the picture. What is nowhere begins
/// beyond all and ends before all.
struct Extent {
    F64 low = SplatDouble(kBeyondAll);
    F64 high = SplatDouble(-kBeyondAll);

    void Widen(F64 a, F64 b)
    {
        low = Min(low, a);
        high = Max(high, b);
    }
};

/// The first and the last pixel of an extent that count.
struct Span {
    F64 first, last;

    Span(const Extent& extent, F64 begin, F64 end)
        : first(Min(Max(extent.low + SplatDouble(0.5), begin), end + SplatDouble(1))),
          last(Min(Max(extent.high + SplatDouble(0.5), begin - SplatDouble(1)), end))
    {}
};

/// What of an edge of each footprint lies in a row.
struct EdgePart {
    F64 left, right, middle, height, halfSlope;

    F64 AreaBeyond(F64 line) const
    {
        const F64 reach = Max(right - line, SplatDouble(0));
        return Select(line < left, height * (middle - line), halfSlope * reach * reach);
    }
};

/// An edge of each footprint; see the plain form.
struct Edge {
    F64 topX, topY, bottomX, bottomY, sign, slope;
    F64 x;

    void Set(F64 fromX, F64 fromY, F64 toX, F64 toY, F64 order)
    {
        const F64 zero = SplatDouble(0);
        const Mask64 down = fromY < toY;
        topX = Select(down, fromX, toX);
        topY = Min(fromY, toY);
        bottomX = Select(down, toX, fromX);
        bottomY = Max(fromY, toY);
        sign = Select(down, order, zero - order);
        const F64 width = Max(bottomX - topX, topX - bottomX);
        slope =
            Select(width < SplatDouble(kUpright), zero, sign * (bottomY - topY) * SplatDouble(0.5) / width);
    }
    F64 CutAt(F64 y) const
    {
        const F64 cut = topX + (bottomX - topX) * (y - topY) / (bottomY - topY);
        return Select(topY < y, Select(y < bottomY, cut, bottomX), topX);
    }
    /// Its part in a row. True if some footprint has one.
    bool GoTo(F64 rowTop, F64 rowBottom, EdgePart& part, Extent& columns)
    {
        const F64 zero = SplatDouble(0);
        const F64 above = x;
        x = CutAt(rowBottom);
        part.left = Min(above, x);
        part.right = Max(above, x);
        part.middle = (above + x) * SplatDouble(0.5);
        const F64 length = Min(bottomY, rowBottom) - Max(topY, rowTop);
        const Mask64 isHere = zero < length;
        part.height = Select(isHere, length * sign, zero);
        part.halfSlope = Select(isHere, slope, zero);
        columns.Widen(Select(isHere, part.left, SplatDouble(kBeyondAll)),
                      Select(isHere, part.right, SplatDouble(-kBeyondAll)));
        return AnyOf(isHere);
    }
};

/// The areas in a row of quadrilaterals, of which some have so many edges in it. Where an edge is in no
/// footprint of a vector, its areas are 0 in all.
template <int edges>
struct QuadRow {
    EdgePart parts[edges];
    F64 beyond;

    QuadRow(const EdgePart* from, F64 column)
    {
        for (int i = 0; i < edges; ++i)
            parts[i] = from[i];
        beyond = AreaBeyond(column - SplatDouble(0.5));
    }
    F64 Next(F64 column)
    {
        const F64 before = beyond;
        beyond = AreaBeyond(column + SplatDouble(0.5));
        return before - beyond;
    }
    F64 AreaBeyond(F64 line) const
    {
        F64 area = parts[0].AreaBeyond(line);
        for (int i = 1; i < edges; ++i)
            area = area + parts[i].AreaBeyond(line);
        return area;
    }
};

class Quads {
public:
    /// What of the edges lies in a row.
    struct RowState {
        EdgePart parts[4];
        int count;
    };

    Quads(const FootprintGroup& group, std::size_t at)
    {
        for (int i = 0; i < 4; ++i) {
            const int next = (i + 1) & 3;
            m_edges[i].Set(LoadDoubles(group.x[i] + at), LoadDoubles(group.y[i] + at),
                           LoadDoubles(group.x[next] + at), LoadDoubles(group.y[next] + at),
                           LoadDoubles(group.sign + at));
        }
    }
    Extent Rows() const
    {
        Extent rows;
        for (const Edge& edge : m_edges)
            rows.Widen(edge.topY, edge.bottomY);
        return rows;
    }
    Extent Columns() const
    {
        Extent columns;
        for (const Edge& edge : m_edges)
            columns.Widen(edge.topX, edge.topX);
        for (const Edge& edge : m_edges)
            columns.Widen(edge.bottomX, edge.bottomX);
        return columns;
    }
    void Start(F64 row)
    {
        for (Edge& edge : m_edges)
            edge.x = edge.CutAt(row - SplatDouble(0.5));
    }
    /// Takes the next row.
    Extent GoTo(F64 row, RowState& state)
    {
        const F64 half = SplatDouble(0.5);
        Extent columns;
        state.count = 0;
        for (Edge& edge : m_edges)
            state.count += edge.GoTo(row - half, row + half, state.parts[state.count], columns) ? 1 : 0;
        return columns;
    }
    /// Calls with the row's areas, which begin at a column.
    template <class Sum>
    static void Visit(const RowState& state, F64 column, const Sum& sum)
    {
        if (state.count == 2) sum(QuadRow<2>(state.parts, column));
        if (state.count == 3) sum(QuadRow<3>(state.parts, column));
        if (state.count == 4) sum(QuadRow<4>(state.parts, column));
    }

private:
    Edge m_edges[4];
};

F64 LengthIn(F64 from, F64 to, F64 pixel)
{
    const F64 half = SplatDouble(0.5);
    return Max(Min(to, pixel + half) - Max(from, pixel - half), SplatDouble(0));
}

/// The areas in a row of boxes.
struct BoxRow {
    F64 left, right, height;

    F64 Next(F64 column) const { return LengthIn(left, right, column) * height; }
};

class Boxes {
public:
    using RowState = BoxRow;

    Boxes(const FootprintGroup& group, std::size_t at)
    {
        for (int i = 0; i < 4; i += 2) {
            const F64 x = LoadDoubles(group.x[i] + at);
            const F64 y = LoadDoubles(group.y[i] + at);
            m_columns.Widen(x, x);
            m_rows.Widen(y, y);
        }
    }
    Extent Rows() const { return m_rows; }
    Extent Columns() const { return m_columns; }
    void Start(F64 /*row*/) {}
    Extent GoTo(F64 row, BoxRow& state) const
    {
        state = {m_columns.low, m_columns.high, LengthIn(m_rows.low, m_rows.high, row)};
        const Mask64 isEmpty = state.height == SplatDouble(0);
        Extent columns;
        columns.Widen(Select(isEmpty, columns.low, m_columns.low),
                      Select(isEmpty, columns.high, m_columns.high));
        return columns;
    }
    template <class Sum>
    static void Visit(const BoxRow& state, F64 /*column*/, const Sum& sum)
    {
        sum(state);
    }

private:
    Extent m_columns, m_rows;
};

} // namespace
} // namespace vfil

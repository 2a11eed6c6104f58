/// \file
/// The plain forms of the footprint sums, and the tables.
///
/// The area that a polygon has in a pixel is that to the right of the pixel's left side less that to the
/// right of its right side. Each of these is a sum over the polygon's edges: what lies right of a line x and
/// left of an edge is a trapezoid where the edge is wholly right of the line, a triangle where it crosses the
/// line, and nothing otherwise. So no edge is cut by columns, and no list of vertices is made; an edge is cut
/// by rows alone.
#include "il/rows/transform/footprintrows.h"

#include <algorithm>
#include <limits>

namespace vfil {
namespace {

constexpr long kMostEdges = 22;
/// No line between two columns can cross an edge that is narrower; its slope would be too large for a double.
constexpr double kUpright = 1e-30;

/// An edge, from its upper to its lower end, and what of it lies in the current row.
struct Edge {
    double topX, topY, bottomX, bottomY;
    double sign;  // 1 for an edge with the polygon on its left
    double slope; // half of the height by the width, with the sign

    double x; // where it leaves the row: there the next row begins
    double left, right, middle, height, halfSlope;

    Edge() = default;
    Edge(double fromX, double fromY, double toX, double toY, double order)
    {
        const bool down = fromY < toY;
        topX = down ? fromX : toX;
        topY = std::min(fromY, toY);
        bottomX = down ? toX : fromX;
        bottomY = std::max(fromY, toY);
        sign = down ? order : 0.0 - order;
        const double width = std::max(bottomX - topX, topX - bottomX);
        slope = width < kUpright ? 0.0 : sign * (bottomY - topY) * 0.5 / width;
    }

    /// Where it crosses a row's upper or lower side, or the end that is nearest to it.
    double CutAt(double y) const
    {
        if (y <= topY) return topX;
        return bottomY <= y ? bottomX : topX + (bottomX - topX) * (y - topY) / (bottomY - topY);
    }

    void GoTo(double rowTop, double rowBottom)
    {
        const double above = x;
        x = CutAt(rowBottom);
        left = std::min(above, x);
        right = std::max(above, x);
        middle = (above + x) * 0.5;
        const double part = std::min(bottomY, rowBottom) - std::max(topY, rowTop);
        const bool isHere = 0.0 < part;
        height = isHere ? part * sign : 0.0;
        halfSlope = isHere ? slope : 0.0;
    }

    /// The area between a line at x and the edge to the right of it.
    double AreaBeyond(double line) const
    {
        const double reach = std::max(right - line, 0.0);
        return line < left ? height * (middle - line) : halfSlope * reach * reach;
    }
};

/// The rows or columns from which a sum is made.
struct Span {
    std::int32_t first, last;

    /// The pixels of an interval that count.
    Span(double low, double high, double begin, double end)
        : first(static_cast<std::int32_t>(std::min(std::max(low + 0.5, begin), end + 1))),
          last(static_cast<std::int32_t>(std::min(std::max(high + 0.5, begin - 1), end)))
    {}
};

Span RowsOf(const double* y, long count, const FootprintPicture& picture)
{
    return {*std::min_element(y, y + count), *std::max_element(y, y + count),
            static_cast<double>(picture.top), static_cast<double>(picture.bottom)};
}

Span Columns(double left, double right, const FootprintPicture& picture)
{
    return {left, right, static_cast<double>(picture.left), static_cast<double>(picture.right)};
}

/// The edges of a polygon, in the order of its vertices, in which their areas are added.
class Edges {
public:
    Edges(const FootprintPolygon& polygon, std::int32_t firstRow)
        : m_count(std::min(polygon.count, kMostEdges))
    {
        for (long i = 0; i < m_count; ++i) {
            const long next = i + 1 == m_count ? 0 : i + 1;
            m_edges[i] = Edge(polygon.x[i], polygon.y[i], polygon.x[next], polygon.y[next], polygon.sign);
            m_edges[i].x = m_edges[i].CutAt(firstRow - 0.5);
        }
    }
    /// Takes the next row.
    Span GoTo(double row, const FootprintPicture& picture)
    {
        double left = std::numeric_limits<double>::infinity();
        double right = -left;
        for (Edge* edge = m_edges; edge != m_edges + m_count; ++edge) {
            edge->GoTo(row - 0.5, row + 0.5);
            if (edge->height == 0.0) continue;
            left = std::min(left, edge->left);
            right = std::max(right, edge->right);
        }
        const Span span = Columns(left, right, picture);
        m_beyond = AreaBeyond(span.first - 0.5);
        return span;
    }
    /// The area in the next column.
    double Next(double column)
    {
        const double before = m_beyond;
        m_beyond = AreaBeyond(column + 0.5);
        return before - m_beyond;
    }

private:
    double AreaBeyond(double line) const
    {
        double area = m_edges[0].AreaBeyond(line);
        for (long i = 1; i < m_count; ++i)
            area += m_edges[i].AreaBeyond(line);
        return area;
    }

    Edge m_edges[kMostEdges];
    long m_count;
    double m_beyond = 0;
};

/// The length that an interval shares with a pixel.
double LengthIn(double from, double to, double pixel)
{
    return std::max(std::min(to, pixel + 0.5) - std::max(from, pixel - 0.5), 0.0);
}

/// A box, whose pieces are products of lengths.
class Box {
public:
    Box(const double* x, const double* y)
        : m_left(std::min(x[0], x[2])), m_right(std::max(x[0], x[2])), m_top(std::min(y[0], y[2])),
          m_bottom(std::max(y[0], y[2]))
    {}
    Span GoTo(double row, const FootprintPicture& picture)
    {
        m_height = LengthIn(m_top, m_bottom, row);
        return Columns(m_left, m_right, picture);
    }
    double Next(double column) const { return LengthIn(m_left, m_right, column) * m_height; }

private:
    double m_left, m_right, m_top, m_bottom;
    double m_height = 0;
};

template <class Sample, int kChannels, class Shape>
void SumShape(Shape& shape, Span rows, const FootprintPicture& picture, double* channels, double& weight)
{
    for (std::int32_t row = rows.first; row <= rows.last; ++row) {
        const Span span = shape.GoTo(row, picture);
        const auto* pixel = reinterpret_cast<const Sample*>(picture.base + row * picture.rowBytes) +
                            std::ptrdiff_t{span.first} * kChannels;
        for (std::int32_t column = span.first; column <= span.last; ++column, pixel += kChannels) {
            const double area = shape.Next(column);
            weight += area;
            for (int c = 0; c < kChannels; ++c)
                channels[c] += pixel[c] * area;
        }
    }
}

/// One footprint of a group.
struct Quad {
    double x[4], y[4];

    Quad(const FootprintGroup& group, std::size_t at)
    {
        for (int i = 0; i < 4; ++i) {
            x[i] = group.x[i][at];
            y[i] = group.y[i][at];
        }
    }
};

template <class Sample, int kChannels>
void PlainQuads(const FootprintGroup& group, const FootprintPicture& picture, FootprintSums& sums)
{
    for (std::size_t i = 0; i < kFootprintGroup; ++i) {
        const Quad quad(group, i);
        SumPolygon<Sample, kChannels>({quad.x, quad.y, 4, group.sign[i]}, picture, sums.channels[i],
                                      sums.weights[i]);
    }
}

template <class Sample, int kChannels>
void PlainBoxes(const FootprintGroup& group, const FootprintPicture& picture, FootprintSums& sums)
{
    for (std::size_t i = 0; i < kFootprintGroup; ++i) {
        const Quad quad(group, i);
        Box box(quad.x, quad.y);
        SumShape<Sample, kChannels>(box, RowsOf(quad.y, 4, picture), picture, sums.channels[i],
                                    sums.weights[i]);
    }
}

const LevelTables<FootprintRows>& Tables()
{
    using Byte = std::uint8_t;
    using Word = std::uint16_t;
    static const LevelTables<FootprintRows> tables(
        {.quads = {{PlainQuads<Byte, 1>, PlainQuads<Byte, 4>}, {PlainQuads<Word, 1>, PlainQuads<Word, 4>}},
         .boxes = {{PlainBoxes<Byte, 1>, PlainBoxes<Byte, 4>}, {PlainBoxes<Word, 1>, PlainBoxes<Word, 4>}}},
        VFIL_FILLS);
    return tables;
}

} // namespace

template <class Sample, int kChannels>
void SumPolygon(const FootprintPolygon& polygon, const FootprintPicture& picture, double* channels,
                double& weight)
{
    const Span rows = RowsOf(polygon.y, polygon.count, picture);
    Edges edges(polygon, rows.first);
    SumShape<Sample, kChannels>(edges, rows, picture, channels, weight);
}

template void SumPolygon<std::uint8_t, 1>(const FootprintPolygon&, const FootprintPicture&, double*, double&);
template void SumPolygon<std::uint8_t, 4>(const FootprintPolygon&, const FootprintPicture&, double*, double&);
template void SumPolygon<std::uint16_t, 1>(const FootprintPolygon&, const FootprintPicture&, double*,
                                           double&);
template void SumPolygon<std::uint16_t, 4>(const FootprintPolygon&, const FootprintPicture&, double*,
                                           double&);

const FootprintRows& FootprintRowsAt(Level level)
{
    return Tables().At(level);
}

const FootprintRows& FindFootprintRows(bool useVectors)
{
    return Tables().At(useVectors ? BestLevel() : Level::Plain);
}

} // namespace vfil

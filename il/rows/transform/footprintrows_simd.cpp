/// \file
/// The vector forms of the footprint sums, for the level VFIL_LEVEL: footprints side by side, each with its
/// own place in the picture and its own sums in the plain form's order. A footprint that ends before another
/// one goes on with areas of 0.
#include "il/rows/transform/footprintparams.h"
#include "il/rows/vecfloat.h"
#include "il/rows/vecpixel.h"

namespace vfil {
namespace {

constexpr double kUpright = 1e-30;
constexpr double kBeyondAll = 1e300;

/// The first and the last column of a row, before they are limited to the picture.
struct Sides {
    F64 left, right;
};

/// An edge of each footprint; see the plain form.
struct Edge {
    F64 topX, topY, bottomX, bottomY, sign, slope;
    F64 x;
    F64 left, right, middle, height, halfSlope;

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
    void GoTo(F64 rowTop, F64 rowBottom)
    {
        const F64 zero = SplatDouble(0);
        const F64 above = x;
        x = CutAt(rowBottom);
        left = Min(above, x);
        right = Max(above, x);
        middle = (above + x) * SplatDouble(0.5);
        const F64 part = Min(bottomY, rowBottom) - Max(topY, rowTop);
        const Mask64 isHere = zero < part;
        height = Select(isHere, part * sign, zero);
        halfSlope = Select(isHere, slope, zero);
    }
    Sides Widen(Sides sides) const
    {
        const Mask64 isFlat = height == SplatDouble(0);
        return {Min(sides.left, Select(isFlat, SplatDouble(kBeyondAll), left)),
                Max(sides.right, Select(isFlat, SplatDouble(-kBeyondAll), right))};
    }
    F64 AreaBeyond(F64 line) const
    {
        const F64 reach = Max(right - line, SplatDouble(0));
        return Select(line < left, height * (middle - line), halfSlope * reach * reach);
    }
};

class Quads {
public:
    Quads(const FootprintGroup& group, std::size_t at)
    {
        const F64 sign = LoadDoubles(group.sign + at);
        const F64 above = LoadDoubles(group.top + at) - SplatDouble(0.5);
        for (int i = 0; i < 4; ++i) {
            const int next = (i + 1) & 3;
            m_edges[i].Set(LoadDoubles(group.x[i] + at), LoadDoubles(group.y[i] + at),
                           LoadDoubles(group.x[next] + at), LoadDoubles(group.y[next] + at), sign);
            m_edges[i].x = m_edges[i].CutAt(above);
        }
    }
    Sides GoTo(F64 row)
    {
        const F64 half = SplatDouble(0.5);
        Sides sides{SplatDouble(kBeyondAll), SplatDouble(-kBeyondAll)};
        for (Edge& edge : m_edges) {
            edge.GoTo(row - half, row + half);
            sides = edge.Widen(sides);
        }
        return sides;
    }
    void Enter(F64 column) { m_beyond = AreaBeyond(column - SplatDouble(0.5)); }
    F64 Next(F64 column)
    {
        const F64 before = m_beyond;
        m_beyond = AreaBeyond(column + SplatDouble(0.5));
        return before - m_beyond;
    }

private:
    F64 AreaBeyond(F64 line) const
    {
        return m_edges[0].AreaBeyond(line) + m_edges[1].AreaBeyond(line) + m_edges[2].AreaBeyond(line) +
               m_edges[3].AreaBeyond(line);
    }

    Edge m_edges[4];
    F64 m_beyond{};
};

class Boxes {
public:
    Boxes(const FootprintGroup& group, std::size_t at)
        : m_left(LoadDoubles(group.x[0] + at)), m_right(LoadDoubles(group.x[1] + at)),
          m_top(LoadDoubles(group.y[0] + at)), m_bottom(LoadDoubles(group.y[1] + at))
    {}
    Sides GoTo(F64 row)
    {
        m_height = Common(m_top, m_bottom, row);
        const Mask64 isEmpty = m_height == SplatDouble(0);
        return {Select(isEmpty, SplatDouble(kBeyondAll), m_left),
                Select(isEmpty, SplatDouble(-kBeyondAll), m_right)};
    }
    void Enter(F64 /*column*/) {}
    F64 Next(F64 column) const { return Common(m_left, m_right, column) * m_height; }

private:
    static F64 Common(F64 from, F64 to, F64 pixel)
    {
        const F64 half = SplatDouble(0.5);
        return Max(Min(to, pixel + half) - Max(from, pixel - half), SplatDouble(0));
    }

    F64 m_left, m_right, m_top, m_bottom;
    F64 m_height{};
};

/// The sums of RGBA pixels: a vector of channels each footprint.
template <class Sample, int kChannels>
class Sums {
public:
    Sums(const FootprintSums& sums, std::size_t at) : m_weight(LoadDoubles(sums.weights + at))
    {
        for (std::size_t i = 0; i < kLanes64; ++i)
            m_channels[i] = LoadChannels(sums.channels[at + i]);
    }
    /// Pixels at the same distance from each footprint's start.
    void Add(const Sample* const (&pixels)[kLanes64], const std::int32_t (&columns)[kLanes64], F64 area)
    {
        m_weight = m_weight + area;
        double areas[kLanes64];
        StoreDoubles(areas, area);
        for (std::size_t i = 0; i < kLanes64; ++i)
            m_channels[i] =
                AddScaled(m_channels[i], LoadChannels(pixels[i] + 4 * std::ptrdiff_t{columns[i]}), areas[i]);
    }
    void Store(FootprintSums& sums, std::size_t at) const
    {
        StoreDoubles(sums.weights + at, m_weight);
        for (std::size_t i = 0; i < kLanes64; ++i)
            StoreChannels(sums.channels[at + i], m_channels[i]);
    }

private:
    Channels m_channels[kLanes64];
    F64 m_weight;
};

/// The sums of mono pixels, side by side.
template <class Sample>
class Sums<Sample, 1> {
public:
    Sums(const FootprintSums& sums, std::size_t at) : m_weight(LoadDoubles(sums.weights + at))
    {
        double values[kLanes64];
        for (std::size_t i = 0; i < kLanes64; ++i)
            values[i] = sums.channels[at + i][0];
        m_sum = LoadDoubles(values);
    }
    void Add(const Sample* const (&pixels)[kLanes64], const std::int32_t (&columns)[kLanes64], F64 area)
    {
        std::int32_t samples[kLanes64];
        for (std::size_t i = 0; i < kLanes64; ++i)
            samples[i] = pixels[i][columns[i]];
        m_weight = m_weight + area;
        m_sum = m_sum + ToDoubles(samples) * area;
    }
    void Store(FootprintSums& sums, std::size_t at) const
    {
        StoreDoubles(sums.weights + at, m_weight);
        double values[kLanes64];
        StoreDoubles(values, m_sum);
        for (std::size_t i = 0; i < kLanes64; ++i)
            sums.channels[at + i][0] = values[i];
    }

private:
    F64 m_sum, m_weight;
};

/// What is summed of a row, of each footprint.
struct Row {
    std::int32_t first[kLanes64];
    std::int32_t last[kLanes64];
    F64 column;
    std::int32_t columns = 0; ///< of the longest
    /// Whether some footprint goes on behind its last column, or its last row, or would read behind the
    /// picture's last column.
    bool needsLimits = false;

    Row(Sides sides, Mask64 isBelow, const FootprintPicture& picture)
    {
        const F64 half = SplatDouble(0.5);
        const F64 one = SplatDouble(1);
        const F64 left = SplatDouble(picture.left);
        const F64 right = SplatDouble(picture.right);
        std::int32_t end[kLanes64];
        const F64 cut = Min(Max(sides.right + half, left - one), right);
        StoreWhole(end, cut);
        StoreWhole(last, Select(isBelow, left - one, cut));
        StoreWhole(first, Min(Max(sides.left + half, left), right + one));
        for (std::size_t i = 0; i < kLanes64; ++i) {
            needsLimits = needsLimits || last[i] != end[i];
            if (last[i] < first[i])
                Skip(i, picture);
            else if (columns <= last[i] - first[i])
                columns = last[i] - first[i] + 1;
        }
        for (const std::int32_t start : first)
            needsLimits = needsLimits || start > picture.right - columns + 1;
        column = ToDoubles(first);
    }

    /// A footprint with nothing in the row stands at the picture's first column. Its areas are 0 there,
    /// unless it is farther to the right.
    void Skip(std::size_t i, const FootprintPicture& picture)
    {
        needsLimits = needsLimits || last[i] >= picture.left;
        first[i] = picture.left;
        last[i] = picture.left - 1;
    }
};

/// Sums the row's columns. With limits no footprint reads, or adds, anything behind its last one.
template <bool limits, class Shape, class RowSums, class Sample>
void SumColumns(const Row& row, Shape& shape, RowSums& sums, const Sample* const (&pixels)[kLanes64])
{
    F64 column = row.column;
    const F64 last = ToDoubles(row.last);
    std::int32_t at[kLanes64];
    for (std::size_t i = 0; i < kLanes64; ++i)
        at[i] = row.first[i];
    for (std::int32_t i = 0; i < row.columns; ++i) {
        F64 area = shape.Next(column);
        if (limits) area = Select(last < column, SplatDouble(0), area);
        sums.Add(pixels, at, area);
        for (std::size_t lane = 0; lane < kLanes64; ++lane)
            if (!limits || at[lane] < row.last[lane]) ++at[lane];
        column = column + SplatDouble(1);
    }
}

template <class Sample, int kChannels, class Shape>
void SumLanes(const FootprintGroup& group, std::size_t start, const FootprintPicture& picture,
              FootprintSums& result)
{
    Shape shape(group, start);
    Sums<Sample, kChannels> sums(result, start);
    double rows = 0;
    for (std::size_t i = start; i < start + kLanes64; ++i) {
        const double count = group.bottom[i] - group.top[i] + 1;
        if (rows < count) rows = count;
    }
    const F64 bottom = LoadDoubles(group.bottom + start);
    F64 row = LoadDoubles(group.top + start);
    for (double i = 0; i < rows; ++i) {
        const Mask64 isBelow = bottom < row;
        const Row span(shape.GoTo(row), isBelow, picture);
        const Sample* pixels[kLanes64];
        std::int32_t at[kLanes64];
        StoreWhole(at, Min(row, bottom));
        for (std::size_t lane = 0; lane < kLanes64; ++lane)
            pixels[lane] = reinterpret_cast<const Sample*>(picture.base + at[lane] * picture.rowBytes);
        shape.Enter(span.column);
        if (span.needsLimits)
            SumColumns<true>(span, shape, sums, pixels);
        else
            SumColumns<false>(span, shape, sums, pixels);
        row = row + SplatDouble(1);
    }
    sums.Store(result, start);
}

template <class Sample, int kChannels, class Shape>
void SumGroup(const FootprintGroup& group, const FootprintPicture& picture, FootprintSums& sums)
{
    for (std::size_t start = 0; start < kFootprintGroup; start += kLanes64)
        SumLanes<Sample, kChannels, Shape>(group, start, picture, sums);
}

template <class Shape>
void FillShape(FootprintKernel (&kernels)[2][2])
{
    kernels[0][0] = SumGroup<std::uint8_t, 1, Shape>;
    kernels[0][1] = SumGroup<std::uint8_t, 4, Shape>;
    kernels[1][0] = SumGroup<std::uint16_t, 1, Shape>;
    kernels[1][1] = SumGroup<std::uint16_t, 4, Shape>;
}

} // namespace

namespace VFIL_LEVEL {

void Fill(FootprintRows& rows)
{
    FillShape<Quads>(rows.quads);
    FillShape<Boxes>(rows.boxes);
}

} // namespace VFIL_LEVEL
} // namespace vfil

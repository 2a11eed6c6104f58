/// \file
/// The vector forms of the footprint sums, for the level VFIL_LEVEL: footprints side by side, each with its
/// own place in the picture and its own sums in the plain form's order. A footprint that ends before another
/// one goes on with areas of 0.
#include "il/rows/transform/footprintlanes.h"
#include "il/rows/vecpixel.h"

namespace vfil {
namespace {

/// Where each footprint reads.
template <class Sample>
using Starts = const Sample* [kLanes64];

/// The sums of RGBA pixels: a vector of channels each footprint.
template <class Sample, int kChannels>
class Sums {
public:
    Sums(const FootprintSums& sums, std::size_t at) : m_weight(LoadDoubles(sums.weights + at))
    {
        for (std::size_t i = 0; i < kLanes64; ++i)
            m_channels[i] = LoadChannels(sums.channels[at + i]);
    }
    /// Pixels so many columns from each footprint's start.
    void Add(const Starts<Sample>& starts, std::ptrdiff_t column, F64 area)
    {
        m_weight = m_weight + area;
        double areas[kLanes64];
        StoreDoubles(areas, area);
        for (std::size_t i = 0; i < kLanes64; ++i)
            m_channels[i] = AddScaled(m_channels[i], LoadChannels(starts[i] + 4 * column), areas[i]);
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
    void Add(const Starts<Sample>& starts, std::ptrdiff_t column, F64 area)
    {
        std::int32_t samples[kLanes64];
        for (std::size_t i = 0; i < kLanes64; ++i)
            samples[i] = starts[i][column];
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
    F64 column;           ///< the first one
    std::int32_t columns; ///< of the longest
    /// Whether some footprint goes on behind its last column, or its last row, or would read behind the
    /// picture's last column.
    bool needsLimits;

    /// Of footprints that need no limits in any row. One with nothing in the row stands where it ends, at
    /// \p end; its areas are 0 there.
    void SetInside(const Extent& extent, F64 end)
    {
        const F64 half = SplatDouble(0.5);
        const F64 begin = Min(extent.low, end) + half;
        StoreWhole(first, begin);
        StoreWhole(last, Max(extent.high + half, begin - SplatDouble(1)));
        columns = 0;
        for (std::size_t i = 0; i < kLanes64; ++i) {
            const std::int32_t length = last[i] - first[i] + 1;
            columns = columns < length ? length : columns;
        }
        needsLimits = false;
        column = ToDoubles(first);
    }

    void Set(const Extent& extent, Mask64 isBelow, const FootprintPicture& picture)
    {
        const F64 left = SplatDouble(picture.left);
        const Span span(extent, left, SplatDouble(picture.right));
        std::int32_t end[kLanes64];
        StoreWhole(end, span.last);
        StoreWhole(last, Select(isBelow, left - SplatDouble(1), span.last));
        StoreWhole(first, span.first);
        columns = 0;
        needsLimits = false;
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

template <class Areas, class RowSums, class Sample>
void SumColumns(const Row& row, Areas areas, RowSums& sums, const Starts<Sample>& starts)
{
    F64 column = row.column;
    for (std::int32_t i = 0; i < row.columns; ++i) {
        sums.Add(starts, i, areas.Next(column));
        column = column + SplatDouble(1);
    }
}

/// The same where no footprint reads, or adds, anything behind its last column.
template <class Areas, class RowSums, class Sample>
void SumLimited(const Row& row, Areas areas, RowSums& sums, Starts<Sample>& starts,
                std::ptrdiff_t pixelSamples)
{
    F64 column = row.column;
    const F64 last = ToDoubles(row.last);
    for (std::int32_t i = 0; i < row.columns; ++i) {
        sums.Add(starts, 0, Select(last < column, SplatDouble(0), areas.Next(column)));
        for (std::size_t lane = 0; lane < kLanes64; ++lane)
            if (row.first[lane] + i < row.last[lane]) starts[lane] += pixelSamples;
        column = column + SplatDouble(1);
    }
}

/// The rows of each footprint, from its own first one.
struct Rows {
    std::int32_t first[kLanes64];
    std::int32_t last[kLanes64];
    std::int32_t count = 0; ///< of the highest

    Rows(const Extent& extent, const FootprintPicture& picture)
    {
        const Span span(extent, SplatDouble(picture.top), SplatDouble(picture.bottom));
        StoreWhole(first, span.first);
        StoreWhole(last, span.last);
        for (std::size_t i = 0; i < kLanes64; ++i)
            if (count <= last[i] - first[i]) count = last[i] - first[i] + 1;
    }
};

/// Whether none of the footprints reaches over the picture, wherever in its columns it stands and however
/// wide the others are.
bool AreInside(const Extent& columns, const Extent& rows, const FootprintPicture& picture)
{
    const F64 half = SplatDouble(0.5);
    double widths[kLanes64];
    StoreDoubles(widths, columns.high - columns.low);
    double width = 0;
    for (const double each : widths)
        width = width < each ? each : width;
    const F64 left = SplatDouble(picture.left) - half;
    const F64 right = SplatDouble(picture.right - width - 2);
    const F64 bottom = SplatDouble(picture.bottom) + half;
    return !AnyOf(columns.low < left) && !AnyOf(right < columns.high) && !AnyOf(bottom < rows.high);
}

/// How many rows are cut before their pixels are summed: cutting has no branches, so that the processor knows
/// the number of columns when it comes to them. Row by row, footprints of 16 pixels took 142 for 134 ns.
constexpr std::int32_t kRowsAhead = 8;

template <class Sample, int kChannels, class Shape>
void SumLanes(const FootprintGroup& group, std::size_t start, const FootprintPicture& picture,
              FootprintSums& result)
{
    Shape shape(group, start);
    Sums<Sample, kChannels> sums(result, start);
    const Extent columns = shape.Columns();
    const bool isInside = AreInside(columns, shape.Rows(), picture);
    const Rows rows(shape.Rows(), picture);
    const F64 bottom = ToDoubles(rows.last);
    F64 row = ToDoubles(rows.first);
    shape.Start(row);
    for (std::int32_t done = 0; done < rows.count; done += kRowsAhead) {
        const std::int32_t count = rows.count - done < kRowsAhead ? rows.count - done : kRowsAhead;
        typename Shape::RowState states[kRowsAhead];
        Row parts[kRowsAhead];
        for (std::int32_t i = 0; i < count; ++i) {
            const Extent extent = shape.GoTo(row, states[i]);
            if (isInside)
                parts[i].SetInside(extent, columns.high);
            else
                parts[i].Set(extent, bottom < row, picture);
            row = row + SplatDouble(1);
        }
        for (std::int32_t i = 0; i < count; ++i) {
            Starts<Sample> starts;
            for (std::size_t lane = 0; lane < kLanes64; ++lane) {
                const std::int32_t y = rows.first[lane] + done + i;
                starts[lane] =
                    reinterpret_cast<const Sample*>(picture.base + (y < picture.bottom ? y : picture.bottom) *
                                                                       picture.rowBytes) +
                    std::ptrdiff_t{parts[i].first[lane]} * kChannels;
            }
            Shape::Visit(states[i], parts[i].column, [&](const auto& areas) {
                if (parts[i].needsLimits)
                    SumLimited(parts[i], areas, sums, starts, kChannels);
                else
                    SumColumns(parts[i], areas, sums, starts);
            });
        }
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

/// \file
/// Footprint sums of boxes.

#include "il/loops/transform/panzoomsums.h"

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/rowloop.h"
#include "il/rows/transform/scalerows.h"

#include <cmath>
#include <new>

namespace vfil {

namespace {

/// A box's extent along an axis of the input, and the pixels that it has.
struct Extent {
    double low = 0, high = 0;
    bool isInside = false;

    /// Of the output pixel at a place, as the mapping of points gives it.
    Extent(const AxisMap& map, double place, double half, const Span& source)
    {
        const auto at = [&map](double v) {
            const double from = static_cast<float>(v);
            return double{static_cast<float>(map.scale * from + map.offset)};
        };
        const double ends[2] = {at(place - half), at(place + half)};
        low = std::min(ends[0], ends[1]);
        high = std::max(ends[0], ends[1]);
        isInside =
            low >= static_cast<double>(source.first) - 0.5 && high <= static_cast<double>(source.last) + 0.5;
    }
    double Length() const { return high - low; }
    /// Of a box that is inside.
    Span Pixels(const Span& source) const
    {
        const auto upper = static_cast<std::int64_t>(std::floor(high + 0.5));
        return {static_cast<std::int64_t>(std::floor(low + 0.5)), std::min(upper, source.last)};
    }
    double Common(std::int64_t pixel) const
    {
        const auto centre = static_cast<double>(pixel);
        return std::max(std::min(high, centre + 0.5) - std::max(low, centre - 0.5), 0.0);
    }
};

Span SpanOf(long first, long count)
{
    return {first, std::int64_t{first} + count - 1};
}

template <class Format>
class Sums final : public PanZoomSums {
    using Sample = typename Format::Sample;
    static constexpr std::size_t kChannels = Format::kChannels;
    static constexpr std::size_t kForm = kChannels == 4 ? 0 : 1; ///< of the kernels' arrays

public:
    Sums(const vfILTransformRun& run, double half, const AxisMap& x, const AxisMap& y, bool useVectors)
        : m_input(run.input), m_half(half), m_x(x), m_y(y),
          m_columns(SpanOf(run.effectBox.GetOffsetX(), run.effectBox.GetSizeX())),
          m_sourceX(SpanOf(run.sourceBox.GetOffsetX(), run.sourceBox.GetSizeX())),
          m_sourceY(SpanOf(run.sourceBox.GetOffsetY(), run.sourceBox.GetSizeY())),
          m_sum(FindScaleRows<Sample>(useVectors).sumBoxes[kForm])
    {}

    /// False where there is nothing to gain, and when memory is short.
    bool Prepare()
    {
        m_behind = m_columns.Count();
        while (m_first < m_behind && !ExtentOf(m_first).isInside)
            ++m_first;
        while (m_behind > m_first && !ExtentOf(m_behind - 1).isInside)
            --m_behind;
        const std::size_t count = m_behind - m_first;
        if (count == 0) return false;
        m_least = ExtentOf(m_first).Length();
        for (std::size_t k = m_first; k < m_behind; ++k) {
            const Extent extent = ExtentOf(k);
            if (!extent.isInside) return false;
            m_least = std::min(m_least, extent.Length());
            m_taps = std::max(m_taps, extent.Pixels(m_sourceX).Count());
        }
        m_pitch = count + kScaleSlack;
        const auto rows = static_cast<std::size_t>(std::min(std::abs(m_y.scale) * 2 * m_half, 1e9)) + 3;
        m_mostRows = std::min(rows, m_sourceY.Count());
        if (!m_starts.Allocate(m_pitch) || !m_widths.Allocate(m_pitch * m_taps) ||
            !m_rows.Allocate(m_mostRows) || !m_heights.Allocate(m_mostRows))
            return false;
        std::fill_n(m_starts.Data(), m_pitch, 0);
        std::fill_n(m_widths.Data(), m_pitch * m_taps, 0.0);
        for (std::size_t k = 0; k < count; ++k)
            SetColumn(k);
        return true;
    }

    bool MakeLine(long y, unsigned char* output) override
    {
        const Extent extent(m_y, static_cast<double>(y), m_half, m_sourceY);
        if (!extent.isInside || !(m_least * extent.Length() >= 1)) return false;
        const Span rows = extent.Pixels(m_sourceY);
        if (rows.Count() > m_mostRows) return false;
        for (std::int64_t row = rows.first; row <= rows.last; ++row) {
            const auto at = static_cast<std::size_t>(row - rows.first);
            m_rows[at] = reinterpret_cast<const Sample*>(m_input.pixels + row * m_input.RowBytes());
            m_heights[at] = extent.Common(row);
        }
        // The vector form for samples alone reads on behind a row, where there must be a next one.
        const bool isFollowed = rows.last + 1 < m_input.height && m_input.width >= 32;
        const auto sum = kChannels == 4 || isFollowed ? m_sum : FindScaleRows<Sample>(false).sumBoxes[kForm];
        sum(m_rows.Data(), m_heights.Data(), rows.Count(),
            {m_starts.Data(), m_widths.Data(), m_pitch, m_taps},
            reinterpret_cast<Sample*>(output) + kChannels * m_first, m_behind - m_first);
        return true;
    }

private:
    Extent ExtentOf(std::size_t column) const
    {
        return {m_x, static_cast<double>(m_columns.first + static_cast<std::int64_t>(column)), m_half,
                m_sourceX};
    }
    /// Every column has as many taps; those beyond its own have no width, and lie in the row.
    void SetColumn(std::size_t k)
    {
        const Extent extent = ExtentOf(m_first + k);
        const Span pixels = extent.Pixels(m_sourceX);
        const std::int64_t start =
            std::min(pixels.first, std::int64_t{m_input.width} - static_cast<std::int64_t>(m_taps));
        m_starts[k] = static_cast<std::int32_t>(start);
        for (std::int64_t pixel = pixels.first; pixel <= pixels.last; ++pixel)
            m_widths[static_cast<std::size_t>(pixel - start) * m_pitch + k] = extent.Common(pixel);
    }

    ImageView m_input;
    double m_half;
    AxisMap m_x, m_y;
    Span m_columns, m_sourceX, m_sourceY;
    SumBoxRows<Sample> m_sum;
    double m_least = 0; ///< width of a box
    std::size_t m_taps = 0, m_pitch = 0, m_mostRows = 0;
    RunArray<std::int32_t> m_starts;
    RunArray<double> m_widths, m_heights;
    RunArray<const Sample*> m_rows;
};

} // namespace

std::unique_ptr<PanZoomSums> PanZoomSums::Create(const vfILTransformRun& run, double half, const AxisMap& x,
                                                 const AxisMap& y, bool useVectors)
{
    std::unique_ptr<PanZoomSums> made;
    PointFormats::Visit(run.output.format->id, [&](auto format) {
        using Made = Sums<decltype(format)>;
        std::unique_ptr<Made> sums(new (std::nothrow) Made(run, half, x, y, useVectors));
        if (sums != nullptr && sums->Prepare()) made = std::move(sums);
    });
    return made;
}

} // namespace vfil

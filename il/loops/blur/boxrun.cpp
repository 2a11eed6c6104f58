/// \file
/// The sums of the box blur. Beyond the picture's edges sums stand in for pixels: the columns there are
/// filled by the edge rule, and what a large window sees of the same again is multiplied.

#include "il/loops/blur/boxrun.h"

#include "il/loops/blur/interruptpoll.h"
#include "il/loops/frame/padding.h"
#include "il/loops/frame/rowcopy.h"
#include "il/loops/frame/runarray.h"
#include "il/loops/frame/windowloop.h"
#include "il/rows/blur/boxrows.h"

#include <algorithm>

namespace vfil {

namespace {

/// A window in one axis. That of a large radius is one of a smaller radius, and so many times what any window
/// of the line has beyond that: of a wrapped or mirrored picture the whole line, else the two samples next to
/// its ends.
struct BoxAxis {
    BoxAxis(vfILEdgeMode mode, long windowRadius, long lineSize) : size(lineSize)
    {
        const long period = mode == VFIL_EDGE_WRAP ? size : mode == VFIL_EDGE_MIRROR ? 2 * size : 0;
        isPeriodic = period != 0;
        radius = isPeriodic ? windowRadius % period : std::min(windowRadius, size);
        const auto more = static_cast<std::uint64_t>(windowRadius - radius);
        repeats = isPeriodic ? 2 * more / static_cast<std::uint64_t>(size) : more;
    }
    long Width() const { return 2 * radius + 1; }

    long size;
    long radius;
    std::uint64_t repeats;
    bool isPeriodic;
};

/// The sums of each column of the windows of one row.
template <class Sum, std::size_t channels>
class ColumnSums {
public:
    ColumnSums(const vfILMonadicSpatialProc& filter, const vfILWindowRun& run, const vfILVector2l& radius,
               bool useVectors)
        : m_input(run.input), m_edge(EdgeRuleOf(filter, run)), m_poll(filter),
          m_x(m_edge.mode, radius[0], run.inputSize[0]), m_y(m_edge.mode, radius[1], run.inputSize[1]),
          m_left(run.windowBox.GetOffsetX() + run.radiusX - m_x.radius),
          m_top(run.windowBox.GetOffsetY() + run.radiusY), m_useVectors(useVectors),
          m_move(FindMoveColumns<Sum>(useVectors))
    {
        const Sum height = 2 * Sum{static_cast<std::uint32_t>(radius[1])} + 1;
        for (std::size_t c = 0; c < channels; ++c)
            m_colour[c] = height * m_edge.colour.bytes[c];
    }
    /// False when memory is short.
    ///
    /// \param pixels  Of a row of windows.
    bool Allocate(long pixels);
    /// Makes the sums of a row's windows, the first one's. False when the run was interrupted.
    bool Begin(long row);
    /// Moves on to the windows of a row at or below the last one's.
    void MoveTo(long row);
    /// The first window's first column; there is a pixel of sums before it.
    const Sum* Windows() const { return At(m_left); }
    std::size_t WindowWidth() const { return static_cast<std::size_t>(m_x.Width()); }
    /// What every window has beyond these columns.
    const Sum* Beyond() const { return m_beyond; }

private:
    Sum* At(long column) const
    {
        return m_sums.Data() + static_cast<std::size_t>(column - m_first + 1) * channels;
    }
    const std::uint8_t* Row(long y) const
    {
        const auto place = static_cast<long>(PlaceAt(m_edge.mode, y, m_y.size));
        if (place < 0) return m_colourRow.Data();
        return RowOf<const std::uint8_t>(m_input, place) + m_firstInside * long{channels};
    }
    bool Gain(long y)
    {
        m_move(Row(y), m_zeros.Data(), At(m_firstInside), m_samples);
        return !m_poll.MustStop(m_samples);
    }
    bool GainRepeats();
    void FillOutside(long from, long to) const;
    void Finish();

    const vfILRowWalk m_input;
    const EdgeRule m_edge;
    InterruptPoll m_poll;
    const BoxAxis m_x, m_y;
    const long m_left; ///< of the first window, in the input's coordinates as all columns and rows
    const long m_top;  ///< the effect's first row
    const bool m_useVectors;
    const MoveColumns<Sum> m_move;
    Sum m_colour[channels]; ///< the sum of a column beyond a coloured edge
    Sum m_beyond[channels] = {};
    long m_first = 0, m_last = 0;             ///< the columns that there are sums of
    long m_firstInside = 0, m_lastInside = 0; ///< those of the input's own
    std::size_t m_samples = 0;                ///< of these
    long m_row = 0;
    RunArray<Sum> m_sums;
    RunArray<std::uint8_t> m_zeros;
    RunArray<std::uint8_t> m_colourRow;
};

template <class Sum, std::size_t channels>
bool ColumnSums<Sum, channels>::Allocate(long pixels)
{
    m_first = m_left;
    m_last = m_left + pixels + m_x.Width() - 1;
    const bool isOutside = m_first < 0 || m_last > m_x.size;
    if ((m_edge.mode == VFIL_EDGE_WRAP && isOutside) || (m_x.isPeriodic && m_x.repeats != 0)) {
        m_first = std::min(m_first, 0L); // columns of the other end count
        m_last = std::max(m_last, m_x.size);
    }
    m_firstInside = std::max(m_first, 0L);
    m_lastInside = std::min(m_last, m_x.size);
    m_samples = static_cast<std::size_t>(m_lastInside - m_firstInside) * channels;
    const std::size_t count = static_cast<std::size_t>(m_last - m_first + 1) * channels + kColumnSlack;
    if (!m_sums.Allocate(count) || !m_zeros.Allocate(m_samples) || !m_colourRow.Allocate(m_samples))
        return false;
    std::fill_n(m_sums.Data(), count, Sum{0});
    std::fill_n(m_zeros.Data(), m_samples, std::uint8_t{0});
    FillRow(m_colourRow.Data(), m_samples, m_edge.colour.bytes, channels);
    return true;
}

template <class Sum, std::size_t channels>
bool ColumnSums<Sum, channels>::Begin(long row)
{
    m_row = m_top + row;
    if (m_y.repeats != 0 && !GainRepeats()) return false;
    for (long y = m_row - m_y.radius; y <= m_row + m_y.radius; ++y)
        if (!Gain(y)) return false;
    Finish();
    return true;
}

template <class Sum, std::size_t channels>
bool ColumnSums<Sum, channels>::GainRepeats()
{
    if (m_y.isPeriodic) {
        for (long y = 0; y < m_y.size; ++y)
            if (!Gain(y)) return false;
    } else if (!Gain(-1) || !Gain(m_y.size)) {
        return false;
    }
    Sum* const sums = At(m_firstInside);
    std::transform(sums, sums + m_samples, sums,
                   [repeats = static_cast<Sum>(m_y.repeats)](Sum sum) { return sum * repeats; });
    return true;
}

template <class Sum, std::size_t channels>
void ColumnSums<Sum, channels>::MoveTo(long row)
{
    if (m_row == m_top + row) return;
    for (; m_row < m_top + row; ++m_row)
        m_move(Row(m_row + m_y.radius + 1), Row(m_row - m_y.radius), At(m_firstInside), m_samples);
    Finish();
}

/// What follows from the columns inside.
template <class Sum, std::size_t channels>
void ColumnSums<Sum, channels>::Finish()
{
    FillOutside(m_first, m_firstInside);
    FillOutside(m_lastInside, m_last);
    if (m_x.repeats == 0) return;
    std::fill_n(m_beyond, channels, Sum{0});
    const auto add = [this](long x) {
        for (std::size_t c = 0; c < channels; ++c)
            m_beyond[c] += At(x)[c];
    };
    if (m_x.isPeriodic) {
        for (long x = 0; x < m_x.size; ++x)
            add(x);
    } else {
        add(-1);
        add(m_x.size);
    }
    for (Sum& sum : m_beyond)
        sum *= static_cast<Sum>(m_x.repeats);
}

/// Fills columns beyond an edge. There the columns inside are the whole line, or reach to its end as far as
/// the edge rule reads.
template <class Sum, std::size_t channels>
void ColumnSums<Sum, channels>::FillOutside(long from, long to) const
{
    if (from == to) return;
    auto* const place = reinterpret_cast<unsigned char*>(At(from));
    if (PlaceAt(m_edge.mode, -1, 1) < 0) {
        FillRow(place, static_cast<std::size_t>(to - from) * sizeof m_colour,
                reinterpret_cast<const unsigned char*>(m_colour), sizeof m_colour);
        return;
    }
    ImageView line(nullptr);
    line.pixels = reinterpret_cast<unsigned char*>(At(m_firstInside));
    line.width = m_lastInside - m_firstInside;
    line.height = 1;
    line.pixelBytes = sizeof m_colour;
    ReadWindow(line, {from - m_firstInside, 0, to - from, 1}, m_edge, m_useVectors, place);
}

template <class Format, class Sum>
bool RunSums(const vfILMonadicSpatialProc& filter, vfILWindowRun& run, const vfILVector2l& radius,
             double weights, bool useVectors)
{
    constexpr auto kChannels = std::size_t{Format::kChannels};
    ColumnSums<Sum, kChannels> columns(filter, run, radius, useVectors);
    if (!columns.Allocate(run.processBox.GetSizeX())) return false;
    if (run.rows == 0 || !columns.Begin(run.firstRow)) return true;
    const auto box = FindBoxRow<Sum>(useVectors, Format::kChannels);
    const auto scale = static_cast<std::uint32_t>(4294967295.0 / weights);
    const auto pixels = static_cast<std::size_t>(run.processBox.GetSizeX());
    RunWindowRows<Format>(filter, run, [&](long row, std::uint8_t* results) {
        columns.MoveTo(row);
        box(columns.Windows(), columns.WindowWidth(), columns.Beyond(), scale, results, pixels);
    });
    return true;
}

} // namespace

bool RunBox(const vfILMonadicSpatialProc& filter, vfILWindowRun& run, const vfILVector2l& radius,
            const GUID& format, bool useVectors)
{
    const double weights = (2.0 * radius[0] + 1) * (2.0 * radius[1] + 1);
    bool done = true;
    BoxFormats::Visit(format, [&](auto tag) {
        using Format = decltype(tag);
        done = 255 * weights < 4294967296.0
                   ? RunSums<Format, std::uint32_t>(filter, run, radius, weights, useVectors)
                   : RunSums<Format, std::uint64_t>(filter, run, radius, weights, useVectors);
    });
    return done;
}

} // namespace vfil

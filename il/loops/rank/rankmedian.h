/// \file
/// The loop of the filters that take the pixel of middle brightness.
#pragma once

#include "il/loops/rank/rankloop.h"
#include "il/loops/rank/rankties.h"
#include "il/rows/rank/rankrows.h"

#include <cstdlib>
#include <cstring>

namespace vfil {

/// The keys of the rows of windows: of mono pictures their samples.
template <class Format>
class WindowKeys {
public:
    using Sample = typename Format::Sample;

    WindowKeys(const vfILWindowRun& run, bool useVectors)
        : m_run(run), m_kernel(FindRankCases<Sample>(useVectors).key),
          m_width(static_cast<std::size_t>(run.processBox.GetSizeX() + run.kernelWidth - 1)),
          m_slots(Format::kChannels == 1 ? 0 : static_cast<std::size_t>(run.kernelHeight))
    {}
    /// False when memory is short.
    bool Allocate()
    {
        if (!m_rowInSlot.Allocate(m_slots) || !m_keys.Allocate(m_slots * m_width)) return false;
        std::fill_n(m_rowInSlot.Data(), m_slots, -1L);
        return true;
    }

    const Sample* Row(long row)
    {
        const auto* pixels = RowOf<const Sample>(m_run.windows, row);
        if constexpr (Format::kChannels == 1) return pixels;
        const std::size_t slot = static_cast<std::size_t>(row) % m_slots;
        Sample* const keys = m_keys.Data() + slot * m_width;
        if (m_rowInSlot[slot] != row) m_kernel(pixels, keys, m_width);
        m_rowInSlot[slot] = row;
        return keys;
    }

private:
    const vfILWindowRun& m_run;
    BrightnessRow<Sample> m_kernel;
    std::size_t m_width, m_slots;
    RunArray<long> m_rowInSlot;
    RunArray<Sample> m_keys;
};

/// What a median filter is told beside its window.
struct MedianRule {
    int tolerance; ///< the pixel stays where its key is no farther from the median's; -1 for no pixel
    bool useVectors;
};

/// The pixels of a window, in row order, and their keys.
template <class Format>
class MedianWindow {
public:
    using Sample = typename Format::Sample;

    MedianWindow(const vfILWindowRun& run, const WindowShape& shape, const MedianRule& rule)
        : m_run(run), m_shape(shape), m_count(shape.Entries()), m_tolerance(rule.tolerance),
          m_keys(run, rule.useVectors)
    {}
    /// False when memory is short.
    bool Allocate()
    {
        if (!m_keys.Allocate() || !m_offsets.Allocate(m_count)) return false;
        std::ptrdiff_t* offset = m_offsets.Data();
        for (const ShapeRun& r : m_shape)
            for (long x = r.first; x < r.first + r.length; ++x)
                *offset++ = r.row * m_run.windows.step + x * std::ptrdiff_t{kPixelBytes};
        return true;
    }

    const WindowShape& Shape() const { return m_shape; }
    std::size_t Count() const { return m_count; }
    /// The place of the median in ascending order, and of the pixel that may stay.
    std::size_t Middle() const { return m_count >> 1; }
    bool Stays(int key, int median) const { return std::abs(key - median) <= m_tolerance; }
    /// The keys that are x pixels into an input row.
    const Sample* Keys(long row, long x) { return m_keys.Row(row) + x; }
    void CopyPixel(long row, std::size_t x, std::size_t place, Sample* results) const
    {
        const auto* window = RowOf<const unsigned char>(m_run.windows, row) + x * kPixelBytes;
        std::memcpy(results + x * Format::kChannels, window + m_offsets[place], kPixelBytes);
    }

private:
    static constexpr std::size_t kPixelBytes = sizeof(typename Format::Sample) * Format::kChannels;

    const vfILWindowRun& m_run;
    const WindowShape& m_shape;
    std::size_t m_count;
    int m_tolerance;
    WindowKeys<Format> m_keys;
    RunArray<std::ptrdiff_t> m_offsets; ///< bytes from a window's corner to its pixels
};

/// The rows of a filter of windows that the row kernel takes.
template <class Format>
class SmallMedians {
public:
    using Sample = typename Format::Sample;

    SmallMedians(MedianWindow<Format>& window, long width, bool useVectors)
        : m_window(window), m_width(static_cast<std::size_t>(width)),
          m_kernel(FindRankCases<Sample>(useVectors).middle)
    {}
    /// False when memory is short.
    bool Allocate() { return m_chosen.Allocate(m_width) && m_keys.Allocate(m_window.Count()); }

    void operator()(long row, Sample* results)
    {
        std::size_t count = 0;
        for (const ShapeRun& r : m_window.Shape())
            for (long x = r.first; x < r.first + r.length; ++x)
                m_keys[count++] = m_window.Keys(row + r.row, x);
        m_kernel(m_keys.Data(), count, m_chosen.Data(), m_width);
        const std::size_t middle = m_window.Middle();
        for (std::size_t x = 0; x < m_width; ++x) {
            const std::size_t place = m_chosen[x];
            const bool stays = m_window.Stays(m_keys[middle][x], m_keys[place][x]);
            m_window.CopyPixel(row, x, stays ? middle : place, results);
        }
    }

private:
    MedianWindow<Format>& m_window;
    std::size_t m_width;
    MiddleRow<Sample> m_kernel;
    RunArray<Sample> m_chosen;      ///< places
    RunArray<const Sample*> m_keys; ///< by places
};

/// The rows of a filter of windows of any size.
template <class Format>
class LargeMedians {
public:
    using Sample = typename Format::Sample;

    LargeMedians(MedianWindow<Format>& window, long width)
        : m_window(window), m_shape(window.Shape()), m_width(width)
    {}
    /// False when memory is short.
    bool Allocate()
    {
        const std::size_t count = m_window.Count();
        return m_keys.Allocate(m_shape.Count()) && m_counts.Allocate() && m_list.Allocate(count) &&
               m_middlePlace.Allocate(count);
    }

    void operator()(long row, Sample* results)
    {
        m_counts.Clear();
        for (std::size_t r = 0; r < m_shape.Count(); ++r) {
            m_keys[r] = m_window.Keys(row + m_shape[r].row, m_shape[r].first);
            std::for_each_n(m_keys[r], m_shape[r].length, [this](Sample key) { m_counts.Add(key); });
        }
        for (long x = 0; x < m_width; ++x) {
            if (x > 0) SlideTo(x);
            const MiddleKey<Sample> median = m_counts.KeyAt(m_window.Middle());
            if constexpr (Format::kChannels == 1) {
                const Sample key = KeyOfMiddle(x);
                results[x] = m_window.Stays(key, median.key) ? key : median.key;
            } else {
                m_window.CopyPixel(row, static_cast<std::size_t>(x), PlaceOf(median, x), results);
            }
        }
    }

private:
    /// Moves the counted window by one pixel.
    void SlideTo(long x)
    {
        for (std::size_t r = 0; r < m_shape.Count(); ++r) {
            m_counts.Remove(m_keys[r][x - 1]);
            m_counts.Add(m_keys[r][x - 1 + m_shape[r].length]);
        }
    }

    Sample KeyOfMiddle(long x) const
    {
        auto before = static_cast<long>(m_window.Middle());
        std::size_t r = 0;
        for (; before >= m_shape[r].length; ++r)
            before -= m_shape[r].length;
        return m_keys[r][x + before];
    }

    std::size_t PlaceOf(const MiddleKey<Sample>& median, long x)
    {
        if (m_window.Stays(KeyOfMiddle(x), median.key)) return m_window.Middle();
        Sample* end = m_list.Data();
        for (std::size_t r = 0; r < m_shape.Count(); ++r)
            end = std::copy_n(m_keys[r] + x, m_shape[r].length, end);
        return m_middlePlace(m_list.Data(), m_window.Count(), m_counts, median);
    }

    MedianWindow<Format>& m_window;
    const WindowShape& m_shape;
    long m_width;
    RunArray<const Sample*> m_keys; ///< by runs
    KeyCounts<Sample> m_counts;
    RunArray<Sample> m_list;
    MiddlePlace<Sample> m_middlePlace;
};

/// Does nothing for an output format that is not in the list. False when memory is short.
template <class Formats>
bool RunMedians(const vfILMonadicSpatialProc& filter, vfILWindowRun& run, const MedianRule& rule)
{
    WindowShape shape;
    if (!shape.SetEllipse(double{filter.GetRadiusX()}, double{filter.GetRadiusY()},
                          {run.radiusX, run.radiusY}))
        return false;
    bool done = true;
    Formats::Visit(FormatOf(run), [&](auto format) {
        using Format = decltype(format);
        if (shape.IsEmpty()) return CopyCentres<Format>(filter, run);
        MedianWindow<Format> window(run, shape, rule);
        done = window.Allocate();
        if (!done) return;
        const long width = run.processBox.GetSizeX();
        const auto runRows = [&](auto medians) {
            done = medians.Allocate();
            if (!done) return;
            RunWindowRows<Format>(filter, run,
                                  [&medians](long row, auto* results) { medians(row, results); });
        };
        if (window.Count() <= kMostMiddleRows) {
            runRows(SmallMedians<Format>(window, width, rule.useVectors));
        } else {
            runRows(LargeMedians<Format>(window, width));
        }
    });
    return done;
}

} // namespace vfil

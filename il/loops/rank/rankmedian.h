/// \file
/// The loop of the filters that take the pixel of middle brightness.
#pragma once

#include "il/loops/morph/morphfold.h"
#include "il/loops/rank/rankloop.h"
#include "il/loops/rank/rankties.h"

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
          m_slots(Format::kChannels == 1 ? 0 : static_cast<std::size_t>(run.kernelHeight)),
          m_rowInSlot(m_slots, -1), m_keys(MakeBuffer<Sample>(m_slots * m_width))
    {}

    const Sample* Row(long row)
    {
        const auto* pixels = RowOf<const Sample>(m_run.windows, row);
        if constexpr (Format::kChannels == 1) return pixels;
        const std::size_t slot = static_cast<std::size_t>(row) % m_slots;
        Sample* const keys = m_keys.get() + slot * m_width;
        if (m_rowInSlot[slot] != row) m_kernel(pixels, keys, m_width);
        m_rowInSlot[slot] = row;
        return keys;
    }

private:
    const vfILWindowRun& m_run;
    BrightnessRow<Sample> m_kernel;
    std::size_t m_width, m_slots;
    std::vector<long> m_rowInSlot;
    std::unique_ptr<Sample[]> m_keys;
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

    MedianWindow(const vfILWindowRun& run, const ElementRuns& runs, const MedianRule& rule)
        : m_run(run), m_tolerance(rule.tolerance), m_keys(run, rule.useVectors)
    {
        for (const ElementRun& r : runs)
            for (long x = r.first; x < r.first + r.length; ++x)
                m_offsets.push_back(r.row * run.windows.step + x * std::ptrdiff_t{kPixelBytes});
    }

    std::size_t Count() const { return m_offsets.size(); }
    /// The place of the median in ascending order, and of the pixel that may stay.
    std::size_t Middle() const { return m_offsets.size() >> 1; }
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
    int m_tolerance;
    WindowKeys<Format> m_keys;
    std::vector<std::ptrdiff_t> m_offsets; ///< bytes from a window's corner to its pixels
};

/// The rows of a filter of windows that the row kernel takes.
template <class Format>
class SmallMedians {
public:
    using Sample = typename Format::Sample;

    SmallMedians(MedianWindow<Format>& window, const ElementRuns& runs, long width, bool useVectors)
        : m_window(window), m_runs(runs), m_width(static_cast<std::size_t>(width)),
          m_kernel(FindRankCases<Sample>(useVectors).middle), m_chosen(MakeBuffer<Sample>(m_width))
    {}

    void operator()(long row, Sample* results)
    {
        m_keys.clear();
        for (const ElementRun& r : m_runs)
            for (long x = r.first; x < r.first + r.length; ++x)
                m_keys.push_back(m_window.Keys(row + r.row, x));
        m_kernel(m_keys.data(), m_keys.size(), m_chosen.get(), m_width);
        const std::size_t middle = m_window.Middle();
        for (std::size_t x = 0; x < m_width; ++x) {
            const std::size_t place = m_chosen[x];
            const bool stays = m_window.Stays(m_keys[middle][x], m_keys[place][x]);
            m_window.CopyPixel(row, x, stays ? middle : place, results);
        }
    }

private:
    MedianWindow<Format>& m_window;
    const ElementRuns& m_runs;
    std::size_t m_width;
    MiddleRow<Sample> m_kernel;
    std::unique_ptr<Sample[]> m_chosen; ///< places
    std::vector<const Sample*> m_keys;  ///< by places
};

/// The rows of a filter of windows of any size.
template <class Format>
class LargeMedians {
public:
    using Sample = typename Format::Sample;

    LargeMedians(MedianWindow<Format>& window, const ElementRuns& runs, long width)
        : m_window(window), m_runs(runs), m_width(width)
    {}

    void operator()(long row, Sample* results)
    {
        m_keys.clear();
        m_counts.Clear();
        for (const ElementRun& r : m_runs) {
            m_keys.push_back(m_window.Keys(row + r.row, r.first));
            std::for_each_n(m_keys.back(), r.length, [this](Sample key) { m_counts.Add(key); });
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
        for (std::size_t r = 0; r < m_runs.size(); ++r) {
            m_counts.Remove(m_keys[r][x - 1]);
            m_counts.Add(m_keys[r][x - 1 + m_runs[r].length]);
        }
    }

    Sample KeyOfMiddle(long x) const
    {
        auto before = static_cast<long>(m_window.Middle());
        std::size_t r = 0;
        for (; before >= m_runs[r].length; ++r)
            before -= m_runs[r].length;
        return m_keys[r][x + before];
    }

    std::size_t PlaceOf(const MiddleKey<Sample>& median, long x)
    {
        if (m_window.Stays(KeyOfMiddle(x), median.key)) return m_window.Middle();
        m_list.clear();
        for (std::size_t r = 0; r < m_runs.size(); ++r)
            m_list.insert(m_list.end(), m_keys[r] + x, m_keys[r] + x + m_runs[r].length);
        return m_middlePlace(m_list, m_counts, median);
    }

    MedianWindow<Format>& m_window;
    const ElementRuns& m_runs;
    long m_width;
    std::vector<const Sample*> m_keys; ///< by runs
    KeyCounts<Sample> m_counts;
    std::vector<Sample> m_list;
    MiddlePlace<Sample> m_middlePlace;
};

/// Does nothing for an output format that is not in the list.
template <class Formats>
void RunMedians(const vfILMonadicSpatialProc& processor, vfILWindowRun& run, const MedianRule& rule)
{
    const ElementRuns runs = EllipseRuns(double{processor.GetRadiusX()}, double{processor.GetRadiusY()});
    Formats::Visit(FormatOf(processor.GetOutputImg()), [&](auto format) {
        using Format = decltype(format);
        if (runs.empty()) return CopyCentres<Format>(processor, run);
        MedianWindow<Format> window(run, runs, rule);
        const long width = run.processBox.GetSizeX();
        const auto runRows = [&](auto writeRow) {
            RunWindowRows<Format>(processor, run,
                                  [&writeRow](long row, auto* results) { writeRow(row, results); });
        };
        if (window.Count() <= kMostMiddleRows) {
            runRows(SmallMedians<Format>(window, runs, width, rule.useVectors));
        } else {
            runRows(LargeMedians<Format>(window, runs, width));
        }
    });
}

} // namespace vfil

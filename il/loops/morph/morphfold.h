/// \file
/// Extremes of windows, row by row: of a whole window at a cost that does not grow with its height, and of
/// any shape by its runs.
#pragma once

#include "il/loops/frame/rowloop.h"
#include "il/loops/morph/morphelement.h"

#include "il/rows/rank/rankrows.h"

#include <vfil/spatial.h>

#include <bit>
#include <memory>

namespace vfil {

template <class T>
std::unique_ptr<T[]> MakeBuffer(std::size_t count)
{
    return std::make_unique_for_overwrite<T[]>(count);
}

/// The kernels of a run's extremes.
template <class Sample>
struct ExtremeKernels {
    /// \param streaming  Results may go around the cache.
    ExtremeKernels(bool largest, bool useVectors, bool streaming)
    {
        const RankCases<Sample>& cases = FindRankCases<Sample>(useVectors);
        inner = cases.extreme[largest][0];
        last = cases.extreme[largest][streaming];
        windows = cases.windows[largest];
    }

    ExtremeRow<Sample> inner;
    ExtremeRow<Sample> last; ///< that writes results
    ExtremeWindows<Sample> windows;
};

/// The extremes of the samples of rows, for RunFold.
template <class Format>
class SampleRows {
public:
    using Sample = typename Format::Sample;
    using Row = const Sample*;
    using Target = Sample*;

    SampleRows(const vfILWindowRun& run, const ExtremeKernels<Sample>& kernels)
        : m_run(run), m_kernels(kernels)
    {}

    /// Makes room for rows of the input, in slots, and for rows of results.
    void Allocate(std::size_t /*slots*/, std::size_t rows, long pixels)
    {
        m_rowSamples = static_cast<std::size_t>(pixels * Format::kChannels);
        m_buffer = MakeBuffer<Sample>(rows * m_rowSamples);
    }
    Target Buffer(std::size_t index) { return m_buffer.get() + index * m_rowSamples; }
    /// Called for each row that is read, before it is. Later ones take the slots of those that are done with.
    void Enter(long /*row*/, std::size_t /*slot*/) {}
    Row Input(long row, std::size_t /*slot*/) const { return RowOf<const Sample>(m_run.windows, row); }
    static Row Shift(Row row, long pixels) { return row + pixels * Format::kChannels; }
    void Combine(const Row* rows, std::size_t count, Target out, long pixels) const
    {
        m_kernels.inner(rows, count, out, static_cast<std::size_t>(pixels * Format::kChannels));
    }
    void WriteResults(const Row* rows, std::size_t count, Sample* results, long pixels) const
    {
        m_kernels.last(rows, count, results, static_cast<std::size_t>(pixels * Format::kChannels));
    }

private:
    const vfILWindowRun& m_run;
    ExtremeKernels<Sample> m_kernels;
    std::size_t m_rowSamples = 0;
    std::unique_ptr<Sample[]> m_buffer;
};

/// Combines what the runs of a window cover. A row's runs of a power of two are made of those of half the
/// length, once a row, and a run of any length of such ones, of which the last may overlap the one before.
/// Rows is as SampleRows; what it combines must not mind the overlap.
template <class Rows>
class RunFold {
public:
    RunFold(Rows rows, const ElementRuns& runs, const vfILWindowRun& run)
        : m_rows(std::move(rows)), m_runs(runs), m_width(run.processBox.GetSizeX()),
          m_inputWidth(m_width + run.kernelWidth - 1), m_slots(static_cast<std::size_t>(run.kernelHeight)),
          m_rowInSlot(m_slots, -1)
    {
        for (int level = 1; level < 31; ++level)
            if (CostOf(level) < CostOf(m_levels)) m_levels = level;
        m_rows.Allocate(m_slots, m_slots * static_cast<std::size_t>(m_levels), m_inputWidth);
    }

    /// The results of one row's windows. Rows come in ascending order.
    void operator()(long row, typename Rows::Sample* results)
    {
        m_parts.clear();
        for (const ElementRun& r : m_runs) {
            const int level = LevelOf(r, m_levels);
            const long length = 1L << level;
            const typename Rows::Row shorter = RunsOf(row + r.row, level);
            for (long at = 0; at < r.length; at += length)
                m_parts.push_back(Rows::Shift(shorter, r.first + std::min(at, r.length - length)));
        }
        m_rows.WriteResults(m_parts.data(), m_parts.size(), results, m_width);
    }

private:
    /// The exponent of the longest run of a power of two within a run.
    static int LevelOf(const ElementRun& run, int most)
    {
        return std::min(static_cast<int>(std::bit_width(static_cast<unsigned long>(run.length))) - 1, most);
    }

    /// Rows that are read and written for a row of results when the runs are made up to a level.
    long CostOf(int levels) const
    {
        long cost = 3L * levels;
        for (const ElementRun& r : m_runs) {
            const int level = LevelOf(r, levels);
            cost += (r.length + (1L << level) - 1) >> level;
        }
        return cost;
    }

    /// The combined runs of 2^level pixels that start at each pixel of an input row.
    typename Rows::Row RunsOf(long row, int level)
    {
        const std::size_t slot = static_cast<std::size_t>(row) % m_slots;
        if (m_rowInSlot[slot] != row) {
            m_rowInSlot[slot] = row;
            m_rows.Enter(row, slot);
            MakeRuns(m_rows.Input(row, slot), slot);
        }
        return level == 0 ? m_rows.Input(row, slot) : m_rows.Buffer(BufferOf(slot, level));
    }

    void MakeRuns(typename Rows::Row input, std::size_t slot)
    {
        typename Rows::Row shorter = input;
        for (int level = 1; level <= m_levels; ++level) {
            const typename Rows::Row halves[] = {shorter, Rows::Shift(shorter, 1L << (level - 1))};
            const typename Rows::Target runs = m_rows.Buffer(BufferOf(slot, level));
            m_rows.Combine(halves, 2, runs, m_inputWidth - (1L << level) + 1);
            shorter = runs;
        }
    }

    std::size_t BufferOf(std::size_t slot, int level) const
    {
        return slot * static_cast<std::size_t>(m_levels) + static_cast<std::size_t>(level) - 1;
    }

    Rows m_rows;
    const ElementRuns& m_runs;
    long m_width, m_inputWidth;
    int m_levels = 0; ///< of the longest run
    std::size_t m_slots;
    std::vector<long> m_rowInSlot;
    std::vector<typename Rows::Row> m_parts;
};

} // namespace vfil

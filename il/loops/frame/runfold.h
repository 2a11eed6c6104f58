/// \file
/// Whatever is combined of the samples or pixels of a window of any shape, row by row, by the shape's runs.
#pragma once

#include "il/loops/frame/windowshape.h"

#include <algorithm>
#include <bit>
#include <utility>

namespace vfil {

/// Combines what the runs of a window cover. A row's runs of a power of two are made of those of half the
/// length, once a row, and a run of any length of such ones, of which the last may overlap the one before.
/// Rows is as SampleRows of sampleextremes.h; what it combines must not mind the overlap.
template <class Rows>
class RunFold {
public:
    RunFold(Rows rows, const WindowShape& shape, const vfILWindowRun& run)
        : m_rows(std::move(rows)), m_shape(shape), m_width(run.processBox.GetSizeX()),
          m_inputWidth(m_width + run.kernelWidth - 1), m_slots(static_cast<std::size_t>(run.kernelHeight))
    {}
    /// False when memory is short.
    bool Allocate()
    {
        for (int level = 1; level < 31; ++level)
            if (CostOf(level) < CostOf(m_levels)) m_levels = level;
        if (!m_rows.Allocate(m_slots, m_slots * static_cast<std::size_t>(m_levels), m_inputWidth) ||
            !m_rowInSlot.Allocate(m_slots) || !m_parts.Allocate(static_cast<std::size_t>(PartsOf(m_levels))))
            return false;
        std::fill_n(m_rowInSlot.Data(), m_slots, -1L);
        return true;
    }

    /// The results of one row's windows. Rows come in ascending order.
    void operator()(long row, typename Rows::Sample* results)
    {
        std::size_t parts = 0;
        for (const ShapeRun& r : m_shape) {
            const int level = LevelOf(r, m_levels);
            const long length = 1L << level;
            const typename Rows::Row shorter = RunsOf(row + r.row, level);
            for (long at = 0; at < r.length; at += length)
                m_parts[parts++] = Rows::Shift(shorter, r.first + std::min(at, r.length - length));
        }
        m_rows.WriteResults(m_parts.Data(), parts, results, m_width);
    }

private:
    /// The exponent of the longest run of a power of two within a run.
    static int LevelOf(const ShapeRun& run, int most)
    {
        return std::min(static_cast<int>(std::bit_width(static_cast<unsigned long>(run.length))) - 1, most);
    }

    /// Of how many runs up to a level a row of results is made.
    long PartsOf(int levels) const
    {
        long parts = 0;
        for (const ShapeRun& r : m_shape) {
            const int level = LevelOf(r, levels);
            parts += (r.length + (1L << level) - 1) >> level;
        }
        return parts;
    }
    /// Rows that are read and written for a row of results when the runs are made up to a level.
    long CostOf(int levels) const { return 3L * levels + PartsOf(levels); }

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
    const WindowShape& m_shape;
    long m_width, m_inputWidth;
    int m_levels = 0; ///< of the longest run
    std::size_t m_slots;
    RunArray<long> m_rowInSlot;
    RunArray<typename Rows::Row> m_parts;
};

} // namespace vfil

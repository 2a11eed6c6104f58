/// \file
/// The extremes of samples, for RunFold and for the folds of morphology.
#pragma once

#include "il/loops/frame/rowloop.h"
#include "il/loops/frame/runarray.h"
#include "il/rows/rank/rankrows.h"

#include <vfil/spatial.h>

namespace vfil {

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

    /// Makes room for rows of the input, in slots, and for rows of results. False when memory is short.
    bool Allocate(std::size_t /*slots*/, std::size_t rows, long pixels)
    {
        m_rowSamples = static_cast<std::size_t>(pixels * Format::kChannels);
        return m_buffer.Allocate(rows * m_rowSamples);
    }
    Target Buffer(std::size_t index) { return m_buffer.Data() + index * m_rowSamples; }
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
    RunArray<Sample> m_buffer;
};

} // namespace vfil

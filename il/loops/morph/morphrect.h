/// \file
/// Extremes of whole windows: first of columns, at a cost that does not grow with their height, then of the
/// rows of these.
#pragma once

#include "il/loops/rank/sampleextremes.h"

#include <algorithm>

namespace vfil {

template <class Format>
class RectangleFold {
public:
    using Sample = typename Format::Sample;

    RectangleFold(const vfILWindowRun& run, const ExtremeKernels<Sample>& kernels)
        : m_run(run), m_kernels(kernels), m_width(run.processBox.GetSizeX()),
          m_rowSamples(Samples(m_width + run.kernelWidth - 1)), m_tall(run.kernelHeight > kMostRowsAtOnce)
    {}
    /// False when memory is short.
    bool Allocate()
    {
        return Allocate(m_columns, kAtOnce) && Allocate(m_tails, m_tall ? m_run.kernelHeight : 0) &&
               Allocate(m_head, m_tall ? 1 : 0) && Allocate(m_pieces[0], 1) && Allocate(m_pieces[1], 1);
    }

    /// The results of one row's windows. Rows come in ascending order.
    void operator()(long row, Sample* results) { CombineRow(ColumnsOf(row), results); }

private:
    static constexpr long kAtOnce = kWindowsAtOnce;
    /// Up to so many rows, reading them all for a few windows is cheaper than what saves it.
    static constexpr long kMostRowsAtOnce = 24;
    /// The same for pixels of a row.
    static constexpr long kMostPixelsAtOnce = 6;

    static std::size_t Samples(long pixels) { return static_cast<std::size_t>(pixels * Format::kChannels); }
    bool Allocate(RunArray<Sample>& rows, long count) const
    {
        return rows.Allocate(static_cast<std::size_t>(count) * m_rowSamples);
    }
    const Sample* Input(long row) const { return RowOf<const Sample>(m_run.windows, row); }
    Sample* Tail(long row) { return m_tails.Data() + static_cast<std::size_t>(row - m_block) * m_rowSamples; }
    Sample* Columns(long i) { return m_columns.Data() + static_cast<std::size_t>(i) * m_rowSamples; }

    /// The extremes of the columns of a row of windows.
    const Sample* ColumnsOf(long row)
    {
        if (m_tall) {
            CombineTallColumns(row);
            return Columns(0);
        }
        if (m_block < 0 || row >= m_block + m_blockRows) CombineColumns(row);
        return Columns(row - m_block);
    }

    /// Of some rows of windows, when all of them will be asked for.
    void CombineColumns(long row)
    {
        const long height = m_run.kernelHeight;
        const bool together =
            height >= kAtOnce && m_run.rowStep == 1 && row + kAtOnce <= m_run.processBox.GetSizeY();
        m_block = row;
        m_blockRows = together ? kAtOnce : 1;
        const Sample* rows[kMostRowsAtOnce + kAtOnce - 1];
        for (long i = 0; i < height + m_blockRows - 1; ++i)
            rows[i] = Input(row + i);
        if (together) {
            Sample* const outs[] = {Columns(0), Columns(1), Columns(2), Columns(3)};
            m_kernels.windows(rows, static_cast<std::size_t>(height), outs, m_rowSamples);
        } else {
            m_kernels.inner(rows, static_cast<std::size_t>(height), Columns(0), m_rowSamples);
        }
    }

    /// By blocks of the window's height: a window is the tail of a block, from the window's first row on, and
    /// the head of the next. Three combinations a row make both and join them.
    void CombineTallColumns(long row)
    {
        const long height = m_run.kernelHeight;
        if (m_block < 0 || row >= m_block + height) StartBlock(row);
        const long end = row + height; // of the window
        for (; m_headEnd < end; ++m_headEnd) {
            const bool first = m_headEnd == m_block + height;
            const Sample* const rows[] = {Input(m_headEnd), m_head.Data()};
            m_kernels.inner(rows, first ? 1 : 2, m_head.Data(), m_rowSamples);
        }
        const bool hasHead = end > m_block + height;
        const Sample* const rows[] = {Tail(row), m_head.Data()};
        m_kernels.inner(rows, hasHead ? 2 : 1, Columns(0), m_rowSamples);
    }

    void StartBlock(long row)
    {
        m_block = row;
        m_headEnd = row + m_run.kernelHeight;
        for (long i = m_headEnd - 1; i >= row; --i) {
            const bool last = i == m_headEnd - 1;
            const Sample* const rows[] = {Input(i), last ? nullptr : Tail(i + 1)};
            m_kernels.inner(rows, last ? 1 : 2, Tail(i), m_rowSamples);
        }
    }

    /// Combines pieces of neighbouring pixels to longer ones, up to the window's width.
    void CombineRow(const Sample* pieces, Sample* results)
    {
        const long whole = m_run.kernelWidth;
        long length = 1; // of a piece
        for (int turn = 0; kMostPixelsAtOnce * length < whole; length *= 4, turn ^= 1) {
            const Sample* const rows[] = {pieces, pieces + Samples(length), pieces + Samples(2 * length),
                                          pieces + Samples(3 * length)};
            m_kernels.inner(rows, 4, m_pieces[turn].Data(), Samples(m_width + whole - 4 * length));
            pieces = m_pieces[turn].Data();
        }
        const Sample* rows[kMostPixelsAtOnce];
        std::size_t count = 0;
        for (long at = 0; at < whole; at += length)
            rows[count++] = pieces + Samples(std::min(at, whole - length));
        m_kernels.last(rows, count, results, Samples(m_width));
    }

    const vfILWindowRun& m_run;
    ExtremeKernels<Sample> m_kernels;
    long m_width;
    std::size_t m_rowSamples; ///< of all windows of a row
    bool m_tall;
    long m_block = -1; ///< first row of the block, or of the columns
    long m_blockRows = 0;
    long m_headEnd = 0;
    RunArray<Sample> m_columns;
    RunArray<Sample> m_tails; ///< of the block, by their first rows
    RunArray<Sample> m_head;  ///< rows from the block's end to m_headEnd
    RunArray<Sample> m_pieces[2];
};

} // namespace vfil

/// \file
/// The recursive blurs along the rows, and what they write.
#pragma once

#include "il/loops/blur/paddedinput.h"
#include "il/loops/blur/recursion.h"
#include "il/loops/frame/windowloop.h"

#include <algorithm>
#include <cstring>

namespace vfil {

/// The filter along the rows, for as many rows at once as a group of sequences holds: sample x of all of them
/// lies together. Then the results go to the output.
template <class Form, class Format>
class RowPass {
public:
    using Value = typename Form::Value;
    using Sample = typename Format::Sample;

    RowPass(const vfILProcessor& processor, const PaddedInput& input)
        : m_processor(processor), m_run(input.Run()), m_columns(static_cast<std::size_t>(input.Width())),
          m_width(static_cast<std::size_t>(m_run.processBox.GetSizeX())),
          m_channels(SelectedChannels<Format>(m_run)), m_isDirect(WritesToOutput<Format>(m_run)),
          m_row(FindRecursionRows(input.UsesVectors()))
    {}
    bool SetUp(const RecursionDesign& design, const PaddedInput& input, std::size_t groups)
    {
        const std::size_t values = m_columns * kGroup;
        if (!m_filter.SetUp(design, kGroup, input.UsesVectors()) || !m_rows.Allocate(groups * kGroupValues) ||
            !m_sources.Allocate(m_columns) || !m_values.Allocate(values) || !m_temporary.Allocate(values) ||
            !m_samples.Allocate(kRows * kChannels * m_width))
            return false;
        std::fill_n(m_rows.Data(), groups * kGroupValues, Value{0});
        for (std::size_t x = 0; x < m_columns; ++x) {
            const std::size_t at = static_cast<std::size_t>(input.ColumnOf(static_cast<long>(x))) * kChannels;
            m_sources[x] = at / kGroup * kGroupValues + at % kGroup;
        }
        return true;
    }
    /// Where the next row's values belong, and the next ones' behind them.
    SequenceRow<Value> Place() const { return {m_rows.Data() + m_taken * kGroup, kGroup, kGroupValues}; }
    /// How many rows there is room for.
    long Room() const { return static_cast<long>(kRows - m_taken); }
    /// Takes what was put there: a row, and the rows before it. False when the run was interrupted.
    bool Take(long row, long rows)
    {
        for (long last = row - rows; row > last; --row)
            m_places[m_taken++] = row;
        return m_taken < kRows || Finish();
    }
    /// Filters and writes the rows that were taken.
    bool Finish()
    {
        if (m_taken == 0) return true;
        GatherRows();
        m_filter.FilterTwoPass(m_values.Data(), m_temporary.Data(), static_cast<long>(m_columns));
        SpreadSamples();
        bool goesOn = true;
        for (std::size_t i = 0; i < m_taken && goesOn; ++i) {
            const long row = m_places[i];
            if (row < m_run.firstRow || (row - m_run.firstRow) % m_run.rowStep != 0) continue;
            Write(row, m_samples.Data() + i * m_width * kChannels);
            goesOn = m_processor.MustInterrupt() == 0;
        }
        m_taken = 0;
        return goesOn;
    }

private:
    static constexpr std::size_t kChannels{Format::kChannels};
    static constexpr std::size_t kGroup = Form::kGroup;
    static constexpr std::size_t kRows = kGroup / kChannels;
    static constexpr std::size_t kGroupValues = kRows * kGroup; ///< of m_rows

    void GatherRows() const
    {
        Value* to = m_values.Data();
        for (std::size_t x = 0; x < m_columns; ++x) {
            const Value* from = m_rows.Data() + m_sources[x];
            for (std::size_t i = 0; i < kRows; ++i, from += kGroup, to += kChannels)
                std::memcpy(to, from, kChannels * sizeof(Value));
        }
    }
    /// The results as samples, each row by itself again; so many columns at a time that they stay in the
    /// cache.
    void SpreadSamples() const
    {
        constexpr std::size_t kPiece = 64;
        const Value* values = m_values.Data() + static_cast<std::size_t>(m_filter.Design().reach) * kGroup;
        for (std::size_t x = 0; x < m_width; x += kPiece) {
            const std::size_t columns = std::min(kPiece, m_width - x);
            const Value* piece = values + x * kGroup;
            Sample samples[kPiece * kGroup];
            m_row.toSamples(piece, samples, columns * kGroup);
            for (std::size_t i = 0; i < m_taken; ++i)
                for (std::size_t k = 0; k < columns; ++k)
                    std::memcpy(m_samples.Data() + (i * m_width + x + k) * kChannels,
                                samples + k * kGroup + i * kChannels, kChannels * sizeof(Sample));
        }
    }
    void Write(long row, const Sample* results) const
    {
        if (m_isDirect) {
            std::copy_n(results, m_width * kChannels, RowOf<Sample>(m_run.output, row));
        } else {
            WriteResults<Format>(m_run, row, results, m_channels);
        }
    }

    const vfILProcessor& m_processor;
    const vfILWindowRun& m_run;
    const std::size_t m_columns; ///< pixels of a padded row
    const std::size_t m_width;   ///< pixels of a row of results
    const unsigned m_channels;
    const bool m_isDirect; ///< nothing has to be mixed
    const ResultSamples<Value, Sample>& m_row;
    vfILBlurRecursiveFilter<Form> m_filter;
    RunArray<Value> m_rows;          ///< group by group, and the rows of a group one behind the other
    RunArray<std::size_t> m_sources; ///< where m_rows has each column of the padded input
    RunArray<Value> m_values;
    RunArray<Value> m_temporary;
    RunArray<Sample> m_samples;
    long m_places[kRows];
    std::size_t m_taken = 0;
};

} // namespace vfil

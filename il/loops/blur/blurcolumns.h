/// \file
/// The recursive blurs down and up the columns of the padded input.
///
/// The way up needs what the way down made, in reverse. Instead of all of that a run keeps the filter's
/// states at every so many rows, and makes the rows between them again, from the last ones up, when it needs
/// them.
#pragma once

#include "il/loops/blur/recursion.h"
#include "il/loops/frame/padding.h"
#include "il/loops/frame/rowloop.h"

#include <vfil/spatial.h>

#include <cmath>
#include <cstring>

namespace vfil {

/// The padded input's rows, without the columns that repeat others beyond an edge.
class PaddedInput {
public:
    /// \param window  All that the windows cover, in the input's coordinates.
    PaddedInput(const vfILWindowRun& run, const ImageView& input, const vfILBbox2l& window,
                const EdgeRule& edge, bool useVectors)
        : m_run(run), m_input(input), m_window(window), m_edge(edge), m_useVectors(useVectors)
    {}
    /// False when memory is short.
    bool Prepare();
    const vfILWindowRun& Run() const { return m_run; }
    bool UsesVectors() const { return m_useVectors; }
    long Width() const { return m_window.GetSizeX(); }
    long Height() const { return m_window.GetSizeY(); }
    /// Columns that rows have.
    long Columns() const { return m_columns; }
    /// Which of them column \p x of the padded input is.
    long ColumnOf(long x) const { return m_columnOf[static_cast<std::size_t>(x)]; }
    /// Some rows, at most kRowsAtOnce, until the next call.
    vfILRowWalk Rows(long first, long count) const;
    static constexpr long kRowsAtOnce = 16;

private:
    bool FindColumns();

    const vfILWindowRun& m_run;
    const ImageView& m_input;
    const vfILBbox2l m_window;
    const EdgeRule m_edge;
    const bool m_useVectors;
    long m_firstColumn = 0; ///< in input coordinates
    long m_columns = 0;
    RunArray<std::int32_t> m_columnOf;
    RunArray<unsigned char> m_rows;
};

/// Rows of a longer sequence, each in the place of one that is no longer needed. What a group of sequences
/// has in all rows lies together, so that the steps of a recursion go on through memory.
template <class Element, std::size_t group>
class GroupRing {
public:
    /// \param elements  Room for the rows of all groups.
    void Place(Element* elements, long rows)
    {
        m_elements = elements;
        m_rows = rows;
    }
    Element* Row(long index) const { return m_elements + index % m_rows * kStep; }
    /// Elements from a group to the next.
    std::ptrdiff_t Across() const { return m_rows * kStep; }
    /// The rows from one on; before it for a direction of -1.
    SequenceRow<Element> From(long index, int direction) const
    {
        return {Row(index), direction * kStep, Across()};
    }
    long Rows() const { return m_rows; }
    /// Rows from one on that lie one behind the other.
    long RowsOnwards(long index) const { return m_rows - index % m_rows; }
    /// Rows from one back that lie one before the other.
    long RowsBackwards(long index) const { return index % m_rows + 1; }

private:
    static constexpr auto kStep = static_cast<std::ptrdiff_t>(group);

    Element* m_elements = nullptr;
    long m_rows = 0;
};

/// The filter down and up the columns. It gives the rows from the last one up.
template <class Form, class Sample>
class ColumnPass {
public:
    using Value = typename Form::Value;

    ColumnPass(const PaddedInput& input, long channels)
        : m_input(input), m_samples(static_cast<std::size_t>(input.Columns() * channels)),
          m_groups((m_samples + kGroup - 1) / kGroup), m_length(input.Height()), m_block(BlockRows(m_length))
    {}
    bool SetUp(const RecursionDesign& design);
    std::size_t Groups() const { return m_groups; }
    /// Gives the rows to a taker with Place(), Room() and Take(row, rows), until Take returns false.
    template <class Taker>
    void Run(Taker& taker);

private:
    using Number = typename Form::Number;
    static constexpr std::size_t kGroup = Form::kGroup;

    /// As many rows between kept states as make the states of all blocks about as large as the rows of one.
    static long BlockRows(long length)
    {
        return std::max(16L, std::lround(std::sqrt(2.0 * static_cast<double>(length))));
    }
    Number* StatesOf(long block) const
    {
        return m_states + static_cast<std::size_t>(block - m_firstBlock) * m_down.StateNumbers();
    }
    bool Allocate(long rows);
    void Read(long first, long last) const;
    void HoldRows(long first, long last);
    void KeepStates();
    void GoDown(long block, Number* states, bool areWanted);
    template <class Taker>
    bool GoUp(long block, Taker& taker) const;
    template <class Taker>
    void CopyRows(Taker& taker) const;

    const PaddedInput& m_input;
    const std::size_t m_samples; ///< of a row
    const std::size_t m_groups;
    const long m_length;
    const long m_block;    ///< rows between kept states
    long m_firstBlock = 0; ///< that has rows which the way up needs
    RecursionDesign m_design;
    RecursionPass<Form, Sample> m_down;
    RecursionPass<Form, Value> m_up;
    GroupRing<Sample, kGroup> m_inputs;
    long m_firstInput = 0; ///< m_inputs holds the rows from this one
    long m_lastInput = 0;  ///< to before this one
    GroupRing<Value, kGroup>
        m_downs; ///< results of the way down: those of a block, and what the way up still reads
    Number* m_states = nullptr;
    Number* m_upStates = nullptr;
    RunArray<unsigned char> m_memory; ///< of all of these: in one piece it is more likely at hand again
};

template <class Form, class Sample>
bool ColumnPass<Form, Sample>::SetUp(const RecursionDesign& design)
{
    m_design = design;
    if (design.isIdentity) return true;
    const std::size_t sequences = m_groups * kGroup;
    m_down.SetUp(design, sequences, m_input.UsesVectors());
    m_up.SetUp(design, sequences, m_input.UsesVectors());
    m_firstBlock = design.reach / m_block;
    return Allocate(std::min(m_length, m_block + design.reach + 1));
}

/// \param rows  Rows that the rings hold.
template <class Form, class Sample>
bool ColumnPass<Form, Sample>::Allocate(long rows)
{
    constexpr std::size_t kMost = std::numeric_limits<std::ptrdiff_t>::max() / 64;
    const auto blocks = static_cast<std::size_t>((m_length - 1) / m_block - m_firstBlock + 1);
    const std::size_t sequences = m_groups * kGroup;
    const auto ringRows = static_cast<std::size_t>(rows);
    if (std::max(ringRows, blocks + 1) > kMost / sequences) return false;
    const std::size_t states = blocks * m_down.StateNumbers();
    const std::size_t numbers = states + m_up.StateNumbers();
    const std::size_t ring = ringRows * sequences;
    if (!m_memory.Allocate(numbers * sizeof(Number) + ring * (sizeof(Value) + sizeof(Sample)))) return false;
    m_states = reinterpret_cast<Number*>(m_memory.Data());
    m_upStates = m_states + states;
    auto* const values = reinterpret_cast<Value*>(m_states + numbers);
    m_downs.Place(values, rows);
    m_inputs.Place(reinterpret_cast<Sample*>(values + ring), rows);
    return true;
}

/// Reads the rows first .. last - 1, group by group.
template <class Form, class Sample>
void ColumnPass<Form, Sample>::Read(long first, long last) const
{
    for (long row = first; row < last; row += PaddedInput::kRowsAtOnce) {
        const long rows = std::min(PaddedInput::kRowsAtOnce, last - row);
        const vfILRowWalk from = m_input.Rows(row, rows);
        Sample* to[PaddedInput::kRowsAtOnce];
        for (long i = 0; i < rows; ++i)
            to[i] = m_inputs.Row(row + i);
        for (std::size_t at = 0; at < m_samples; at += kGroup) {
            const std::size_t samples = std::min(kGroup, m_samples - at);
            for (long i = 0; i < rows; to[i++] += m_inputs.Across()) {
                const Sample* group = RowOf<const Sample>(from, i) + at;
                if (samples == kGroup) {
                    std::memcpy(to[i], group, kGroup * sizeof(Sample));
                } else {
                    std::fill(std::copy_n(group, samples, to[i]), to[i] + kGroup, Sample{0});
                }
            }
        }
    }
}

/// Reads what is missing of the rows first .. last - 1.
template <class Form, class Sample>
void ColumnPass<Form, Sample>::HoldRows(long first, long last)
{
    Read(m_lastInput, last);
    m_lastInput = std::max(m_lastInput, last);
    m_firstInput = std::max(m_firstInput, m_lastInput - m_inputs.Rows());
    Read(first, m_firstInput);
    m_firstInput = std::min(m_firstInput, first);
    m_lastInput = std::min(m_lastInput, m_firstInput + m_inputs.Rows());
}

/// The way down through a block. Rows before the first are 0.
template <class Form, class Sample>
void ColumnPass<Form, Sample>::GoDown(long block, Number* states, bool areWanted)
{
    const long first = block * m_block;
    const long last = std::min(first + m_block, m_length);
    HoldRows(std::max(0L, first - m_design.reach - 1), last);
    for (long row = first; row < last;) {
        long steps = last - row;
        const auto delayed = [&](long delay) {
            const long at = row - delay;
            steps = std::min(steps, at < 0 ? -at : m_inputs.RowsOnwards(at));
            if (at < 0) return m_down.Zeros();
            const auto from = m_inputs.From(at, 1);
            return SequenceRow<const Sample>{from.first, from.step, from.across};
        };
        const auto current = delayed(0);
        const auto flat = m_design.isFastGauss ? delayed(m_design.flat + 1) : m_down.Zeros();
        const auto tail = delayed(m_design.reach + 1);
        if (areWanted) steps = std::min(steps, m_downs.RowsOnwards(row));
        const auto result = areWanted ? m_downs.From(row, 1) : SequenceRow<Value>{};
        m_down.Advance({current, flat, tail, result}, states, steps);
        row += steps;
    }
}

/// The first way down: leaves the states before each block in their place.
template <class Form, class Sample>
void ColumnPass<Form, Sample>::KeepStates()
{
    Number* states = StatesOf(m_firstBlock);
    m_down.Start(states);
    for (long block = 0; (block + 1) * m_block < m_length; ++block) {
        if (block >= m_firstBlock) {
            states = StatesOf(block + 1);
            std::copy_n(StatesOf(block), m_down.StateNumbers(), states);
        }
        GoDown(block, states, false);
    }
}

/// The way up through a block. Rows after the last are 0, and the results begin after a warm-up of as many
/// rows as the filter reaches.
template <class Form, class Sample>
template <class Taker>
bool ColumnPass<Form, Sample>::GoUp(long block, Taker& taker) const
{
    const long first = std::max(block * m_block, m_design.reach);
    const long results = m_length - 2 * m_design.reach;
    for (long row = std::min((block + 1) * m_block, m_length) - 1; row >= first;) {
        long steps = row - first + 1;
        const auto delayed = [&](long delay) {
            const long at = row + delay;
            steps = std::min(steps, at < m_length ? m_downs.RowsBackwards(at) : at - m_length + 1);
            if (at >= m_length) return m_up.Zeros();
            const auto from = m_downs.From(at, -1);
            return SequenceRow<const Value>{from.first, from.step, from.across};
        };
        const auto current = delayed(0);
        const auto flat = m_design.isFastGauss ? delayed(m_design.flat + 1) : m_up.Zeros();
        const auto tail = delayed(m_design.reach + 1);
        const long result = row - m_design.reach;
        const bool isWanted = result < results;
        steps = std::min(steps, isWanted ? taker.Room() : result - results + 1);
        m_up.Advance({current, flat, tail, isWanted ? taker.Place() : SequenceRow<Value>{}}, m_upStates,
                     steps);
        if (isWanted && !taker.Take(result, steps)) return false;
        row -= steps;
    }
    return true;
}

template <class Form, class Sample>
template <class Taker>
void ColumnPass<Form, Sample>::CopyRows(Taker& taker) const
{
    bool goesOn = true;
    for (long row = m_length - 1 - m_design.reach; row >= m_design.reach && goesOn; --row) {
        const vfILRowWalk from = m_input.Rows(row, 1);
        const auto* samples = RowOf<const Sample>(from, 0);
        const SequenceRow<Value> to = taker.Place();
        for (std::size_t i = 0; i < m_samples; ++i)
            to.first[static_cast<std::ptrdiff_t>(i / kGroup) * to.across +
                     static_cast<std::ptrdiff_t>(i % kGroup)] =
                static_cast<Value>(samples[i] * Form::kSampleUnit);
        goesOn = taker.Take(row - m_design.reach, 1);
    }
}

template <class Form, class Sample>
template <class Taker>
void ColumnPass<Form, Sample>::Run(Taker& taker)
{
    if (m_design.isIdentity) return CopyRows(taker);
    KeepStates();
    m_up.Start(m_upStates);
    bool goesOn = true;
    for (long block = (m_length - 1) / m_block; block >= m_firstBlock && goesOn; --block) {
        GoDown(block, StatesOf(block), true);
        goesOn = GoUp(block, taker);
    }
}

} // namespace vfil

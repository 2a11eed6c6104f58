/// \file
/// The recursive blurs down and up the columns of the padded input.
///
/// The way up needs what the way down made, in reverse. Instead of all of that a run keeps the filter's
/// states at every so many rows, and makes the rows between them again, from the last ones up, when it needs
/// them.
#pragma once

#include "il/loops/blur/groupring.h"
#include "il/loops/blur/interruptpoll.h"
#include "il/loops/blur/paddedinput.h"
#include "il/loops/blur/recursion.h"
#include "il/loops/frame/rowloop.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace vfil {

/// The filter down and up the columns. It gives the rows from the last one up.
template <class Form, class Sample>
class ColumnPass {
public:
    using Value = typename Form::Value;

    ColumnPass(const vfILProcessor& processor, const PaddedInput& input, long channels)
        : m_poll(processor), m_input(input), m_samples(static_cast<std::size_t>(input.Columns() * channels)),
          m_groups((m_samples + kGroup - 1) / kGroup), m_length(input.Height()), m_block(BlockRows(m_length)),
          m_mostSteps(
              static_cast<long>(std::max(InterruptPoll::kSteps / (m_groups * kGroup), std::size_t{1})))
    {}
    bool SetUp(const RecursionDesign& design);
    std::size_t Groups() const { return m_groups; }
    /// Gives the rows to a taker with Place(), Room() and Take(row, rows). False when the run was
    /// interrupted, by itself or, as Take tells, by the taker.
    template <class Taker>
    bool Run(Taker& taker);

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
    template <class Taker>
    bool CopyRows(Taker& taker) const;
    // Each returns false when the run was interrupted.
    bool Read(long first, long last);
    bool HoldRows(long first, long last);
    bool KeepStates();
    bool GoDown(long block, Number* states, bool areWanted);
    template <class Taker>
    bool GoUp(long block, Taker& taker);
    bool GoesOnAfter(long steps)
    {
        return !m_poll.MustStop(static_cast<std::size_t>(steps) * m_groups * kGroup);
    }

    InterruptPoll m_poll;
    const PaddedInput& m_input;
    const std::size_t m_samples; ///< of a row
    const std::size_t m_groups;
    const long m_length;
    const long m_block;     ///< rows between kept states
    const long m_mostSteps; ///< of a recursion between two questions for the interruption
    long m_firstBlock = 0;  ///< that has rows which the way up needs
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
bool ColumnPass<Form, Sample>::Read(long first, long last)
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
        if (!GoesOnAfter(rows)) return false;
    }
    return true;
}

/// Reads what is missing of the rows first .. last - 1.
template <class Form, class Sample>
bool ColumnPass<Form, Sample>::HoldRows(long first, long last)
{
    if (!Read(m_lastInput, last)) return false;
    m_lastInput = std::max(m_lastInput, last);
    m_firstInput = std::max(m_firstInput, m_lastInput - m_inputs.Rows());
    if (!Read(first, m_firstInput)) return false;
    m_firstInput = std::min(m_firstInput, first);
    m_lastInput = std::min(m_lastInput, m_firstInput + m_inputs.Rows());
    return true;
}

/// The way down through a block. Rows before the first are 0.
template <class Form, class Sample>
bool ColumnPass<Form, Sample>::GoDown(long block, Number* states, bool areWanted)
{
    const long first = block * m_block;
    const long last = std::min(first + m_block, m_length);
    if (!HoldRows(std::max(0L, first - m_design.reach - 1), last)) return false;
    for (long row = first; row < last;) {
        long steps = std::min(last - row, m_mostSteps);
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
        if (!GoesOnAfter(steps)) return false;
    }
    return true;
}

/// The first way down: leaves the states before each block in their place.
template <class Form, class Sample>
bool ColumnPass<Form, Sample>::KeepStates()
{
    Number* states = StatesOf(m_firstBlock);
    m_down.Start(states);
    for (long block = 0; (block + 1) * m_block < m_length; ++block) {
        if (block >= m_firstBlock) {
            states = StatesOf(block + 1);
            std::copy_n(StatesOf(block), m_down.StateNumbers(), states);
        }
        if (!GoDown(block, states, false)) return false;
    }
    return true;
}

/// The way up through a block. Rows after the last are 0, and the results begin after a warm-up of as many
/// rows as the filter reaches.
template <class Form, class Sample>
template <class Taker>
bool ColumnPass<Form, Sample>::GoUp(long block, Taker& taker)
{
    const long first = std::max(block * m_block, m_design.reach);
    const long results = m_length - 2 * m_design.reach;
    for (long row = std::min((block + 1) * m_block, m_length) - 1; row >= first;) {
        long steps = std::min(row - first + 1, m_mostSteps);
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
        if (!GoesOnAfter(steps)) return false;
    }
    return true;
}

template <class Form, class Sample>
template <class Taker>
bool ColumnPass<Form, Sample>::CopyRows(Taker& taker) const
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
    return goesOn;
}

template <class Form, class Sample>
template <class Taker>
bool ColumnPass<Form, Sample>::Run(Taker& taker)
{
    if (m_design.isIdentity) return CopyRows(taker);
    if (!KeepStates()) return false;
    m_up.Start(m_upStates);
    bool goesOn = true;
    for (long block = (m_length - 1) / m_block; block >= m_firstBlock && goesOn; --block)
        goesOn = GoDown(block, StatesOf(block), true) && GoUp(block, taker);
    return goesOn;
}

} // namespace vfil

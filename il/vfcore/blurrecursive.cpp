/// \file
/// The blurs whose cost does not depend on the radius: recursive filters down and up the columns, then along
/// the rows both ways.
///
/// The way up needs what the way down made, in reverse. Instead of all of that a run keeps the filter's
/// states at every so many rows, and makes the rows between them again, from the last ones up, when it needs
/// them.

#include "blurrecursive.h"

#include "padding.h"
#include "regions.h"
#include "windowloop.h"

#include <vfil/blur.h>

using namespace vfil;

namespace {

/// A row of values: whole groups of sequences, and not a multiple of two lines of the cache, so that the rows
/// that a group's steps go through fall into different sets of it.
template <class Value>
std::size_t RowValues(std::size_t sequences)
{
    constexpr std::size_t kGroupLines = kSequenceGroup * sizeof(Value) / 64;
    const std::size_t groups = (sequences + kSequenceGroup - 1) / kSequenceGroup;
    return (kGroupLines == 1 ? groups | 1 : groups) * kSequenceGroup;
}

/// The padded input's rows, of which the frame may hold only some.
struct PaddedRows {
    const vfILWindowRun& run;
    const ImageView& input;
    vfILBbox2l window; ///< all that the windows cover, in input coordinates
    EdgeRule edge;
    bool useVectors;
    bool areHeld; ///< by run.windows
    RunArray<unsigned char> row;

    bool Prepare()
    {
        const auto bytes = static_cast<std::size_t>(window.GetSizeX() * input.RowPixelBytes());
        return areHeld || row.Allocate(bytes);
    }
    template <class Sample>
    const Sample* Row(long index) const
    {
        if (areHeld) return RowOf<const Sample>(run.windows, index);
        ReadWindow(input, {window.GetOffsetX(), window.GetOffsetY() + index, window.GetSizeX(), 1}, edge,
                   useVectors, row.Data());
        return reinterpret_cast<const Sample*>(row.Data());
    }
};

/// The filter down and up the columns of the padded input. It gives the rows from the last one up.
template <class Form, class Sample>
class ColumnPass {
public:
    using Value = typename Form::Value;

    ColumnPass(const PaddedRows& rows, long samples, long length)
        : m_rows(rows), m_samples(static_cast<std::size_t>(samples)), m_length(length),
          m_block(std::max(kLeastBlock, length / kMostBlocks))
    {}
    bool SetUp(const RecursionDesign& design, bool useVectors);
    std::size_t RowElements() const { return m_filter.Sequences(); }
    /// Gives the rows to a taker with Place(), Room() and Take(row, rows), until Take returns false.
    template <class Taker>
    void Run(Taker& taker);

private:
    using Number = typename Form::Number;
    /// Rows of a block: what both ways have of them stays in the cache.
    static constexpr long kLeastBlock = 16;
    /// Blocks of a run: their states' share of a large picture's size stays small.
    static constexpr long kMostBlocks = 128;

    void Read(long row, Value* to) const
    {
        const Sample* samples = m_rows.Row<Sample>(row);
        for (std::size_t i = 0; i < m_samples; ++i)
            to[i] = Form::FromSample(samples[i]);
    }
    Number* StatesOf(long block) const
    {
        return m_states.Data() + static_cast<std::size_t>(block) * m_filter.StateNumbers();
    }
    void ReadRows(long first, long last);
    void KeepStates();
    void GoDown(long block, Number* states, bool areWanted);
    template <class Taker>
    bool GoUp(long block, Taker& taker) const;
    template <class Taker>
    void CopyRows(Taker& taker) const;

    const PaddedRows& m_rows;
    const std::size_t m_samples;
    const long m_length; ///< rows of the padded input
    const long m_block;  ///< rows between kept states
    vfILBlurRecursiveFilter<Form> m_filter;
    RowRing<Value> m_inputs;
    long m_firstInput = 0; ///< m_inputs holds the rows from this one
    long m_lastInput = 0;  ///< to before this one
    RowRing<Value> m_down; ///< results of the way down: those of a block, and what the way up still reads
    RunArray<Number> m_states;
    RunArray<Number> m_upStates;
};

template <class Form, class Sample>
bool ColumnPass<Form, Sample>::SetUp(const RecursionDesign& design, bool useVectors)
{
    const std::size_t values = RowValues<Value>(m_samples);
    if (!m_filter.SetUp(design, values, useVectors)) return false;
    if (design.isIdentity) return true;
    const long rows = std::min(m_length, m_block + design.reach + 1);
    const auto blocks = static_cast<std::size_t>((m_length + m_block - 1) / m_block);
    if (!m_inputs.Allocate(rows, values) || !m_down.Allocate(rows, values) ||
        !m_states.Allocate(blocks * m_filter.StateNumbers()) || !m_upStates.Allocate(m_filter.StateNumbers()))
        return false;
    for (long row = 0; row < rows; ++row)
        std::fill(m_inputs.Row(row) + m_samples, m_inputs.Row(row) + values, Value{0});
    return true;
}

/// Reads what is missing of the rows first .. last - 1.
template <class Form, class Sample>
void ColumnPass<Form, Sample>::ReadRows(long first, long last)
{
    for (; m_lastInput < last; ++m_lastInput)
        Read(m_lastInput, m_inputs.Row(m_lastInput));
    m_firstInput = std::max(m_firstInput, m_lastInput - m_inputs.Rows());
    for (; m_firstInput > first; --m_firstInput)
        Read(m_firstInput - 1, m_inputs.Row(m_firstInput - 1));
    m_lastInput = std::min(m_lastInput, m_firstInput + m_inputs.Rows());
}

/// The way down through a block. Rows before the first are 0.
template <class Form, class Sample>
void ColumnPass<Form, Sample>::GoDown(long block, Number* states, bool areWanted)
{
    const RecursionDesign& design = m_filter.Design();
    const auto step = static_cast<std::ptrdiff_t>(RowElements());
    const long first = block * m_block;
    const long last = std::min(first + m_block, m_length);
    ReadRows(std::max(0L, first - design.reach - 1), last);
    for (long row = first; row < last;) {
        long steps = last - row;
        const auto delayed = [&](long delay) {
            const long at = row - delay;
            steps = std::min(steps, at < 0 ? -at : m_inputs.RowsOnwards(at));
            return at < 0 ? m_filter.Zeros() : SequenceRow<const Value>{m_inputs.Row(at), step};
        };
        const auto current = delayed(0);
        const auto flat = design.isFastGauss ? delayed(design.flat + 1) : m_filter.Zeros();
        const auto tail = delayed(design.reach + 1);
        if (areWanted) steps = std::min(steps, m_down.RowsOnwards(row));
        const auto result = areWanted ? SequenceRow<Value>{m_down.Row(row), step} : m_filter.Unwanted();
        m_filter.Advance({current, flat, tail, result}, states, steps);
        row += steps;
    }
}

/// The first way down: leaves the states before each block in its place.
template <class Form, class Sample>
void ColumnPass<Form, Sample>::KeepStates()
{
    m_filter.Start(StatesOf(0));
    for (long block = 0; (block + 1) * m_block < m_length; ++block) {
        std::copy_n(StatesOf(block), m_filter.StateNumbers(), StatesOf(block + 1));
        GoDown(block, StatesOf(block + 1), false);
    }
}

/// The way up through a block. Rows after the last are 0, and the results begin after a warm-up of as many
/// rows as the filter reaches.
template <class Form, class Sample>
template <class Taker>
bool ColumnPass<Form, Sample>::GoUp(long block, Taker& taker) const
{
    const RecursionDesign& design = m_filter.Design();
    const auto step = static_cast<std::ptrdiff_t>(RowElements());
    const long first = std::max(block * m_block, design.reach);
    const long results = m_length - 2 * design.reach;
    for (long row = std::min((block + 1) * m_block, m_length) - 1; row >= first;) {
        long steps = row - first + 1;
        const auto delayed = [&](long delay) {
            const long at = row + delay;
            steps = std::min(steps, at < m_length ? m_down.RowsBackwards(at) : at - m_length + 1);
            return at < m_length ? SequenceRow<const Value>{m_down.Row(at), -step} : m_filter.Zeros();
        };
        const auto current = delayed(0);
        const auto flat = design.isFastGauss ? delayed(design.flat + 1) : m_filter.Zeros();
        const auto tail = delayed(design.reach + 1);
        const long result = row - design.reach;
        const bool isWanted = result < results;
        steps = std::min(steps, isWanted ? taker.Room() : result - results + 1);
        const auto to = isWanted ? SequenceRow<Value>{taker.Place(), step} : m_filter.Unwanted();
        m_filter.Advance({current, flat, tail, to}, m_upStates.Data(), steps);
        if (isWanted && !taker.Take(result, steps)) return false;
        row -= steps;
    }
    return true;
}

template <class Form, class Sample>
template <class Taker>
void ColumnPass<Form, Sample>::CopyRows(Taker& taker) const
{
    const long reach = m_filter.Design().reach;
    bool goesOn = true;
    for (long row = m_length - 1 - reach; row >= reach && goesOn; --row) {
        Read(row, taker.Place());
        goesOn = taker.Take(row - reach, 1);
    }
}

template <class Form, class Sample>
template <class Taker>
void ColumnPass<Form, Sample>::Run(Taker& taker)
{
    if (m_filter.Design().isIdentity) return CopyRows(taker);
    KeepStates();
    m_filter.Start(m_upStates.Data());
    bool goesOn = true;
    for (long block = (m_length - 1) / m_block; block >= 0 && goesOn; --block) {
        GoDown(block, StatesOf(block), true);
        goesOn = GoUp(block, taker);
    }
}

/// The filter along the rows, for as many rows at once as a group of sequences holds: sample x of all of them
/// lies together. Then the results go to the output.
template <class Form, class Format>
class RowPass {
public:
    using Value = typename Form::Value;
    using Sample = typename Format::Sample;

    RowPass(const vfILProcessor& processor, const vfILWindowRun& run, long columns)
        : m_processor(processor), m_run(run), m_columns(static_cast<std::size_t>(columns)),
          m_width(static_cast<std::size_t>(run.processBox.GetSizeX())),
          m_channels(Format::Channels(processor)),
          m_isDirect(run.mask.first == nullptr && m_channels == (1U << kChannels) - 1)
    {}
    bool SetUp(const RecursionDesign& design, std::size_t rowElements, bool useVectors)
    {
        const std::size_t values = m_columns * kSequenceGroup;
        m_rowElements = rowElements;
        if (!m_filter.SetUp(design, kSequenceGroup, useVectors) || !m_rows.Allocate(kRows * rowElements) ||
            !m_values.Allocate(values) || !m_temporary.Allocate(values) ||
            !m_samples.Allocate(kRows * kChannels * m_width))
            return false;
        std::fill_n(m_rows.Data(), kRows * rowElements, Value{0});
        return true;
    }
    /// Where the next row's values belong, and the next ones' behind them.
    Value* Place() const { return m_rows.Data() + m_taken * m_rowElements; }
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
    static constexpr std::size_t kRows = kSequenceGroup / kChannels;

    void GatherRows() const
    {
        Value* to = m_values.Data();
        for (std::size_t x = 0; x < m_columns; ++x)
            for (std::size_t i = 0; i < kRows; ++i, to += kChannels)
                std::memcpy(to, m_rows.Data() + i * m_rowElements + x * kChannels, kChannels * sizeof(Value));
    }
    /// The results as samples, each row by itself again; so many columns at a time that they stay in the
    /// cache.
    void SpreadSamples() const
    {
        constexpr std::size_t kPiece = 64;
        const Value* values =
            m_values.Data() + static_cast<std::size_t>(m_filter.Design().reach) * kSequenceGroup;
        for (std::size_t x = 0; x < m_width; x += kPiece) {
            const std::size_t columns = std::min(kPiece, m_width - x);
            const Value* piece = values + x * kSequenceGroup;
            Sample samples[kPiece * kSequenceGroup];
            std::transform(piece, piece + columns * kSequenceGroup, samples,
                           [](Value value) { return Form::template ToSample<Sample>(value); });
            for (std::size_t i = 0; i < m_taken; ++i)
                for (std::size_t k = 0; k < columns; ++k)
                    std::memcpy(m_samples.Data() + (i * m_width + x + k) * kChannels,
                                samples + k * kSequenceGroup + i * kChannels, kChannels * sizeof(Sample));
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
    std::size_t m_rowElements = 0;
    vfILBlurRecursiveFilter<Form> m_filter;
    RunArray<Value> m_rows;
    RunArray<Value> m_values;
    RunArray<Value> m_temporary;
    RunArray<Sample> m_samples;
    long m_places[kRows];
    std::size_t m_taken = 0;
};

/// The filters of both axes.
struct BlurDesign {
    RecursionDesign x, y;
};

/// Filters the whole effect box. False when memory is short.
template <class Form, class Format>
bool Convolve2Pass(const vfILProcessor& processor, const PaddedRows& rows, const BlurDesign& design)
{
    using Sample = typename Format::Sample;
    const vfILWindowRun& run = rows.run;
    const long columns = rows.window.GetSizeX();
    ColumnPass<Form, Sample> down(rows, columns * Format::kChannels, rows.window.GetSizeY());
    RowPass<Form, Format> across(processor, run, columns);
    if (!down.SetUp(design.y, rows.useVectors) ||
        !across.SetUp(design.x, down.RowElements(), rows.useVectors))
        return false;
    down.Run(across);
    across.Finish();
    return true;
}

} // namespace

/// What a row becomes depends on all rows, by the filter's roundings, so that bands would not do: the first
/// one makes the whole, and reads for itself what is not in it.
vfILStatus vfILBlurImg::BlurRecursively()
{
    const ImageView input(GetInputImg());
    vfILWindowRun run = Run();
    const vfILBbox2l& effect = run.maskedBox;
    PaddedRows rows{run,
                    input,
                    {effect.GetOffsetX() - run.radiusX, effect.GetOffsetY() - run.radiusY,
                     effect.GetSizeX() + run.kernelWidth - 1, effect.GetSizeY() + run.kernelHeight - 1},
                    {GetEdgeMode(), {}},
                    m_simdAvailable != 0,
                    run.processBox == m_effectBox,
                    {}};
    rows.edge.colour.Set(*input.format, GetEdgeColor());
    if (!rows.areHeld) {
        run.processBox = m_effectBox;
        run.centres = input.Walk(effect.GetOffsetX(), effect.GetOffsetY());
        const RowSelection selected =
            SelectField(GetProcessingMode(), m_effectBox.GetOffsetY(), m_effectBox.GetSizeY());
        run.firstRow = selected.skip;
        run.rowStep = selected.step;
        run.rows = selected.count;
        Run().stopped = true;
    }
    if (run.rows == 0) return VFIL_SUCCESS;

    const bool isGauss = m_type >= VFIL_BLUR_FAST_GAUSS;
    const auto design = isGauss ? DesignFastGauss : DesignExponential;
    const BlurDesign both{design(double{GetRadiusX()} * m_degree, run.radiusX),
                          design(double{GetRadiusY()} * m_degree, run.radiusY)};
    const bool isFixed = m_type == VFIL_BLUR_EXPONENTIAL || m_type == VFIL_BLUR_FAST_GAUSS;
    bool done = rows.Prepare();
    PointFormats::Visit(OutputFormat(), [&](auto format) {
        using Format = decltype(format);
        if constexpr (sizeof(typename Format::Sample) == 1) {
            if (isFixed) {
                done = done && Convolve2Pass<FixedRecursion, Format>(*this, rows, both);
                return;
            }
        }
        done = done && Convolve2Pass<FloatRecursion, Format>(*this, rows, both);
    });
    if (done) return VFIL_SUCCESS;
    return Fail(0x10001, "%s ERROR DoEffect: insufficient memory space\n", GetClassNameW());
}

/// \file
/// The blurs whose cost does not depend on the radius: recursive filters down and up the columns, then along
/// the rows both ways.

#include "il/loops/blur/blurcolumns.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/windowloop.h"

#include <vfil/blur.h>

#include <numeric>

using namespace vfil;

namespace vfil {

bool PaddedInput::Prepare()
{
    if (!FindColumns()) return false;
    const auto rowBytes = static_cast<std::size_t>(m_columns * m_input.RowPixelBytes());
    return m_rows.Allocate(kRowsAtOnce * rowBytes);
}

/// Columns beyond an edge are those of the picture again, or one of the edge colour. Which ones they are the
/// edge rule tells by itself, of a row of numbers.
bool PaddedInput::FindColumns()
{
    const auto picture = static_cast<std::size_t>(m_input.width);
    const auto width = static_cast<std::size_t>(Width());
    RunArray<std::int32_t> numbers;
    if (!numbers.Allocate(picture) || !m_columnOf.Allocate(width)) return false;
    std::iota(numbers.Data(), numbers.Data() + picture, 0);
    const long left = m_window.GetOffsetX();
    const long right = left + Width();
    m_firstColumn = std::max(left, -1L);
    m_columns = std::min(right, m_input.width + 1) - m_firstColumn;

    ImageView line = m_input;
    line.pixels = reinterpret_cast<unsigned char*>(numbers.Data());
    line.height = 1;
    line.pixelBytes = sizeof(std::int32_t);
    EdgeRule edge{m_edge.mode, {}};
    const auto outside = static_cast<std::int32_t>(left < 0 ? -1 : m_input.width);
    std::memcpy(edge.colour.bytes, &outside, sizeof outside);
    ReadWindow(line, {left, 0, Width(), 1}, edge, m_useVectors,
               reinterpret_cast<unsigned char*>(m_columnOf.Data()));
    std::int32_t* const columns = m_columnOf.Data();
    std::for_each_n(columns, width,
                    [this](std::int32_t& number) { number -= static_cast<std::int32_t>(m_firstColumn); });
    if (std::all_of(columns, columns + width,
                    [this](long column) { return column >= 0 && column < m_columns; }))
        return true;
    m_firstColumn = left; // some repeat columns that the window does not reach
    m_columns = Width();
    std::iota(columns, columns + width, 0);
    return true;
}

vfILRowWalk PaddedInput::Rows(long first, long count) const
{
    const vfILRowWalk rows{m_rows.Data(), std::ptrdiff_t{m_columns} * m_input.RowPixelBytes(), nullptr, 0};
    ReadWindow(m_input, {m_firstColumn, m_window.GetOffsetY() + first, m_columns, count}, m_edge,
               m_useVectors, m_rows.Data());
    return rows;
}

} // namespace vfil

namespace {

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
          m_channels(Format::Channels(processor)),
          m_isDirect(m_run.mask.first == nullptr && m_channels == (1U << kChannels) - 1),
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

/// The filters of both axes.
struct BlurDesign {
    RecursionDesign x, y;
};

/// Filters the whole effect box. False when memory is short.
template <class Form, class Format>
bool Convolve2Pass(const vfILProcessor& processor, const PaddedInput& input, const BlurDesign& design)
{
    ColumnPass<Form, typename Format::Sample> down(input, Format::kChannels);
    RowPass<Form, Format> across(processor, input);
    if (!down.SetUp(design.y) || !across.SetUp(design.x, input, down.Groups())) return false;
    down.Run(across);
    across.Finish();
    return true;
}

} // namespace

/// What a row becomes depends on all rows, by the filter's roundings: bands would not do, and the columns are
/// read where the input has them.
vfILStatus vfILBlurImg::BlurRecursively()
{
    const vfILWindowRun& run = Run();
    const ImageView input = InputOf(*this, run);
    PaddedInput padded(run, input, run.windowBox, EdgeRuleOf(*this), m_simdAvailable != 0);
    if (run.rows == 0) return VFIL_SUCCESS;

    const bool isGauss = m_type >= VFIL_BLUR_FAST_GAUSS;
    const auto design = isGauss ? DesignFastGauss : DesignExponential;
    const BlurDesign both{design(double{GetRadiusX()} * m_degree, run.radiusX),
                          design(double{GetRadiusY()} * m_degree, run.radiusY)};
    const bool isFixed = m_type == VFIL_BLUR_EXPONENTIAL || m_type == VFIL_BLUR_FAST_GAUSS;
    bool done = padded.Prepare();
    PointFormats::Visit(OutputFormat(), [&](auto format) {
        using Format = decltype(format);
        if constexpr (sizeof(typename Format::Sample) == 1) {
            if (isFixed) {
                done = done && Convolve2Pass<FixedRecursion, Format>(*this, padded, both);
                return;
            }
        }
        done = done && Convolve2Pass<FloatRecursion, Format>(*this, padded, both);
    });
    if (done) return VFIL_SUCCESS;
    return Fail(0x10001, "%s ERROR DoEffect: insufficient memory space\n", GetClassNameW());
}

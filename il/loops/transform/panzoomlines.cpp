/// \file
/// Sampling along the axes, row by row.

#include "il/loops/transform/panzoomlines.h"

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/rowcopy.h"
#include "il/loops/frame/rowloop.h"
#include "il/loops/transform/sampletable.h"
#include "il/loops/transform/sampling.h"
#include "il/rows/transform/scalerows.h"

#include <cstring>
#include <new>

namespace vfil {

namespace {

/// Default pixels before and behind those of a line: a place that is near reaches at most so far.
constexpr std::int64_t kPad = 4;

Span SpanOf(long first, long count)
{
    return {first, std::int64_t{first} + count - 1};
}

/// What the forms share: the places of the columns, and rows of the input.
template <class Format>
class Lines : public PanZoomLines {
protected:
    using Sample = typename Format::Sample;
    static constexpr std::size_t kChannels = Format::kChannels;
    static constexpr std::size_t kForm = kChannels == 4 ? 0 : 1; ///< of the kernels' arrays

    Lines(const vfILTransformRun& run, SampleForm form, const AxisMap& x, const AxisMap& y)
        : PanZoomLines(run.outputBox.GetSizeX() * run.outputBox.GetSizeY() * run.output.pixelBytes >=
                       static_cast<long>(kStreamingBytes)),
          m_input(run.input), m_columns(SpanOf(run.effectBox.GetOffsetX(), run.effectBox.GetSizeX())),
          m_x{x, SpanOf(run.sourceBox.GetOffsetX(), run.sourceBox.GetSizeX()), form, sizeof(Sample) == 1},
          m_y{y, SpanOf(run.sourceBox.GetOffsetY(), run.sourceBox.GetSizeY()), form, sizeof(Sample) == 1}
    {
        std::memcpy(m_defaultPixel, run.defaultPixel, sizeof m_defaultPixel);
    }

    /// Where each column's first pixel lies in a line: kPad + its distance from m_needed.first, or 0 where
    /// there are default pixels alone.
    bool PrepareStarts()
    {
        const std::size_t count = m_columns.Count();
        if (!m_starts.Allocate(count + kScaleSlack)) return false;
        const std::int64_t before = m_x.form == SampleForm::Bicubic ? 1 : 0;
        m_needed = {};
        for (std::int64_t x = m_columns.first; x <= m_columns.last; ++x) {
            const Span pixels = m_x.PixelsAt(m_x.At(x));
            if (pixels.IsEmpty()) continue;
            const bool isFirst = m_needed.IsEmpty();
            m_needed.first = isFirst ? pixels.first : std::min(m_needed.first, pixels.first);
            m_needed.last = isFirst ? pixels.last : std::max(m_needed.last, pixels.last);
        }
        std::fill_n(m_starts.Data(), count + kScaleSlack, 0);
        for (std::size_t k = 0; k < count; ++k) {
            const AxisPlace place = PlaceOf(k);
            if (m_x.PixelsAt(place).IsEmpty()) continue;
            m_starts[k] = static_cast<std::int32_t>(place.whole - before - m_needed.first + kPad);
        }
        return true;
    }
    AxisPlace PlaceOf(std::size_t column) const
    {
        return m_x.At(m_columns.first + static_cast<std::int64_t>(column));
    }
    std::size_t LineSamples() const { return (m_needed.Count() + 2 * kPad) * kChannels; }
    /// The pixels of a row that are needed.
    const Sample* Row(std::int64_t y) const
    {
        return reinterpret_cast<const Sample*>(m_input.pixels + y * m_input.RowBytes()) +
               m_needed.first * static_cast<std::int64_t>(kChannels);
    }
    void FillDefault(void* pixels, std::size_t count) const
    {
        FillRow(static_cast<unsigned char*>(pixels), count * sizeof m_defaultPixel,
                reinterpret_cast<const unsigned char*>(m_defaultPixel), sizeof m_defaultPixel);
    }

    ImageView m_input;
    Span m_columns; ///< of the effect box
    AxisPlaces m_x, m_y;
    Span m_needed; ///< columns of the input
    Sample m_defaultPixel[kChannels] = {};
    RunArray<std::int32_t> m_starts;
};

template <class Format>
class NearestLines final : public Lines<Format> {
    using Base = Lines<Format>;

public:
    NearestLines(const vfILTransformRun& run, const AxisMap& x, const AxisMap& y, bool useVectors)
        : Base(run, SampleForm::Nearest, x, y), m_useVectors(useVectors),
          m_pickFours(ScaleRowsAt(useVectors ? BestLevel() : Level::Plain).pickFours)
    {}
    /// The columns that have a pixel are neighbours. From here on starts[k] is where in the row.
    bool Prepare()
    {
        const std::size_t columns = this->m_columns.Count();
        if (!this->PrepareStarts() || !m_row.Allocate(columns + kScaleSlack)) return false;
        std::size_t behind = columns;
        while (m_first < behind && this->m_starts[m_first] == 0)
            ++m_first;
        while (behind > m_first && this->m_starts[behind - 1] == 0)
            --behind;
        m_count = behind - m_first;
        for (std::size_t k = m_first; k < behind; ++k)
            this->m_starts[k] -= static_cast<std::int32_t>(kPad);
        return true;
    }
    void MakeLine(long y, unsigned char* output) override
    {
        const AxisPlace row = this->m_y.At(y);
        const std::size_t columns = this->m_columns.Count();
        if (!row.isNear || m_count == 0) return this->FillDefault(output, columns);
        if (row.whole != m_held) Pick(row.whole);
        m_held = row.whole;
        MoveRow(m_useVectors, reinterpret_cast<const unsigned char*>(m_row.Data()), output,
                columns * sizeof(Pixel), this->Streams());
    }

private:
    struct Pixel {
        typename Base::Sample sample[Base::kChannels];
    };

    void Pick(std::int64_t y)
    {
        const auto* const row = reinterpret_cast<const unsigned char*>(this->Row(y));
        const std::int32_t* const places = this->m_starts.Data() + m_first;
        auto* const out = reinterpret_cast<unsigned char*>(m_row.Data() + m_first);
        // What the kernel reads past a row's end must be in the picture.
        const bool isFollowed = y + 1 < this->m_input.height && this->m_input.width >= 8;
        if (sizeof(Pixel) == 4 && isFollowed) {
            m_pickFours(row, places, out, m_count);
        } else {
            for (std::size_t k = 0; k < m_count; ++k)
                std::memcpy(out + k * sizeof(Pixel), row + places[k] * std::ptrdiff_t{sizeof(Pixel)},
                            sizeof(Pixel));
        }
        this->FillDefault(m_row.Data(), m_first);
        this->FillDefault(m_row.Data() + m_first + m_count, this->m_columns.Count() - m_first - m_count);
    }

    bool m_useVectors;
    PickFours m_pickFours;
    RunArray<Pixel> m_row;                ///< the last row that was picked
    std::size_t m_first = 0, m_count = 0; ///< columns that have a pixel
    std::int64_t m_held = -1;             ///< which row that is
};

template <class Format>
class BilinearLines final : public Lines<Format> {
    using Base = Lines<Format>;
    using Sample = typename Base::Sample;
    using Lerped = typename BetweenPasses<Sample>::Lerped;

public:
    BilinearLines(const vfILTransformRun& run, const AxisMap& x, const AxisMap& y, bool useVectors)
        : Base(run, SampleForm::Bilinear, x, y), m_kernels(FindScaleRows<Sample>(useVectors))
    {}
    bool Prepare()
    {
        if (!this->PrepareStarts()) return false;
        const std::size_t entries = this->m_columns.Count() + kScaleSlack;
        m_rowSamples = entries * Base::kChannels;
        const std::size_t line = this->LineSamples() + kScaleSlack * Base::kChannels;
        if (!m_fractions.Allocate(entries) || !m_exact.Allocate(entries) || !m_line.Allocate(line) ||
            !m_inner.Allocate(entries) || !m_ring.Allocate(3 * m_rowSamples))
            return false;
        std::fill_n(m_fractions.Data(), entries, 0U);
        std::fill_n(m_exact.Data(), entries, 0.0);
        for (std::size_t k = 0; k < this->m_columns.Count(); ++k) {
            const AxisPlace place = this->PlaceOf(k);
            if (this->m_starts[k] == 0) continue;
            m_fractions[k] = static_cast<std::uint32_t>(place.fraction) * 0x10001U;
            m_exact[k] = place.exact;
        }
        this->FillDefault(m_line.Data(), line / Base::kChannels);
        std::fill_n(m_ring.Data(), 3 * m_rowSamples, Lerped{0});
        Lerp(m_kernels, m_ring.Data() + 2 * m_rowSamples, 0, this->m_columns.Count()); // of default pixels
        FindInner(entries);
        return true;
    }
    void MakeLine(long y, unsigned char* output) override
    {
        const AxisPlace place = this->m_y.At(y);
        if (!place.isNear) return this->FillDefault(output, this->m_columns.Count());
        const Lerped* const low = LerpedRow(place.whole);
        const Lerped* const high = LerpedRow(place.whole + 1);
        m_kernels.lerpRows[this->Streams()](low, high, {place.fraction, place.exact},
                                            reinterpret_cast<Sample*>(output),
                                            this->m_columns.Count() * Base::kChannels);
    }

private:
    /// The columns whose two pixels are both in the picture, and where these lie from m_needed.first on.
    void FindInner(std::size_t entries)
    {
        const auto last = kPad + static_cast<std::int64_t>(this->m_needed.Count()) - 2;
        const auto isInner = [&](std::size_t k) {
            return this->m_starts[k] >= kPad && this->m_starts[k] <= last;
        };
        m_behind = this->m_columns.Count();
        while (m_first < m_behind && !isInner(m_first))
            ++m_first;
        while (m_behind > m_first && !isInner(m_behind - 1))
            --m_behind;
        std::fill_n(m_inner.Data(), entries, 0);
        for (std::size_t k = m_first; k < m_behind; ++k)
            m_inner[k] = this->m_starts[k] - static_cast<std::int32_t>(kPad);
    }
    /// Columns of m_line.
    void Lerp(const ScaleRowsOf<Sample>& kernels, Lerped* out, std::size_t first, std::size_t behind) const
    {
        kernels.lerpPixels[Base::kForm](
            m_line.Data(),
            {this->m_starts.Data() + first, m_fractions.Data() + first, m_exact.Data() + first},
            out + first * Base::kChannels, behind - first);
    }
    const Lerped* LerpedRow(std::int64_t row)
    {
        if (row < this->m_y.source.first || row > this->m_y.source.last)
            return m_ring.Data() + 2 * m_rowSamples;
        const auto slot = static_cast<std::size_t>(row & 1);
        Lerped* const out = m_ring.Data() + slot * m_rowSamples;
        if (m_held[slot] == row) return out;
        m_held[slot] = row;
        const Sample* const pixels = this->Row(row);
        const std::size_t needed = this->m_needed.Count();
        Sample* const line = m_line.Data() + kPad * Base::kChannels;
        // The kernel may read on behind the row, where there is a next one.
        const bool isFollowed = row + 1 < this->m_input.height && this->m_input.width >= 16;
        if (!isFollowed) {
            std::copy_n(pixels, needed * Base::kChannels, line);
            Lerp(m_kernels, out, 0, this->m_columns.Count());
            return out;
        }
        m_kernels.lerpPixels[Base::kForm](
            pixels, {m_inner.Data() + m_first, m_fractions.Data() + m_first, m_exact.Data() + m_first},
            out + m_first * Base::kChannels, m_behind - m_first);
        if (needed != 0) { // the others see the first pixel, or the last, beside default ones
            const std::size_t last = (needed - 1) * Base::kChannels;
            std::copy_n(pixels, Base::kChannels, line);
            std::copy_n(pixels + last, Base::kChannels, line + last);
        }
        const ScaleRowsOf<Sample>& plain = FindScaleRows<Sample>(false); // which writes nothing else
        Lerp(plain, out, 0, m_first);
        Lerp(plain, out, m_behind, this->m_columns.Count());
        return out;
    }

    const ScaleRowsOf<Sample>& m_kernels;
    RunArray<std::uint32_t> m_fractions;
    RunArray<double> m_exact;
    std::size_t m_first = 0, m_behind = 0; ///< columns of two pixels in the picture
    RunArray<std::int32_t> m_inner;        ///< where those lie
    RunArray<Sample> m_line;               ///< a row of the input between default pixels
    RunArray<Lerped> m_ring;               ///< an even row, an odd one, and that of default pixels
    std::size_t m_rowSamples = 0;
    std::int64_t m_held[2] = {-1, -1};
};

template <class Format>
class BicubicLines final : public Lines<Format> {
    using Base = Lines<Format>;
    using Sample = typename Base::Sample;
    using Column = typename BetweenPasses<Sample>::Column;

public:
    BicubicLines(const vfILTransformRun& run, const AxisMap& x, const AxisMap& y, bool useVectors)
        : Base(run, SampleForm::Bicubic, x, y), m_kernels(FindScaleRows<Sample>(useVectors))
    {}
    bool Prepare()
    {
        if (!this->PrepareStarts()) return false;
        const std::size_t entries = this->m_columns.Count() + kScaleSlack;
        const std::size_t samples = this->LineSamples() + kScaleSlack * Base::kChannels;
        if (!m_exact.Allocate(4 * entries) || !m_weights.Allocate(4 * entries) || !m_sums.Allocate(samples) ||
            !m_defaults.Allocate(samples))
            return false;
        std::fill_n(m_exact.Data(), 4 * entries, 0.0);
        std::fill_n(m_weights.Data(), 4 * entries, 0U);
        std::fill_n(m_sums.Data(), samples, Column{0});
        this->FillDefault(m_defaults.Data(), samples / Base::kChannels);
        for (std::size_t k = 0; k < this->m_columns.Count(); ++k)
            SetWeights(k, entries);
        m_taps = {this->m_starts.Data(),
                  {m_weights.Data(), m_weights.Data() + entries},
                  {m_weights.Data() + 2 * entries, m_weights.Data() + 3 * entries},
                  m_exact.Data()};
        return true;
    }
    void MakeLine(long y, unsigned char* output) override
    {
        const AxisPlace place = this->m_y.At(y);
        const std::size_t columns = this->m_columns.Count();
        if (!place.isNear) return this->FillDefault(output, columns);
        RowWeights weights{};
        const CubicWeights fixed = CubicWeightsOf(place.fraction);
        std::copy_n(fixed.weight, 4, weights.fixed);
        SetExactWeights(place.exact, weights.exact);
        const Sample* rows[4];
        for (int i = 0; i < 4; ++i) {
            const std::int64_t row = place.whole - 1 + i;
            const bool counts = row >= this->m_y.source.first && row <= this->m_y.source.last;
            rows[i] = counts ? this->Row(row) : m_defaults.Data();
        }
        Column* const first = m_sums.Data() + kPad * Base::kChannels;
        const std::size_t needed = this->m_needed.Count() * Base::kChannels;
        m_kernels.columns(rows, weights, first, needed);
        PadColumns(weights, first, first + needed);
        m_kernels.cubicPixels[Base::kForm](m_sums.Data(), m_taps, reinterpret_cast<Sample*>(output), columns);
    }

private:
    /// The weights of column k; a table has so many entries.
    void SetWeights(std::size_t k, std::size_t entries)
    {
        const AxisPlace place = this->PlaceOf(k);
        const bool isDefault = this->m_starts[k] == 0;
        SetExactWeights(isDefault ? 0.0 : place.exact, m_exact.Data() + 4 * k);
        const CubicWeights w = CubicWeightsOf(isDefault ? 0 : place.fraction);
        const auto pair = [](std::int32_t low, std::int32_t high) {
            return (static_cast<std::uint32_t>(low) & 0xFFFFU) | static_cast<std::uint32_t>(high) << 16;
        };
        for (std::size_t i = 0; i < 2; ++i) {
            const std::int32_t a = w.weight[2 * i];
            const std::int32_t b = w.weight[2 * i + 1];
            m_weights[i * entries + k] = pair(a >> 2, b >> 2);
            m_weights[(i + 2) * entries + k] = pair(a & 3, b & 3);
        }
    }
    /// The columns of default pixels, on both sides.
    void PadColumns(const RowWeights& weights, Column* first, Column* behind) const
    {
        const Sample* const rows[4] = {m_defaults.Data(), m_defaults.Data(), m_defaults.Data(),
                                       m_defaults.Data()};
        constexpr std::size_t kSamples = kPad * Base::kChannels;
        m_kernels.columns(rows, weights, first - kSamples, kSamples);
        std::copy_n(first - kSamples, kSamples, behind);
    }

    const ScaleRowsOf<Sample>& m_kernels;
    RunArray<double> m_exact;
    RunArray<std::uint32_t> m_weights; ///< four tables
    RunArray<Column> m_sums;           ///< the columns of a line
    RunArray<Sample> m_defaults;       ///< a row of default pixels
    CubicTaps m_taps{};
};

/// Lines that write nothing.
class NoLines final : public PanZoomLines {
public:
    NoLines() : PanZoomLines(false) {}
    void MakeLine(long, unsigned char*) override {}
};

template <class Made>
std::unique_ptr<PanZoomLines> Prepared(const vfILTransformRun& run, const AxisMap& x, const AxisMap& y,
                                       bool useVectors)
{
    std::unique_ptr<Made> lines(new (std::nothrow) Made(run, x, y, useVectors));
    if (lines == nullptr || !lines->Prepare()) return nullptr;
    return lines;
}

} // namespace

void PanZoomLines::Finish() const
{
    if (m_streams) FinishStreaming();
}

std::unique_ptr<PanZoomLines> PanZoomLines::Create(const vfILTransformRun& run, vfILInterpolationType type,
                                                   const AxisMap& x, const AxisMap& y, bool useVectors)
{
    std::unique_ptr<PanZoomLines> lines;
    bool isKnown = false;
    PointFormats::Visit(run.output.format->id, [&](auto tag) {
        using Format = decltype(tag);
        isKnown = type >= VFIL_INTERP_NEAREST && type <= VFIL_INTERP_BICUBIC;
        if (type == VFIL_INTERP_NEAREST) lines = Prepared<NearestLines<Format>>(run, x, y, useVectors);
        if (type == VFIL_INTERP_BILINEAR) lines = Prepared<BilinearLines<Format>>(run, x, y, useVectors);
        if (type == VFIL_INTERP_BICUBIC) lines = Prepared<BicubicLines<Format>>(run, x, y, useVectors);
    });
    return isKnown ? std::move(lines) : std::unique_ptr<PanZoomLines>(new (std::nothrow) NoLines);
}

} // namespace vfil

/// \file
/// The two-pass resampler over whole pictures: lines of the source are resampled in x once each, and kept as
/// long as output rows need them.

#include "il/loops/transform/panzoomrun.h"

#include "il/loops/frame/fills.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/rowcopy.h"
#include "il/loops/frame/rowloop.h"
#include "il/loops/transform/sourceline.h"
#include "il/rows/transform/resamplerows.h"

namespace vfil {

namespace {

/// What the crop leaves of an axis of the source.
Span Cropped(long size, const BandWidths& crop)
{
    const auto pixels = static_cast<unsigned long>(std::max(size, 0L));
    return {static_cast<std::int64_t>(std::min(crop.low, pixels)),
            static_cast<std::int64_t>(pixels) - 1 - static_cast<std::int64_t>(std::min(crop.high, pixels))};
}

Span SpanOf(long first, long count)
{
    return {first, std::int64_t{first} + count - 1};
}

/// The resampler of one format.
template <class Format>
class PanZoom {
    using Sample = typename Format::Sample;
    static constexpr std::size_t kChannels = Format::kChannels;

public:
    explicit PanZoom(const PanZoomRun& run)
        : m_run(run), m_columns(SpanOf(run.effectBox.GetOffsetX(), run.effectBox.GetSizeX())),
          m_weighPixels(FindWeighPixels<Sample>(run.useVectors, kChannels)),
          m_paintUnder(FindPaintUnder<Sample>(run.useVectors)),
          m_keepsColour(kChannels == 4 && !run.aPremultiplied && !run.multiplies)
    {}

    /// False when memory is short.
    bool Prepare()
    {
        const Span source[2] = {Cropped(m_run.a.view.width, m_run.crop[0]),
                                Cropped(m_run.a.view.height, m_run.crop[1])};
        const Span rows = SpanOf(m_run.effectBox.GetOffsetY(), m_run.effectBox.GetSizeY());
        if (!m_x.CreateRowWeightLookup(m_run.x, source[0], m_columns) ||
            !m_y.CreateRowWeightLookup(m_run.y, source[1], rows))
            return false;
        if (m_x.outputs.IsEmpty()) m_y.outputs = {};
        return m_source.Create(m_run, source, m_x.needed, m_y.needed) && PrepareRows() && PrepareAlpha() &&
               PrepareBackground();
    }

    void Run()
    {
        const long top = m_run.effectBox.GetOffsetY() + m_run.outputOffset[1];
        const RowSelection rows = SelectField(m_run.mode, top, m_run.effectBox.GetSizeY());
        for (long i = 0; i < rows.count; ++i) {
            if (m_run.processor != nullptr && m_run.processor->MustInterrupt() != 0) break;
            const long y = m_run.effectBox.GetOffsetY() + rows.skip + i * rows.step;
            MakeRow(y, reinterpret_cast<Sample*>(
                           m_run.output.Pixel(static_cast<long>(m_columns.first) + m_run.outputOffset[0],
                                              y + m_run.outputOffset[1])));
        }
        if (m_streams) FinishStreaming();
    }

private:
    bool PrepareRows()
    {
        constexpr std::size_t kSlack = kTapSlack; // pixels, of which a kernel may read some
        m_ringRows = std::max<std::size_t>(2 * m_y.pairs, 1);
        m_rowSamples = (m_x.outputs.Count() + kTapSlack) * kChannels;
        const std::size_t lineSamples = (m_x.needed.Count() + 2 * m_x.pairs + kSlack) * kChannels;
        if (!m_line.Allocate(lineSamples) || !m_ring.Allocate(m_ringRows * m_rowSamples) ||
            !m_held.Allocate(m_ringRows) || !m_rows.Allocate(m_ringRows) || !m_weights.Allocate(m_ringRows))
            return false;
        std::fill_n(m_line.Data(), lineSamples, Sample{0});
        std::fill_n(m_held.Data(), m_ringRows, std::int64_t{-1});
        return true;
    }

    /// What of each output is there, for pixels without alpha: the sums of weights, faded as the pixels are.
    bool PrepareAlpha()
    {
        if constexpr (kChannels == 4) return true;
        return FindShares(m_x, 0, m_shares[0]) && FindShares(m_y, 1, m_shares[1]);
    }

    bool FindShares(const AxisTaps& taps, int axis, RunArray<std::int32_t>& shares)
    {
        const std::size_t count = taps.outputs.Count();
        if (!shares.Allocate(count)) return false;
        for (std::size_t k = 0; k < count; ++k) {
            shares[k] = taps.sums[k];
            if (!m_source.Fades()) continue;
            const auto gain = [&](std::size_t tap) {
                const std::int64_t pixel =
                    taps.needed.first + taps.starts[k] + static_cast<std::int64_t>(tap);
                return std::int64_t{pixel > taps.needed.last ? 0 : m_source.Bands(axis).Gain(pixel)};
            };
            std::int64_t sum = taps.IsList() ? gain(0) * kWholeWeight : 0;
            for (std::size_t tap = 0; tap < 2 * taps.pairs; ++tap)
                sum += gain(tap) * taps.weights[2 * (tap / 2 * taps.pitch + k) + tap % 2];
            shares[k] = Rounded(sum);
        }
        return true;
    }

    static std::int32_t Rounded(std::int64_t sum)
    {
        return static_cast<std::int32_t>((sum + kWholeWeight / 2) >> kWeightBits);
    }

    /// A row of the default colour as it stands, which the pixels of B replace.
    bool PrepareBackground()
    {
        const std::size_t count = m_columns.Count();
        if (!m_background.Allocate(count * kChannels)) return false;
        ColourPixel colour;
        colour.Set(*m_run.a.view.format, m_run.defaultColour);
        const Sample none[kChannels] = {};
        m_hasBackground = m_run.b.view.HasPixels() || std::memcmp(colour.bytes, none, sizeof none) != 0;
        std::memcpy(m_defaultPixel, colour.bytes, sizeof m_defaultPixel);
        FillBackground();
        // What is painted under is read again.
        m_streams = !m_hasBackground && m_run.a.pixels != m_run.output.pixels &&
                    m_columns.Count() * sizeof(Sample) * kChannels *
                            static_cast<std::size_t>(m_run.effectBox.GetSizeY()) >=
                        kStreamingBytes;
        m_weighRows = FindWeighRows<Sample>(m_run.useVectors, m_streams);
        return true;
    }

    void FillBackground()
    {
        FillRow(reinterpret_cast<unsigned char*>(m_background.Data()),
                m_columns.Count() * kChannels * sizeof(Sample),
                reinterpret_cast<const unsigned char*>(m_defaultPixel), sizeof m_defaultPixel);
    }

    /// The row of B that lies behind row y, premultiplied.
    void FindBackground(std::int64_t y)
    {
        const PanZoomPicture& b = m_run.b;
        if (!b.view.HasPixels() || b.pixels == nullptr) return;
        FillBackground();
        const std::int64_t dx = m_run.offsetB[0];
        const std::int64_t row = y + m_run.offsetB[1];
        const vfILBbox2l box = m_run.boxB & b.view.Box();
        if (box.IsNull() || row < box.GetOffsetY() || row >= box.GetOffsetY() + box.GetSizeY()) return;
        const std::int64_t first = std::max<std::int64_t>(m_columns.first, box.GetOffsetX() - dx);
        const std::int64_t last =
            std::min<std::int64_t>(m_columns.last, box.GetOffsetX() + box.GetSizeX() - 1 - dx);
        const auto* from = reinterpret_cast<const Sample*>(b.Row(row));
        for (std::int64_t x = first; x <= last; ++x) {
            Sample* to = m_background.Data() + (x - m_columns.first) * static_cast<std::int64_t>(kChannels);
            std::copy_n(from + (x + dx) * static_cast<std::int64_t>(kChannels), kChannels, to);
            if (kChannels == 1 || m_run.bPremultiplied) continue;
            for (std::size_t c = 0; c + 1 < kChannels; ++c)
                to[c] = FullScale<Sample>::Mult(to[c], to[kChannels - 1]);
        }
    }

    /// Row `row` of the source, resampled in x.
    const Sample* XRow(std::int64_t row)
    {
        const std::size_t slot = static_cast<std::size_t>(row) % m_ringRows;
        Sample* const out = m_ring.Data() + slot * m_rowSamples;
        if (m_held[slot] == row) return out;
        m_held[slot] = row;
        const auto* from = reinterpret_cast<const Sample*>(m_run.a.Row(row)) +
                           m_x.needed.first * static_cast<std::int64_t>(kChannels);
        // Pixels without weight are read behind the needed ones: of the next row, where there is one.
        const bool isFollowed = row + 1 < m_run.a.view.height &&
                                m_run.a.view.width > static_cast<std::int64_t>(2 * m_x.pairs + kTapSlack);
        if (isFollowed && !m_source.Changes() && !m_x.IsList()) {
            m_weighPixels(from, m_x.Line(), out, m_x.outputs.Count());
            KeepColourOfEdges(from, out);
            return out;
        }
        std::copy_n(from, m_x.needed.Count() * kChannels, m_line.Data());
        m_source.Treat(m_line.Data(), row);
        if (!m_x.IsList()) {
            m_weighPixels(m_line.Data(), m_x.Line(), out, m_x.outputs.Count());
            KeepColourOfEdges(m_line.Data(), out);
        } else if (m_run.x.scale > 0) { // one pixel after the other
            std::copy_n(m_line.Data(), m_x.outputs.Count() * kChannels, out);
        } else {
            for (std::size_t k = 0; k < m_x.outputs.Count(); ++k)
                std::copy_n(m_line.Data() + static_cast<std::size_t>(m_x.starts[k]) * kChannels, kChannels,
                            out + k * kChannels);
        }
        return out;
    }

    /// Straight colour does not fade where only a part of an output pixel lies on the picture: its alpha
    /// does.
    void KeepColourOfEdges(const Sample* line, Sample* row) const
    {
        if (!m_keepsColour) return;
        const std::size_t count = m_x.outputs.Count();
        std::size_t k = 0;
        for (; k < count && m_x.sums[k] != kWholeWeight; ++k)
            KeepColour(line, k, row + k * kChannels);
        for (std::size_t behind = count; behind > k && m_x.sums[behind - 1] != kWholeWeight; --behind)
            KeepColour(line, behind - 1, row + (behind - 1) * kChannels);
    }

    void KeepColour(const Sample* line, std::size_t k, Sample* pixel) const
    {
        const auto tapAt = [&](std::size_t tap, std::size_t c) {
            return line[(static_cast<std::size_t>(m_x.starts[k]) + tap) * kChannels + c];
        };
        const auto weightAt = [&](std::size_t tap) {
            return m_x.weights[2 * (tap / 2 * m_x.pitch + k) + tap % 2];
        };
        for (std::size_t c = 0; c < 3; ++c)
            pixel[c] = Mean(
                2 * m_x.pairs, weightAt, [&](std::size_t tap) { return tapAt(tap, c); }, pixel[c]);
    }

    /// The same for a row of which only a part lies on the picture.
    void KeepColourOfRow(std::size_t count, Sample* row, std::size_t samples) const
    {
        const auto weightAt = [&](std::size_t tap) { return m_weights[tap]; };
        for (std::size_t i = 0; i < samples; ++i) {
            if (i % kChannels == kChannels - 1) continue;
            row[i] = Mean(
                count, weightAt, [&](std::size_t tap) { return m_rows[tap][i]; }, row[i]);
        }
    }

    /// The mean of samples by weights of any sum; `none` where that is 0.
    template <class WeightAt, class SampleAt>
    static Sample Mean(std::size_t count, const WeightAt& weightAt, const SampleAt& sampleAt, Sample none)
    {
        std::int64_t sum = 0, weights = 0;
        for (std::size_t tap = 0; tap < count; ++tap) {
            const std::int64_t weight = weightAt(tap);
            if (weight == 0) continue; // its sample need not be there
            sum += weight * sampleAt(tap);
            weights += weight;
        }
        return weights > 0 ? static_cast<Sample>((sum + weights / 2) / weights) : none;
    }

    /// The rows that output k of the y axis is made of, and their weights. Those without weight are left out.
    std::size_t FindRows(std::size_t k)
    {
        std::size_t count = 0;
        const std::int64_t first = m_y.needed.first + m_y.starts[k];
        for (std::size_t tap = 0; tap < 2 * m_y.pairs; ++tap) {
            const std::int16_t weight = m_y.weights[2 * (tap / 2 * m_y.pitch + k) + tap % 2];
            if (weight == 0) continue;
            m_rows[count] = XRow(first + static_cast<std::int64_t>(tap));
            m_weights[count++] = weight;
        }
        if (count % 2 != 0) {
            m_rows[count] = m_rows[count - 1];
            m_weights[count++] = 0;
        }
        return count / 2;
    }

    /// Output k of the y axis.
    void PerformYPassOnRow(std::size_t k, Sample* out, std::size_t samples)
    {
        if (m_y.IsList()) {
            std::copy_n(XRow(m_y.needed.first + m_y.starts[k]), samples, out);
            return;
        }
        const std::size_t pairs = FindRows(k);
        m_weighRows(m_rows.Data(), m_weights.Data(), pairs, out, samples);
        if (m_keepsColour && m_y.sums[k] != kWholeWeight) KeepColourOfRow(2 * pairs, out, samples);
    }

    void MakeRow(std::int64_t y, Sample* out)
    {
        FindBackground(y);
        const Sample* const background = m_background.Data();
        const std::size_t pixels = m_columns.Count();
        if (y < m_y.outputs.first || y > m_y.outputs.last) {
            std::copy_n(background, pixels * kChannels, out);
            return;
        }
        const auto k = static_cast<std::size_t>(y - m_y.outputs.first);
        const auto before = static_cast<std::size_t>(m_x.outputs.first - m_columns.first);
        const std::size_t count = m_x.outputs.Count();
        Sample* const made = out + before * kChannels;
        PerformYPassOnRow(k, made, count * kChannels);
        std::copy_n(background, before * kChannels, out);
        std::copy_n(background + (before + count) * kChannels, (pixels - before - count) * kChannels,
                    made + count * kChannels);
        if (!m_hasBackground) return;
        if constexpr (kChannels == 4)
            m_paintUnder(background + before * kChannels, made, count);
        else
            PaintUnderMono(background + before, made, m_shares[1][k]);
    }

    /// Pixels without alpha have what their sums of weights say.
    void PaintUnderMono(const Sample* background, Sample* row, std::int32_t shareY) const
    {
        for (std::size_t k = 0; k < m_x.outputs.Count(); ++k) {
            const std::int32_t open = kWholeWeight - Rounded(std::int64_t{m_shares[0][k]} * shareY);
            if (open > 0)
                row[k] = FullScale<Sample>::Add(
                    row[k], static_cast<Sample>(Rounded(std::int64_t{background[k]} * open)));
        }
    }

    const PanZoomRun& m_run;
    Span m_columns; ///< of the effect box
    WeighPixels<Sample> m_weighPixels;
    WeighRows<Sample> m_weighRows = nullptr;
    PaintUnder<Sample> m_paintUnder;
    AxisTaps m_x, m_y;
    SourceLine<Format> m_source;
    RunArray<Sample> m_line, m_ring, m_background;
    RunArray<std::int64_t> m_held; ///< which row of the source a row of the ring is
    RunArray<const Sample*> m_rows;
    RunArray<std::int16_t> m_weights;
    RunArray<std::int32_t> m_shares[2];
    std::size_t m_ringRows = 0, m_rowSamples = 0;
    Sample m_defaultPixel[kChannels] = {};
    bool m_hasBackground = false;
    bool m_streams = false;
    bool m_keepsColour; ///< straight colour stays straight
};

/// Nobody may have called Verify.
bool IsUsable(const PanZoomRun& run)
{
    if (run.a.pixels == nullptr || !run.output.HasPixels() || run.effectBox.IsNull()) return false;
    if (!(run.a.view.format->id == run.output.format->id)) return false;
    if (run.b.view.HasPixels() && !(run.b.view.format->id == run.output.format->id)) return false;
    return Covers(run.output.Box(), Moved(run.effectBox, run.outputOffset[0], run.outputOffset[1]));
}

} // namespace

bool RunPanZoom(const PanZoomRun& run)
{
    if (!IsUsable(run)) return true;
    bool done = true;
    PointFormats::Visit(run.output.format->id, [&](auto format) {
        PanZoom<decltype(format)> panZoom(run);
        done = panZoom.Prepare();
        if (done) panZoom.Run();
    });
    return done;
}

} // namespace vfil

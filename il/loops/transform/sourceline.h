/// \file
/// A row of the source as the resampler takes it: multiplied by alpha, with the border over it, and faded.
#pragma once

#include "il/loops/frame/colourpixel.h"
#include "il/loops/transform/panzoomparams.h"
#include "il/rows/pixarith.h"
#include "il/rows/transform/resamplerows.h"

#include <algorithm>
#include <cstring>

namespace vfil {

/// Bands along one axis, in weights of 16384.
class AxisBands {
public:
    /// \param axis   0 for x, 1 for y.
    /// \param source What the crop leaves of the axis.
    /// \param needed The pixels that are asked for.
    /// \return False when memory is short.
    bool Create(const PanZoomRun& run, int axis, const Span& source, const Span& needed)
    {
        m_first = needed.first;
        if (!m_open.Allocate(needed.Count()) || !m_gain.Allocate(needed.Count())) return false;
        const BandWidths& border = run.border[axis];
        const BandWidths& soft = run.softness[axis];
        const BandWidths& falloff = run.falloff[axis];
        const double opacity = axis == 1 ? run.opacity : 1;
        for (std::int64_t p = needed.first; p <= needed.last; ++p) {
            m_open[At(p)] = Weight(1 - Strength(run, source, p, border, soft));
            m_gain[At(p)] = Weight((1 - Strength(run, source, p, falloff, falloff)) * opacity);
        }
        return true;
    }
    /// How much of the source the border leaves.
    int Open(std::int64_t pixel) const { return m_open[At(pixel)]; }
    int Gain(std::int64_t pixel) const { return m_gain[At(pixel)]; }

private:
    std::size_t At(std::int64_t pixel) const { return static_cast<std::size_t>(pixel - m_first); }
    static double Strength(const PanZoomRun& run, const Span& source, std::int64_t p,
                           const BandWidths& widths, const BandWidths& soft)
    {
        if (widths.IsNone()) return 0;
        const auto width = [](unsigned long w) { return static_cast<long>(std::min(w, 1UL << 60)); };
        return run.bandStrength(static_cast<long>(p), static_cast<unsigned long>(source.first),
                                static_cast<unsigned long>(source.last), width(widths.low), soft.low,
                                width(widths.high), soft.high);
    }
    static std::int32_t Weight(double v)
    {
        return RoundHalfAway(v > 0 ? std::min(v, 1.0) * kWholeWeight : 0);
    }

    RunArray<std::int32_t> m_open, m_gain;
    std::int64_t m_first = 0;
};

/// What happens to a row of the source before it is resampled.
template <class Format>
class SourceLine {
public:
    using Sample = typename Format::Sample;
    static constexpr std::size_t kChannels = Format::kChannels;

    /// \param x, y The pixels that are asked for.
    bool Create(const PanZoomRun& run, const Span (&source)[2], const Span& x, const Span& y)
    {
        m_multiplies = run.multiplies && kChannels == 4;
        m_multiply = FindMultiplyAlpha<Sample>(run.useVectors);
        m_border = run.HasBorder();
        m_fades = run.Fades();
        m_x = x;
        if (!m_border && !m_fades) return true;
        ColourPixel colour;
        colour.Set(*run.a.view.format, run.borderColour);
        std::memcpy(m_colour, colour.bytes, sizeof m_colour);
        if constexpr (kChannels == 4) {
            for (int c = 0; c < 3; ++c)
                m_colour[c] = Rule::Mult(m_colour[c], m_colour[3]);
        }
        return m_bands[0].Create(run, 0, source[0], x) && m_bands[1].Create(run, 1, source[1], y);
    }
    bool Fades() const { return m_fades; }
    /// Treat does anything at all.
    bool Changes() const { return m_multiplies || m_border || m_fades; }
    const AxisBands& Bands(int axis) const { return m_bands[axis]; }

    /// Treats the pixels that are asked for, of row y.
    void Treat(Sample* line, std::int64_t y) const
    {
        if (m_multiplies) m_multiply(line, m_x.Count());
        if (m_border) PaintBorder(line, m_bands[1].Open(y));
        if (m_fades) Fade(line, m_bands[1].Gain(y));
    }

private:
    using Rule = FullScale<Sample>;

    static std::int32_t Product(std::int32_t a, std::int32_t b)
    {
        return static_cast<std::int32_t>((std::int64_t{a} * b + kWholeWeight / 2) >> kWeightBits);
    }
    void PaintBorder(Sample* pixel, int openY) const
    {
        for (std::int64_t x = m_x.first; x <= m_x.last; ++x, pixel += kChannels) {
            const std::int32_t open = Product(m_bands[0].Open(x), openY);
            if (open == kWholeWeight) continue;
            Sample front[kChannels];
            for (std::size_t c = 0; c < kChannels; ++c)
                front[c] = static_cast<Sample>(Product(m_colour[c], kWholeWeight - open));
            for (std::size_t c = 0; c < kChannels; ++c) {
                const auto seen =
                    kChannels == 4
                        ? Rule::Mult(pixel[c], static_cast<Sample>(Rule::kFull - front[kChannels - 1]))
                        : static_cast<Sample>(Product(pixel[c], open));
                pixel[c] = Rule::Add(front[c], seen);
            }
        }
    }
    void Fade(Sample* pixel, int gainY) const
    {
        for (std::int64_t x = m_x.first; x <= m_x.last; ++x, pixel += kChannels) {
            const std::int32_t gain = Product(m_bands[0].Gain(x), gainY);
            for (std::size_t c = 0; c < kChannels; ++c)
                pixel[c] = static_cast<Sample>(Product(pixel[c], gain));
        }
    }

    MultiplyAlpha<Sample> m_multiply = nullptr;
    AxisBands m_bands[2];
    Sample m_colour[kChannels] = {};
    Span m_x;
    bool m_multiplies = false, m_border = false, m_fades = false;
};

} // namespace vfil

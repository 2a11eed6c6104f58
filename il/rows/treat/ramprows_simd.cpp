/// \file
/// The vector forms of the kernels of runs between two colours, for the level VFIL_LEVEL.
#include "il/rows/treat/ramplanes.h"
#include "il/rows/treat/rampparams.h"
#include "il/rows/vecdouble.h"
#include "il/rows/vecwindow.h"

namespace vfil {
namespace {

constexpr double Whole(std::size_t count)
{
    return static_cast<double>(count);
}

/// A vector of samples of a run, from any pixel on, by the formula itself.
template <class Sample>
class ExactBlock {
public:
    static constexpr std::size_t kSamples = kBytes / sizeof(Sample);

    explicit ExactBlock(const RampSpan& span)
        : m_inverse(SplatDouble(span.inverse)), m_pixels(span.channels == 1 ? kMonoPixels : kFourPixels)
    {
        for (std::size_t i = 0; i < kPeriod; ++i) {
            m_difference[i] = span.difference[span.channels == 1 ? 0 : i % 4];
            m_first[i] = span.first[span.channels == 1 ? 0 : i % 4];
        }
    }
    U8 operator()(double pixel) const
    {
        const F64 from = SplatDouble(pixel);
        S32 lanes[kSamples / kLanes32];
        for (std::size_t i = 0; i < kSamples / kLanes32; ++i)
            lanes[i] = {HalvesToInt32(Values(from, i * kLanes32), Values(from, i * kLanes32 + kLanes64))};
        if constexpr (sizeof(Sample) == 1) {
            return NarrowLanes(lanes[0], lanes[1], lanes[2], lanes[3]);
        } else {
            return NarrowPairs(lanes[0], lanes[1]);
        }
    }

private:
    static constexpr std::size_t kPeriod = kLanes64 > 4 ? kLanes64 : 4;

    struct Pixels {
        explicit constexpr Pixels(std::size_t channels)
        {
            for (std::size_t s = 0; s < kSamples; ++s)
                ofSamples[s] = Whole(s / channels);
        }
        double ofSamples[kSamples] = {};
    };
    static constexpr Pixels kMonoPixels{1}, kFourPixels{4};

    F64 Values(F64 from, std::size_t sample) const
    {
        constexpr double kFull = sizeof(Sample) == 1 ? 255 : 65535;
        const F64 pixels = from + LoadDoubles(m_pixels.ofSamples + sample);
        const F64 way = pixels * LoadDoubles(m_difference + sample % kPeriod) * m_inverse;
        return NearestWhole((way + LoadDoubles(m_first + sample % kPeriod)) * SplatDouble(kFull));
    }

    F64 m_inverse;
    const Pixels& m_pixels;
    alignas(kBytes) double m_difference[kPeriod];
    alignas(kBytes) double m_first[kPeriod];
};

/// The same of RGBA bytes in whole numbers, whose upper 9 bits are the sample; two vectors in turn. Where one
/// of their samples may be rounded the other way by the formula, the formula decides.
class FixedBlocks {
public:
    static constexpr std::size_t kPixels = kBytes / 4;
    /// Longer runs would be in doubt too often.
    static constexpr std::size_t kMostPixels = 16384;

    FixedBlocks(const RampSpan& span, const ExactBlock<std::uint8_t>& exact, std::size_t pixel)
        : m_exact(exact), m_pixel(static_cast<double>(pixel))
    {
        // A step is off by half a bit at most, the start by one. The doubt is a power of two, so that bits
        // tell.
        std::uint32_t doubt = 16;
        while (doubt < span.pixels / 2 + 2)
            doubt *= 2;
        m_sure = Splat32(static_cast<std::int32_t>(kOne - 2 * doubt));
        const Line lines[4] = {{span, 0}, {span, 1}, {span, 2}, {span, 3}};
        alignas(kBytes) std::uint32_t places[kLanes32];
        alignas(kBytes) std::uint32_t steps[kLanes32];
        for (std::size_t i = 0; i < kLanes32; ++i) {
            const Line& line = lines[i % 4];
            places[i] = line.start + doubt + static_cast<std::uint32_t>(pixel + i / 4) * line.step;
            steps[i] = line.step * static_cast<std::uint32_t>(kLanes32 / 4);
        }
        const S32 step{Load(reinterpret_cast<const std::uint8_t*>(steps)).bits};
        m_places[0] = {Load(reinterpret_cast<const std::uint8_t*>(places)).bits};
        for (std::size_t v = 1; v < 4; ++v)
            m_places[v] = m_places[v - 1] + step;
        m_steps = ShiftUp<2>(step);
    }
    /// Writes the next two vectors.
    template <bool streaming>
    void Write(std::uint8_t* out)
    {
        S32 surest = m_sure;
        StoreBlock<streaming>(out, Next(surest));
        StoreBlock<streaming>(out + kBytes, Next(surest));
        if (AnyWithout(surest, -1)) {
            StoreBlock<streaming>(out, m_exact(m_pixel));
            StoreBlock<streaming>(out + kBytes, m_exact(m_pixel + kPixels));
        }
        m_pixel += 2 * kPixels;
    }

private:
    static constexpr int kFraction = 23;
    static constexpr std::uint32_t kOne = 1U << kFraction;

    /// A channel: one half above its sample, so that the whole part is rounded. One that does not change is
    /// never in doubt.
    struct Line {
        Line(const RampSpan& span, std::size_t channel)
        {
            const double first = span.first[channel] * 255;
            const double each = span.difference[channel] * span.inverse * 255 * kOne;
            start = each == 0 ? ToSample(first) * kOne : static_cast<std::uint32_t>(first * kOne);
            start += kOne / 2;
            step = static_cast<std::uint32_t>(static_cast<std::int32_t>(each + (each < 0 ? -0.5 : 0.5)));
        }
        static std::uint32_t ToSample(double value)
        {
            double lanes[kLanes64];
            StoreDoubles(lanes, NearestWhole(SplatDouble(value)));
            return static_cast<std::uint32_t>(lanes[0]);
        }
        std::uint32_t start, step;
    };

    /// \param surest  has 0 where a sample is in doubt
    U8 Next(S32& surest)
    {
        S32 lanes[4];
        for (std::size_t v = 0; v < 4; ++v) {
            lanes[v] = ShiftDownBits<kFraction>(m_places[v]);
            surest = Min(surest, m_places[v] & m_sure);
            m_places[v] = m_places[v] + m_steps;
        }
        return NarrowLanes(lanes[0], lanes[1], lanes[2], lanes[3]);
    }

    const ExactBlock<std::uint8_t>& m_exact;
    double m_pixel;
    S32 m_sure;
    S32 m_places[4], m_steps;
};

template <bool streaming, class Sample>
void Ramp(const RampSpan& span, Sample* row)
{
    auto* const out = reinterpret_cast<std::uint8_t*>(row);
    const std::size_t pixelBytes = span.channels * sizeof(Sample);
    const std::size_t bytes = span.pixels * pixelBytes;
    const ExactBlock<Sample> exact(span);
    const auto part = [&](std::size_t at, std::size_t end) {
        for (; at < end; at += kBytes)
            StorePart(out + at, exact(Whole(at / pixelBytes)), end - at < kBytes ? end - at : kBytes);
    };
    std::size_t at = BytesBefore<streaming>(out, bytes, pixelBytes);
    part(0, at);
    if constexpr (sizeof(Sample) == 1) {
        if (span.channels == 4 && span.pixels >= kBytes && span.pixels <= FixedBlocks::kMostPixels) {
            FixedBlocks blocks(span, exact, at / 4);
            for (; bytes - at >= 2 * kBytes; at += 2 * kBytes)
                blocks.Write<streaming>(out + at);
        }
    }
    double pixel = Whole(at / pixelBytes);
    const double pixels = Whole(kBytes / pixelBytes);
    for (; bytes - at >= kBytes; at += kBytes, pixel += pixels)
        StoreBlock<streaming>(out + at, exact(pixel));
    part(at, bytes);
}

} // namespace

namespace VFIL_LEVEL {

void Fill(RampRows& rows)
{
    rows.ramp8[false] = Ramp<false, std::uint8_t>;
    rows.ramp8[true] = Ramp<true, std::uint8_t>;
    rows.ramp16[false] = Ramp<false, std::uint16_t>;
    rows.ramp16[true] = Ramp<true, std::uint16_t>;
}

} // namespace VFIL_LEVEL
} // namespace vfil

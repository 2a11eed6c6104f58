/// \file
/// The vector forms of the kernels of the colour ramps, for the level VFIL_LEVEL.
#include "il/rows/treat/rampparams.h"
#include "il/rows/vecdouble.h"
#include "il/rows/vecwindow.h"

namespace vfil {
namespace {

/// A vector of samples of a run, from any pixel on, by the formula itself.
template <class Sample>
class ExactBlock {
public:
    static constexpr std::size_t kSamples = kBytes / sizeof(Sample);

    explicit ExactBlock(const RampSpan& span) : m_inverse(SplatDouble(span.inverse))
    {
        for (std::size_t s = 0; s < kSamples; ++s) {
            m_pixel[s] = static_cast<double>(s / span.channels);
            m_difference[s] = span.difference[s % span.channels];
            m_first[s] = span.first[s % span.channels];
        }
    }
    U8 operator()(std::size_t pixel) const
    {
        const F64 from = SplatDouble(static_cast<double>(pixel));
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
    F64 Values(F64 from, std::size_t sample) const
    {
        constexpr double kFull = sizeof(Sample) == 1 ? 255 : 65535;
        const F64 pixels = from + LoadDoubles(m_pixel + sample);
        const F64 way = pixels * LoadDoubles(m_difference + sample) * m_inverse;
        return NearestWhole((way + LoadDoubles(m_first + sample)) * SplatDouble(kFull));
    }

    F64 m_inverse;
    double m_pixel[kSamples], m_difference[kSamples], m_first[kSamples];
};

/// The same of RGBA bytes in whole numbers, whose upper 9 bits are the sample; a vector of the samples in
/// turn. Where one of them may be rounded the other way by the formula, the formula decides.
class FixedBlock {
public:
    static constexpr std::size_t kPixels = kBytes / 4;
    /// Longer runs would be in doubt too often.
    static constexpr std::size_t kMostPixels = 16384;

    FixedBlock(const RampSpan& span, const ExactBlock<std::uint8_t>& exact, std::size_t pixel)
        : m_exact(exact), m_pixel(pixel)
    {
        // A step is off by half a bit at most, the start by one. The doubt is a power of two, so that bits
        // tell.
        constexpr std::uint32_t kBits = (1U << kFraction) - 1;
        std::uint32_t doubt = 16;
        while (doubt < span.pixels / 2 + 2)
            doubt *= 2;
        m_doubt = Splat32(static_cast<std::int32_t>(doubt));
        m_sure = static_cast<std::int32_t>(kBits & ~(2 * doubt - 1));
        std::uint32_t places[kBytes / 4], steps[kBytes / 4];
        for (std::size_t v = 0; v < 4; ++v) {
            for (std::size_t s = 0; s < kLanes32; ++s) {
                const std::size_t sample = v * kLanes32 + s;
                const Line line(span, sample % 4);
                places[s] = line.start + static_cast<std::uint32_t>(pixel + sample / 4) * line.step;
                steps[s] = line.step * static_cast<std::uint32_t>(kPixels);
            }
            m_places[v] = {Load(reinterpret_cast<const std::uint8_t*>(places)).bits};
            m_steps = {Load(reinterpret_cast<const std::uint8_t*>(steps)).bits};
        }
    }
    /// The next vector.
    U8 operator()()
    {
        S32 lanes[4];
        bool isInDoubt = false;
        for (std::size_t v = 0; v < 4; ++v) {
            lanes[v] = ShiftDownBits<kFraction>(m_places[v]);
            isInDoubt |= AnyWithout(m_places[v] + m_doubt, m_sure);
            m_places[v] = m_places[v] + m_steps;
        }
        const std::size_t pixel = m_pixel;
        m_pixel += kPixels;
        return isInDoubt ? m_exact(pixel) : NarrowLanes(lanes[0], lanes[1], lanes[2], lanes[3]);
    }

private:
    static constexpr int kFraction = 23;

    /// A channel: one half above its sample, so that the whole part is rounded.
    struct Line {
        Line(const RampSpan& span, std::size_t channel)
        {
            constexpr double kOne = 1U << kFraction;
            const double first = span.first[channel] * 255 * kOne;
            const double each = span.difference[channel] * span.inverse * 255 * kOne;
            if (each == 0) {
                start = static_cast<std::uint32_t>(ToSample(span.first[channel] * 255)) << kFraction;
            } else {
                start = static_cast<std::uint32_t>(first);
            }
            start += 1U << (kFraction - 1);
            step = static_cast<std::uint32_t>(static_cast<std::int32_t>(each + (each < 0 ? -0.5 : 0.5)));
        }
        static double ToSample(double value)
        {
            double lanes[kLanes64];
            StoreDoubles(lanes, NearestWhole(SplatDouble(value)));
            return lanes[0];
        }
        std::uint32_t start, step;
    };

    const ExactBlock<std::uint8_t>& m_exact;
    std::size_t m_pixel;
    S32 m_doubt;
    std::int32_t m_sure;
    S32 m_places[4], m_steps;
};

/// Fewer bytes than a vector.
inline void StorePart(std::uint8_t* out, U8 v, std::size_t bytes)
{
    std::uint8_t whole[kBytes];
    Store(whole, v);
    std::memcpy(out, whole, bytes);
}

template <bool streaming>
void StoreBlock(std::uint8_t* out, U8 v)
{
    if constexpr (streaming) {
        StoreStreaming(out, v);
    } else {
        Store(out, v);
    }
}

/// Bytes of a row before those that go around the cache; all where that cannot be.
template <bool streaming>
std::size_t BytesBefore(const std::uint8_t* out, std::size_t bytes, std::size_t pixelBytes)
{
    if constexpr (!streaming) return 0;
    const std::size_t head = BytesToAligned(out);
    return head % pixelBytes != 0 || head > bytes ? bytes : head;
}

template <bool streaming, class Sample>
void Ramp(const RampSpan& span, Sample* row)
{
    auto* const out = reinterpret_cast<std::uint8_t*>(row);
    const std::size_t pixelBytes = span.channels * sizeof(Sample);
    const std::size_t bytes = span.pixels * pixelBytes;
    const ExactBlock<Sample> exact(span);
    const std::size_t head = BytesBefore<streaming>(out, bytes, pixelBytes);
    const auto part = [&](std::size_t at, std::size_t end) {
        for (; at < end; at += kBytes)
            StorePart(out + at, exact(at / pixelBytes), end - at < kBytes ? end - at : kBytes);
    };
    part(0, head);
    std::size_t at = head;
    if constexpr (sizeof(Sample) == 1) {
        if (span.channels == 4 && span.pixels >= kBytes && span.pixels <= FixedBlock::kMostPixels) {
            FixedBlock block(span, exact, at / pixelBytes);
            for (; bytes - at >= kBytes; at += kBytes)
                StoreBlock<streaming>(out + at, block());
        }
    }
    for (; bytes - at >= kBytes; at += kBytes)
        StoreBlock<streaming>(out + at, exact(at / pixelBytes));
    part(at, bytes);
}

F64 LinearIndices(const LinearPlaces& places, F64 pixels)
{
    const F64 distance = SplatDouble(places.start) + pixels * SplatDouble(places.step);
    const F64 nearest = NearestWhole(distance * SplatDouble(places.inverse));
    const Mask64 isAbove = distance < nearest * SplatDouble(places.length);
    const F64 index = nearest - Select(isAbove, SplatDouble(1), SplatDouble(0));
    return Min(Max(index, SplatDouble(0)), SplatDouble(places.last));
}

F64 RadialIndices(const RadialPlaces& places, F64 pixels)
{
    const F64 x = SplatDouble(places.x) + pixels;
    return Min(SquareRoot(x * x + SplatDouble(places.square)), SplatDouble(places.last));
}

inline S32 WholeIndices(const LinearPlaces& places, std::size_t pixel)
{
    const F64 first = CountFrom(0) + SplatDouble(static_cast<double>(pixel));
    return {
        HalvesToInt32(LinearIndices(places, first), LinearIndices(places, first + SplatDouble(kLanes64)))};
}

inline S32 WholeIndices(const RadialPlaces& places, std::size_t pixel)
{
    const F64 first = CountFrom(0) + SplatDouble(static_cast<double>(pixel));
    return {
        HalvesToInt32(RadialIndices(places, first), RadialIndices(places, first + SplatDouble(kLanes64)))};
}

template <class Value>
void StoreIndices(std::int32_t* indices, std::size_t pixels, Value value)
{
    auto* const out = reinterpret_cast<std::uint8_t*>(indices);
    std::size_t at = 0;
    for (; pixels - at >= kLanes32; at += kLanes32)
        Store(out + 4 * at, {value(at).bits});
    if (at != pixels) StorePart(out + 4 * at, {value(at).bits}, 4 * (pixels - at));
}

void Linear(const LinearPlaces& places, std::int32_t* indices, std::size_t pixels)
{
    StoreIndices(indices, pixels, [&](std::size_t at) { return WholeIndices(places, at); });
}

/// Roots of floats tell most indices: such a root of less than 2 to the power of 24 is off by three
/// 2^-24ths of itself at most. Those near a whole number are made of doubles.
class FloatRoots {
public:
    explicit FloatRoots(const RadialPlaces& places)
        : m_places(places),
          m_square(SplatFloat(static_cast<float>(places.square < kFar ? places.square : kFar)))
    {
        m_most = (static_cast<float>(places.last) + 0.5F) * kOne;
        std::int32_t doubt = 2;
        while (doubt < places.last * (3 * kOne * 0x1p-24) + 1)
            doubt *= 2;
        m_doubt = Splat32(doubt);
        m_sure = static_cast<std::int32_t>(kOne) - 2 * doubt;
    }
    static bool AreWorthwhile(const RadialPlaces& places) { return places.last < 0x1p16; }

    S32 operator()(std::size_t pixel) const
    {
        const F32 x = SplatFloat(static_cast<float>(m_places.x + static_cast<double>(pixel))) + m_lanes;
        const S32 root = ToWhole(SquareRoot(x * x + m_square) * SplatFloat(kOne), m_most);
        if (AnyWithout(root + m_doubt, m_sure)) return WholeIndices(m_places, pixel);
        return ShiftDownBits<kFraction>(root);
    }

private:
    static constexpr int kFraction = 12;
    static constexpr float kOne = 1 << kFraction;
    static constexpr double kFar = 1e30; ///< more than the square of any last index

    static F32 Lanes()
    {
        float lanes[kLanes32];
        for (std::size_t i = 0; i < kLanes32; ++i)
            lanes[i] = static_cast<float>(i);
        return LoadFloats(lanes);
    }

    const RadialPlaces& m_places;
    F32 m_square, m_lanes = Lanes();
    float m_most;
    S32 m_doubt;
    std::int32_t m_sure;
};

void Radial(const RadialPlaces& places, std::int32_t* indices, std::size_t pixels)
{
    if (!FloatRoots::AreWorthwhile(places))
        return StoreIndices(indices, pixels, [&](std::size_t at) { return WholeIndices(places, at); });
    StoreIndices(indices, pixels, FloatRoots(places));
}

#if defined(__AVX2__)
template <bool streaming, class Pixel>
void LookUp(const void* table, const std::int32_t* indices, void* row, std::size_t pixels)
{
    const auto* const entries = static_cast<const Pixel*>(table);
    auto* const out = static_cast<Pixel*>(row);
    const auto part = [&](std::size_t at, std::size_t end) {
        for (; at < end; ++at)
            out[at] = entries[indices[at]];
    };
    constexpr std::size_t kPixels = Window<Pixel>::kPixels;
    auto* const bytes = reinterpret_cast<std::uint8_t*>(out);
    std::size_t at = BytesBefore<streaming>(bytes, pixels * sizeof(Pixel), sizeof(Pixel)) / sizeof(Pixel);
    part(0, at);
    for (; pixels - at >= kPixels; at += kPixels) {
        const std::int32_t first = indices[at], last = indices[at + kPixels - 1];
        const std::int32_t from = first < last ? first : last;
        Window<Pixel> window;
        if (!window.Set(indices + at, from)) {
            part(at, at + kPixels);
            continue;
        }
        const U8 found = window.LookUp(Load(reinterpret_cast<const std::uint8_t*>(entries + from)));
        StoreBlock<streaming>(bytes + at * sizeof(Pixel), found);
    }
    part(at, pixels);
}
#endif

template <bool streaming>
void FillStreaming(RampRows& rows)
{
    rows.ramp8[streaming] = Ramp<streaming, std::uint8_t>;
    rows.ramp16[streaming] = Ramp<streaming, std::uint16_t>;
#if defined(__AVX2__)
    rows.lookUp[2][streaming] = LookUp<streaming, std::uint32_t>;
    rows.lookUp[3][streaming] = LookUp<streaming, std::uint64_t>;
#endif
}

} // namespace

namespace VFIL_LEVEL {

void Fill(RampRows& rows)
{
    FillStreaming<false>(rows);
    FillStreaming<true>(rows);
    rows.linear = Linear;
    rows.radial = Radial;
}

} // namespace VFIL_LEVEL
} // namespace vfil

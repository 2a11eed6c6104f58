/// \file
/// The vector forms of the kernels that fill missing rows, for the level VFIL_LEVEL.
#include "il/rows/field/deinterlaceparams.h"
#include "il/rows/vec64.h"
#include "il/rows/vecselect.h"

namespace vfil {
namespace {

template <bool streaming, class Sample>
void Interpolate_Intrinsics(const Sample* a, const Sample* b, Sample* out, std::size_t samples)
{
    MapRow<streaming, sizeof(Sample)>(a, b, out, samples * sizeof(Sample),
                                      [](U8 one, U8 other, Part) { return AverageOf<Sample>(one, other); });
}

// Between both ends of the ramp a result is space * w + time * (1 - w), with w = step / width; at the ends it
// is one of the two means, which w = 0 and w = 1 give as well. So limits of the step stand for the tests, and
// a ramp of no width, where the lower end goes first, is one of width 1.

inline int WidthOf(const MotionRamp& ramp)
{
    return ramp.moving > ramp.still ? ramp.moving - ramp.still : 1;
}

/// Divides unsigned lanes by a number d of 1 .. 65535. With 2^shift <= d < 2^(shift + 1) a factor f of 16
/// bits stands for 2^(16 + shift) / d, rounded up where that makes d f at most 2^shift too large: then
/// quotients are exact. Else it is rounded down, which makes d f at most 2^shift too small, and lanes are
/// made 1 larger for it.
class Divisor {
public:
    explicit Divisor(int divisor)
    {
        const auto d = static_cast<std::uint32_t>(divisor);
        const int shift = 31 - __builtin_clz(d);
        const std::uint64_t power = std::uint64_t{65536} << shift;
        const std::uint64_t down = (power - 1) / d; // of a power of two, too, it has 16 bits
        const bool roundsUp = (d & (d - 1)) != 0 && (down + 1) * d - power <= std::uint64_t{1} << shift;
        m_factor = Splat(static_cast<int>(roundsUp ? down + 1 : down));
        m_more = Splat(roundsUp ? 0 : 1);
        m_shift = shift;
    }
    /// Of lanes below 65535.
    U16 Of(U16 v) const { return ShiftRight(MulHigh(v + m_more, m_factor), m_shift); }

private:
    U16 m_factor, m_more;
    int m_shift;
};

/// The mix of bytes in whole numbers: (space * step + time * (width - step)) / width, whose numerator fits 16
/// bits. Doubles that are rounded as they come give the same unless the quotient is half a number, which they
/// may miss by their last bit: such bytes, if there are any, are made anew.
class ByteMix {
public:
    explicit ByteMix(const MotionRamp& ramp)
        : m_still(SplatU32(0x01010101U * static_cast<std::uint32_t>(ramp.still))),
          m_most(SplatU32(0x01010101U * static_cast<std::uint32_t>(WidthOf(ramp)))),
          m_width(Splat(WidthOf(ramp))), m_half(Splat(WidthOf(ramp) / 2)), m_divisor(WidthOf(ramp)),
          m_reciprocal(ramp.reciprocal), m_middle(SplatU32(0x01010101U * ExactMiddle(ramp)))
    {}

    /// Whether a quotient may be half a number and not exact in doubles.
    static bool MayMissHalves(const MotionRamp& ramp)
    {
        const int width = WidthOf(ramp);
        return width % 2 == 0 && (width & (width - 1)) != 0;
    }

    template <bool mayMissHalves>
    U8 Mixed(U8 space, U8 time, U8 motion) const
    {
        const U8 step = Min(SubClip(motion, m_still), m_most);
        const U16Pair s = Widen(space);
        const U16Pair t = Widen(time);
        const U16Pair w = Widen(step);
        const Quotient low = Divided(s.lo * w.lo + t.lo * (m_width - w.lo) + m_half);
        const Quotient high = Divided(s.hi * w.hi + t.hi * (m_width - w.hi) + m_half);
        const U8 mixed = Narrow({low.whole, high.whole});
        if constexpr (!mayMissHalves) return mixed;
        const std::uint64_t halves =
            BitsOf(Equal(Narrow({low.rest, high.rest}), U8{})) & ~BitsOf(Equal(step, m_middle));
        return halves == 0 ? mixed : Settled(mixed, halves, space, time, step);
    }

private:
    struct Quotient {
        U16 whole, rest;
    };

    /// The step whose share is one half, where every other result lies in the middle, if doubles have it
    /// exactly so; else none.
    static std::uint32_t ExactMiddle(const MotionRamp& ramp)
    {
        const int middle = WidthOf(ramp) / 2;
        return middle * ramp.reciprocal == 0.5 ? static_cast<std::uint32_t>(middle) : 0xFF;
    }

    Quotient Divided(U16 v) const
    {
        const U16 whole = m_divisor.Of(v);
        return {whole, v - whole * m_width};
    }

    U8 Settled(U8 mixed, std::uint64_t halves, U8 space, U8 time, U8 step) const
    {
        std::uint8_t results[kBytes];
        std::uint8_t spaces[kBytes];
        std::uint8_t times[kBytes];
        std::uint8_t steps[kBytes];
        Store(results, mixed);
        Store(spaces, space);
        Store(times, time);
        Store(steps, step);
        for (; halves != 0; halves &= halves - 1) {
            const int i = __builtin_ctzll(halves);
            const double w = steps[i] * m_reciprocal;
            const double raised = w * spaces[i] + (1.0 - w) * times[i] + 0.5;
            results[i] = static_cast<std::uint8_t>(raised);
        }
        return Load(results);
    }

    U8 m_still, m_most;
    U16 m_width, m_half;
    Divisor m_divisor;
    double m_reciprocal;
    U8 m_middle;
};

template <bool streaming, bool mayMissHalves>
void MixBytes(const RowsAround<std::uint8_t>& rows, std::uint8_t* out, std::size_t bytes,
              const MotionRamp& ramp)
{
    MapRow<streaming, 1>(rows.above, rows.below, out, bytes,
                         [rows, mix = ByteMix(ramp)](U8 above, U8 below, Part part) {
                             const U8 here = LoadPart(rows.here, part);
                             const U8 compared = LoadPart(rows.compared, part);
                             return mix.Mixed<mayMissHalves>(Average(above, below), Average(here, compared),
                                                             AbsDiff(here, compared));
                         });
}

template <bool streaming>
void AdaptiveInterpolate8(const RowsAround<std::uint8_t>& rows, std::uint8_t* out, std::size_t samples,
                          const MotionRamp& ramp)
{
    if (ByteMix::MayMissHalves(ramp)) {
        MixBytes<streaming, true>(rows, out, samples, ramp);
    } else {
        MixBytes<streaming, false>(rows, out, samples, ramp);
    }
}

/// The mix of words, in doubles.
class WordMix {
public:
    explicit WordMix(const MotionRamp& ramp)
        : m_still(Splat(ramp.still)), m_most(Splat(WidthOf(ramp))),
          m_reciprocal(SplatDouble(1.0 / WidthOf(ramp)))
    {}

    U8 Mixed(U16 space, U16 time, U16 motion) const
    {
        const S32Pair s = WidenFull(space);
        const S32Pair t = WidenFull(time);
        const S32Pair w = WidenFull(Min(Max(motion, m_still) - m_still, m_most));
        return {NarrowFull({MixedHalves(s.lo, t.lo, w.lo), MixedHalves(s.hi, t.hi, w.hi)}).bits};
    }

private:
    S32 MixedHalves(S32 space, S32 time, S32 step) const
    {
        return {HalvesToInt32(MixedDoubles<0>(space, time, step), MixedDoubles<1>(space, time, step))};
    }

    template <int half>
    F64 MixedDoubles(S32 space, S32 time, S32 step) const
    {
        const F64 w = HalfToDouble<half>(step.bits) * m_reciprocal;
        const F64 sum =
            w * HalfToDouble<half>(space.bits) + (SplatDouble(1) - w) * HalfToDouble<half>(time.bits);
        return sum + SplatDouble(0.5);
    }

    U16 m_still, m_most;
    F64 m_reciprocal;
};

template <bool streaming>
void AdaptiveInterpolate16(const RowsAround<std::uint16_t>& rows, std::uint16_t* out, std::size_t samples,
                           const MotionRamp& ramp)
{
    MapRow<streaming, 2>(rows.above, rows.below, out, 2 * samples,
                         [rows, mix = WordMix(ramp)](U8 above, U8 below, Part part) {
                             const U16 here{LoadPart(rows.here, part).bits};
                             const U16 compared{LoadPart(rows.compared, part).bits};
                             return mix.Mixed(Average(U16{above.bits}, U16{below.bits}),
                                              Average(here, compared), AbsDiff(here, compared));
                         });
}

template <bool streaming>
void FillStreaming(DeinterlaceRows& rows)
{
    rows.mean8[streaming] = Interpolate_Intrinsics<streaming, std::uint8_t>;
    rows.mean16[streaming] = Interpolate_Intrinsics<streaming, std::uint16_t>;
    rows.adaptive8[streaming] = AdaptiveInterpolate8<streaming>;
    rows.adaptive16[streaming] = AdaptiveInterpolate16<streaming>;
}

} // namespace

namespace VFIL_LEVEL {

void Fill(DeinterlaceRows& rows)
{
    FillStreaming<false>(rows);
    FillStreaming<true>(rows);
}

} // namespace VFIL_LEVEL
} // namespace vfil

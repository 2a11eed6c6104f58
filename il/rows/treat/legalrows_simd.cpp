/// \file
/// The vector forms of the legalizer's kernels, for the level VFIL_LEVEL. Pairs that a rule leaves as they
/// are cost a test.
#include "il/rows/treat/legalsaturationlanes.h"

namespace vfil {
namespace {

#if defined(__AVX2__)

/// Channels of pixels as the 16-bit lanes of each 32 bits, as DotPairs takes them: (red, green), and (blue,
/// green) again.
struct Rgb {
    U16 redGreen, blueGreen;
};

template <class Channel>
Rgb EachOf(const Rgb& rgb, Channel channel)
{
    return {channel(rgb.redGreen), channel(rgb.blueGreen)};
}

/// In both lanes.
U16 Most(const Rgb& rgb)
{
    const U16 most = MaxSigned(rgb.redGreen, rgb.blueGreen);
    return MaxSigned(most, SwapHalves(most));
}

U16 Least(const Rgb& rgb)
{
    const U16 least = MinSigned(rgb.redGreen, rgb.blueGreen);
    return MinSigned(least, SwapHalves(least));
}

bool AreInRange(const Rgb& a, const Rgb& b)
{
    const U16 bits = (a.redGreen | a.blueGreen) | (b.redGreen | b.blueGreen);
    return IsZero(bits & Splat(~255));
}

/// Lanes of 16 bits, in both.
U16 InBoth(S32 v)
{
    return {(v | ShiftUp<16>(v)).bits};
}

struct Chroma {
    S32 cb, cr;
};

class SampleWeights {
public:
    explicit SampleWeights(const SampleForm& form)
        : m_redGreen(SplatPair16(form.red, form.green / 2)),
          m_blueGreen(SplatPair16(form.blue, form.green - form.green / 2)), m_constant(Splat32(form.constant))
    {}

    /// In range, of channels of 0 .. 255.
    S32 operator()(const Rgb& rgb) const
    {
        return ShiftDown<16>(DotPairs({rgb.redGreen.bits}, m_redGreen) +
                             DotPairs({rgb.blueGreen.bits}, m_blueGreen) + m_constant);
    }

private:
    S32 m_redGreen, m_blueGreen; ///< a weight of green may need two lanes
    S32 m_constant;
};

/// What chroma brings to the channels, 65536ths.
struct Terms {
    S32 red, green, blue;
};

/// The way to RGB and back.
class Matrices {
public:
    explicit Matrices(const LegalParams& params)
        : m_luma(Splat32(params.luma)), m_redOfCr(Splat32(params.red.cr)),
          m_greenOfCb(Splat32(params.green.cb)), m_greenOfCr(Splat32(params.green.cr)),
          m_blueOfCb(Splat32(params.blue.cb)), m_red(Splat32(params.red.constant)),
          m_green(Splat32(params.green.constant)), m_blue(Splat32(params.blue.constant)), m_y(params.y),
          m_cb(params.cb), m_cr(params.cr)
    {}

    Terms TermsOf(Chroma c) const
    {
        return {c.cr * m_redOfCr, c.cb * m_greenOfCb + c.cr * m_greenOfCr, c.cb * m_blueOfCb};
    }

    Rgb ToRgb(S32 y, const Terms& terms) const
    {
        const S32 luma = y * m_luma;
        const S32 green = ShiftDown<16>(luma + (terms.green + m_green));
        return {PackBeside(ShiftDown<16>(luma + (terms.red + m_red)), green),
                PackBeside(ShiftDown<16>(luma + (terms.blue + m_blue)), green)};
    }

    Rgb ToRgb(S32 y, Chroma c) const { return ToRgb(y, TermsOf(c)); }

    S32 LumaOf(const Rgb& rgb) const { return m_y(rgb); }

    Chroma ChromaOf(const Rgb& rgb) const { return {m_cb(rgb), m_cr(rgb)}; }

    /// The right pixel's colour does not reach chroma.
    [[gnu::always_inline]] Pairs ToPairs(const Rgb& left, const Rgb& right) const
    {
        return {m_y(left), m_cb(left), m_y(right), m_cr(left)};
    }

private:
    S32 m_luma, m_redOfCr, m_greenOfCb, m_greenOfCr, m_blueOfCb, m_red, m_green, m_blue;
    SampleWeights m_y, m_cb, m_cr;
};

struct Clipped {
    Rgb operator()(const Rgb& rgb) const
    {
        return EachOf(rgb, [](U16 v) { return MinSigned(MaxSigned(v, Splat(0)), Splat(255)); });
    }
};

struct Dimmed {
    [[gnu::always_inline]] Rgb operator()(const Rgb& rgb) const
    {
        const Rgb positive = EachOf(rgb, [](U16 v) { return MaxSigned(v, Splat(0)); });
        const U16 most = Most(positive);
        if (IsZero(most & Splat(~255))) return positive;
        // Less than a half: floats come out too large where the quotient is nearest to one. So it is right
        // for all that a largest channel can be, up to 547.
        const F32 largest = ToFloat(S32{most.bits} & Splat32(0xFFFF));
        const F32 quotient = SplatFloat(255 * 65536.0F) / largest;
        const U16 factor = InBoth(ToWhole(quotient + SplatFloat(0.498F), 65535));
        const auto above = Greater(most, Splat(255));
        return EachOf(positive, [=](U16 v) {
            const U16 dimmed = MulHigh(v, factor) + ShiftRight<15>(v * factor);
            return Select(above, MinSigned(dimmed, Splat(255)), v);
        });
    }
};

/// How far the channels of a colour are above luma's part of them.
struct Reach {
    S32 below, above;
};

Reach ReachOf(const Terms& terms)
{
    return {Min(Min(terms.red, terms.green), terms.blue), Max(Max(terms.red, terms.green), terms.blue)};
}

/// See ShareOf and Settled of the plain form. What was legal comes out as it was.
class Settler {
public:
    explicit Settler(const LegalParams& params)
        : m_luma(Splat32(params.luma)), m_lowest(Splat32(params.luma - 1 - kOneCode)),
          m_perLuma(SplatFloat(static_cast<float>(params.luma)))
    {}

    [[gnu::always_inline]] F32 ShareOf(const Reach& twice, S32 y0, S32 y1) const
    {
        const S32 above = Splat32(kMostChannel) - m_luma * (Max(y0, y1) - Splat32(16));
        const S32 below = Splat32(kOneCode) + m_luma * (Min(y0, y1) - Splat32(16));
        const auto share = [](S32 room, S32 reach) {
            return ToFloat(room + room) / ToFloat(Max(reach, Splat32(1)));
        };
        const F32 ofBoth = Min(share(above, twice.above), share(below, Splat32(0) - twice.below));
        const F32 ofSpread = share(Splat32(255 * 65536), twice.above - twice.below);
        return Min(Min(ofBoth, ofSpread), SplatFloat(1));
    }

    [[gnu::always_inline]] void Settle(Pairs& p, const Matrices& matrices) const
    {
        const S32 neutral = Splat32(128);
        Lumas lumas = LumasOf(p, matrices);
        const S32 none = IsGreater(lumas.low, lumas.high);
        if (!AreAllZero(none)) {
            const auto step = [=](S32 c) { return (IsGreater(neutral, c) - IsGreater(c, neutral)) * none; };
            p.cb = p.cb + step(p.cb);
            p.cr = p.cr + step(p.cr);
            lumas = LumasOf(p, matrices);
        }
        p.y0 = Min(Max(p.y0, lumas.low), lumas.high);
        p.y1 = Min(Max(p.y1, lumas.low), lumas.high);
    }

private:
    struct Lumas {
        S32 low, high;
    };

    Lumas LumasOf(const Pairs& p, const Matrices& matrices) const
    {
        const Reach reach = ReachOf(matrices.TermsOf({p.cb - Splat32(128), p.cr - Splat32(128)}));
        return {Splat32(16) + Steps(m_lowest - reach.below),
                Splat32(16) + Steps(Splat32(kMostChannel) - reach.above)};
    }

    /// None of a negative channel.
    S32 Steps(S32 channel) const { return ToWhole(ToFloat(channel) / m_perLuma, 255); }

    S32 m_luma, m_lowest;
    F32 m_perLuma;
};

template <class Correct, bool chromaFirst, bool streaming>
void CorrectRow(const Byte* in, Byte* out, std::size_t pairs, const LegalParams& params)
{
    const Matrices matrices(params);
    MapPairs<streaming>(in, out, pairs, [matrices](U8 block, U8 next) -> U8 {
        const Pairs own = Split<chromaFirst>(block);
        const Pairs mean = Split<chromaFirst>(Average(block, next));
        const Rgb left = matrices.ToRgb(own.y0, Chroma{own.cb, own.cr});
        const Rgb right = matrices.ToRgb(own.y1, Chroma{mean.cb, mean.cr});
        // What is not corrected comes back as it was.
        if (AreInRange(left, right)) return block;
        return Join<chromaFirst>(matrices.ToPairs(Correct()(left), Correct()(right)));
    });
}

template <class Correct, bool chromaFirst, bool streaming>
void CorrectRowStrictly(const Byte* in, Byte* out, std::size_t pairs, const LegalParams& params)
{
    const Matrices matrices(params);
    const Settler settler(params);
    MapPairs<streaming>(in, out, pairs, [matrices, settler](U8 block, U8) -> U8 {
        Pairs p = Split<chromaFirst>(block);
        const Terms terms = matrices.TermsOf({p.cb, p.cr});
        Rgb left = matrices.ToRgb(p.y0, terms);
        Rgb right = matrices.ToRgb(p.y1, terms);
        if (AreInRange(left, right)) return block;
        left = Correct()(left);
        right = Correct()(right);
        p.y0 = matrices.LumaOf(left);
        p.y1 = matrices.LumaOf(right);
        const Chroma one = matrices.ChromaOf(left);
        const Chroma other = matrices.ChromaOf(right);
        const Chroma twice{one.cb + other.cb - Splat32(256), one.cr + other.cr - Splat32(256)};
        const F32 share = settler.ShareOf(ReachOf(matrices.TermsOf(twice)), p.y0, p.y1);
        const F32 half = SplatFloat(0.5F) * share;
        p.cb = ToWhole(ToFloat(twice.cb) * half + SplatFloat(128.5F), 255);
        p.cr = ToWhole(ToFloat(twice.cr) * half + SplatFloat(128.5F), 255);
        settler.Settle(p, matrices);
        return Join<chromaFirst>(p);
    });
}

/// \param misses  Not 0 where a sample is out of range.
[[gnu::always_inline]] inline Rgb Shown(S32 y, const Rgb& rgb, S32 misses)
{
    const U16 none = Splat(0);
    const U16 full = Splat(255);
    const U16 first = SplatPixel(0x0000'FFFF'0000'FFFF);
    const U16 half = InBoth(ShiftDownBits<1>(y + Splat32(1)));
    const U16 over = MaxSigned(Most(rgb) - full, none);
    const U16 under = Select(Greater(over, none), none, MaxSigned(none - Least(rgb), none));
    const auto missed = Greater(InBoth(misses), none);
    return {Select(missed, full ^ (full & first), MinSigned(half + (ShiftLeft<1>(over) & first), full)),
            Select(missed, full ^ (full & first), MinSigned(half + (ShiftLeft<1>(under) & first), full))};
}

template <bool chromaFirst, bool streaming>
void ShowRow(const Byte* in, Byte* out, std::size_t pairs, const LegalParams& params)
{
    const Matrices matrices(params);
    MapPairs<streaming>(in, out, pairs, [matrices](U8 block, U8 next) {
        const U8 means = Average(block, next);
        const Pairs own = Split<chromaFirst>(block);
        const Pairs mean = Split<chromaFirst>(means);
        const Pairs ownMiss = Split<chromaFirst>(block ^ InRange<chromaFirst>(block));
        const Pairs meanMiss = Split<chromaFirst>(means ^ InRange<chromaFirst>(means));
        const Rgb left = Shown(own.y0, matrices.ToRgb(own.y0, Chroma{own.cb, own.cr}),
                               ownMiss.y0 | ownMiss.cb | ownMiss.cr);
        const Rgb right = Shown(own.y1, matrices.ToRgb(own.y1, Chroma{mean.cb, mean.cr}),
                                ownMiss.y1 | meanMiss.cb | meanMiss.cr);
        return Join<chromaFirst>(matrices.ToPairs(left, right));
    });
}

template <bool chromaFirst, bool streaming>
void FillOrder(LegalRows& rows)
{
    const auto set = [&](LegalRule rule, LegalRow loose, LegalRow strict) {
        rows.rows[static_cast<int>(rule)][false][chromaFirst][streaming] = loose;
        rows.rows[static_cast<int>(rule)][true][chromaFirst][streaming] = strict;
    };
    set(LegalRule::Clip, CorrectRow<Clipped, chromaFirst, streaming>,
        CorrectRowStrictly<Clipped, chromaFirst, streaming>);
    set(LegalRule::Gain, CorrectRow<Dimmed, chromaFirst, streaming>,
        CorrectRowStrictly<Dimmed, chromaFirst, streaming>);
    set(LegalRule::Saturation, LimitRow<false, false, chromaFirst, streaming>,
        LimitRow<false, true, chromaFirst, streaming>);
    set(LegalRule::LumaSaturation, LimitRow<true, false, chromaFirst, streaming>,
        LimitRow<true, true, chromaFirst, streaming>);
    set(LegalRule::Show, ShowRow<chromaFirst, streaming>, ShowRow<chromaFirst, streaming>);
}

#endif

} // namespace

namespace VFIL_LEVEL {

void Fill([[maybe_unused]] LegalRows& rows)
{
#if defined(__AVX2__)
    FillOrder<false, false>(rows);
    FillOrder<false, true>(rows);
    FillOrder<true, false>(rows);
    FillOrder<true, true>(rows);
#endif
}

} // namespace VFIL_LEVEL
} // namespace vfil

/// \file
/// The vector forms of the kernels of the 4:2:2 keyers, for the level VFIL_LEVEL. A keyer is a class: the
/// mattes of a vector of macropixels, and what they make of both pictures.
#include "il/rows/keyer/videokeylanes.h"

namespace vfil {
namespace {

/// The matte of a sector: see KeySector.
class Sector {
public:
    explicit Sector(const KeySector& sector)
        : m_slope(SplatPair16(sector.slope, 0)), m_lift(Splat32(sector.lift)), m_gain(Splat(sector.gain)),
          m_rest(Splat(255 - sector.mapLow)),
          m_mapGain(Splat(sector.mapGain > 65535 ? 65535 : sector.mapGain)) // any more gives 255 from 1 on
    {}

    /// \param beside  0 .. 512
    U16 Matte(S32 along, S32 beside) const
    {
        const S32 inside = along - (ShiftDown<8>(DotPairs(beside, m_slope)) + m_lift);
        // The gain is 1 at least, so that 255 stands for all that is more.
        const U16 limited = ClampToByte(PackBeside(inside, inside));
        const U16 key = Min(MulBy256th(limited, m_gain), Splat(255));
        const U16 above = MaxSigned(m_rest - key, Splat(0));
        return Min(MulBy256th(above, m_mapGain), Splat(255));
    }

private:
    S32 m_slope, m_lift;
    U16 m_gain, m_rest, m_mapGain;
};

class ChromaKey {
public:
    using Params = ChromaKeyParams;

    explicit ChromaKey(const Params& params)
        : m_along(SplatPair16(params.cosine, -params.sine)),
          m_beside(SplatPair16(params.sine, params.cosine)), m_key(params.key), m_spill(params.spill),
          m_luma(params.luma), m_spillChroma{SplatPair16(params.spillCb, params.spillCr).bits}
    {}

    U16 Matte(Macropixels a) const { return MatteOf(m_key, a); }

    Macropixels Corrected(Macropixels a) const
    {
        const U16 m = MatteOf(m_spill, a);
        return {Blend(a.luma, m_luma(a.luma), m), Blend(a.chroma, m_spillChroma, m)};
    }

    static Macropixels Mix(Macropixels a, Macropixels b, U16 matte)
    {
        return {Blend(a.luma, b.luma, matte), Blend(a.chroma, b.chroma, matte)};
    }

    static U16 Picture(U16 matte) { return ShiftRight<8>(matte * Splat(0xDC) + Splat(0x1000)); }

private:
    U16 MatteOf(const Sector& sector, Macropixels a) const
    {
        const S32 chroma{(a.chroma - Splat(128)).bits};
        return sector.Matte(ShiftDown<7>(DotPairs(chroma, m_along)),
                            Abs(ShiftDown<7>(DotPairs(chroma, m_beside))));
    }

    S32 m_along, m_beside;
    Sector m_key, m_spill;
    LumaOfSpill m_luma;
    U16 m_spillChroma;
};

class ChannelKey {
public:
    using Params = ChannelKeyParams;

    explicit ChannelKey(const Params& params)
        : m_channelLuma(params.key.y), m_restLuma(params.rest.y), m_factor(params.factor), m_key(params.key),
          m_other(params.other), m_red(params.red), m_rest(params.rest), m_limit(Splat(params.limit)),
          m_window(params.window), m_high(Splat(params.window.high - 1)),
          m_threshold(Splat(Within(-255, params.threshold, 255))),
          m_softness(Splat(Within(-256, params.softness, 255))),
          m_luma(params.luma), m_spillChroma{SplatPair16(params.spillCb, params.spillCr).bits}
    {}

    U16 Matte(Macropixels a) const
    {
        const U16 limited = MinSigned(Channel(m_channelLuma(a.luma), m_key(a.chroma)), m_limit);
        const LumaTerms channel = m_factor(limited);
        const LumaTerms luma = m_restLuma(a.luma);
        const LumaTerms sum{luma.first + ShiftDown<3>(channel.first),
                            luma.second + ShiftDown<3>(channel.second)};
        const U16 matte = m_window(WholePart(sum, m_rest(a.chroma)));
        // Where both reach the upper end as mattes, the front is whole.
        return Select(Greater(MinSigned(matte, SwapHalves(matte)), m_high), Splat(255), matte);
    }

    Macropixels Corrected(Macropixels a) const
    {
        const U16 kept = Kept(a);
        return {Blend(a.luma, m_luma(a.luma), kept), Blend(a.chroma, m_spillChroma, Mean(kept))};
    }

    static Macropixels Mix(Macropixels a, Macropixels b, U16 matte)
    {
        return {Blend(a.luma, b.luma, matte), Blend(a.chroma, b.chroma, Mean(matte))};
    }

private:
    static std::int32_t Within(std::int32_t low, std::int32_t v, std::int32_t high)
    {
        return v < low ? low : (v > high ? high : v);
    }

    static U16 Channel(LumaTerms luma, S32 chroma) { return ClampToByte(WholePart(luma, chroma)); }

    static U16 Mean(U16 v) { return Average(v, SwapHalves(v)); }

    U16 Kept(Macropixels a) const
    {
        const LumaTerms luma = m_channelLuma(a.luma);
        const U16 key = Channel(luma, m_key(a.chroma));
        const U16 most = MaxSigned(Channel(luma, m_other(a.chroma)), Channel(luma, m_red(a.chroma)));
        const U16 from = ClampToByte(most - m_threshold);
        const U16 to = MinSigned(from + m_softness, Splat(255));
        // Few pixels lie between, and the quotient takes its time.
        const U16 inner = MaxSigned(MinSigned(key - from, to - key), Splat(0));
        const U16 ratio = IsZero(inner) ? Splat(0) : Ratio255(to - key, to - from);
        return Select(Greater(key, from), Select(Greater(to, key), ratio, Splat(0)), Splat(255));
    }

    LumaWeight m_channelLuma, m_restLuma, m_factor;
    ChromaTerm m_key, m_other, m_red, m_rest;
    U16 m_limit;
    Window m_window;
    U16 m_high, m_threshold, m_softness;
    LumaOfSpill m_luma;
    U16 m_spillChroma;
};

class LumaKey {
public:
    using Params = VideoLumaKeyParams;

    explicit LumaKey(const Params& params)
        : m_gainHigh(Splat(params.gain >> 16)), m_gainLow(Splat(params.gain)), m_offset(Splat(params.offset)),
          m_least(Splat(params.least)), m_most(Splat(params.most)), m_sign(Splat(params.reverse ? -1 : 0)),
          m_turn(Splat(params.reverse ? 252 : 0)), m_window(params.window)
    {}

    U16 Matte(Macropixels a) const
    {
        const U16 scaled = a.luma * m_gainHigh + MulHigh(a.luma, m_gainLow) + m_offset;
        const U16 luma = MinSigned(MaxSigned(scaled, m_least), m_most);
        return m_window((luma ^ m_sign) + m_turn);
    }

    static Macropixels Mix(Macropixels a, Macropixels b, U16 matte)
    {
        return {BlendDown(a.luma, b.luma, matte), BlendDown(a.chroma, b.chroma, SplatLowHalves(matte))};
    }

    /// A mix never reaches an input, so that what is wholly one of them is chosen after it.
    static U8 Choose(U8 mixed, U8 a, U8 b, U16 matte)
    {
        const S32 pair{matte.bits};
        const U8 chosen = Select(Greater(pair, Splat32(0x00FF'00FE)), a, mixed);
        return Select(Greater(Splat32(1), pair), b, chosen);
    }

    /// As the plain form, whose sum has 16 as its upper half.
    static U16 Picture(U16 matte) { return MulHigh(matte, Splat(0xDBDC - 65536)) + Splat(16); }

private:
    U16 m_gainHigh, m_gainLow, m_offset, m_least, m_most, m_sign, m_turn;
    Window m_window;
};

template <class Keyer, bool spill, bool chromaFirst, bool streaming>
void Composite(const Byte* a, const Byte* b, Byte* out, std::size_t macropixels,
               const typename Keyer::Params& params)
{
    const Keyer keyer(params);
    MapRow<streaming, 4>(a, b, out, 4 * macropixels, [keyer](U8 pixelsA, U8 pixelsB, Part) -> U8 {
        Macropixels front = Split<chromaFirst>(pixelsA);
        const U16 matte = keyer.Matte(front);
        if (IsZero(matte)) return pixelsB;
        const bool whole = IsZero(matte ^ Splat(255));
        if constexpr (spill) {
            front = keyer.Corrected(front);
            if (whole) return Merge<chromaFirst>(front);
        }
        if (whole) return pixelsA;
        const U8 mixed = Merge<chromaFirst>(Keyer::Mix(front, Split<chromaFirst>(pixelsB), matte));
        if constexpr (requires { Keyer::Choose(mixed, pixelsA, pixelsB, matte); }) {
            return Keyer::Choose(mixed, pixelsA, pixelsB, matte);
        } else {
            return mixed;
        }
    });
}

template <class Keyer, bool chromaFirst, bool streaming>
void Matte(const Byte* a, const Byte* /*b*/, Byte* out, std::size_t macropixels,
           const typename Keyer::Params& params)
{
    const Keyer keyer(params);
    MapRow<streaming, 4>(a, a, out, 4 * macropixels, [keyer](U8 pixels, U8, Part) {
        const U16 matte = keyer.Matte(Split<chromaFirst>(pixels));
        return Merge<chromaFirst>({Keyer::Picture(matte), Splat(128)});
    });
}

#if defined(__AVX2__)
/// A form in lanes of 32 bits.
class FormLanes {
public:
    explicit FormLanes(const YccForm& form)
        : m_y(Splat32(form.y)), m_cb(Splat32(form.cb)), m_cr(Splat32(form.cr)),
          m_constant(Splat32(form.constant))
    {}
    LumaTerms operator()(Macropixels a) const
    {
        const S32 lower = Splat32(0xFFFF);
        const S32 luma{a.luma.bits};
        const S32 chroma{a.chroma.bits};
        const S32 common = (chroma & lower) * m_cb + ShiftDownBits<16>(chroma) * m_cr + m_constant;
        return {(luma & lower) * m_y + common, ShiftDownBits<16>(luma) * m_y + common};
    }

private:
    S32 m_y, m_cb, m_cr, m_constant;
};

/// Its matte is already the luma of its picture: the mattes just above the lower end may be below 0, and need
/// the 32 bits.
class FoldedKey {
public:
    using Params = FoldedKeyParams;

    explicit FoldedKey(const Params& params)
        : m_below(params.below), m_above(params.above), m_test(params.test), m_limit(Splat32(params.limit)),
          m_low(Splat32(params.window.low)), m_high(Splat32(params.window.high)),
          m_gain(Splat32(params.window.gain)), m_offset(Splat32(params.window.offset))
    {}

    U16 Matte(Macropixels a) const
    {
        const LumaTerms below = m_below(a);
        const LumaTerms above = m_above(a);
        const LumaTerms channel = m_test(a);
        const S32 first = Luma(Select(Greater(m_limit, channel.first), below.first, above.first));
        const S32 second = Luma(Select(Greater(m_limit, channel.second), below.second, above.second));
        return {(first | ShiftUp<16>(second)).bits};
    }

    static U16 Picture(U16 matte) { return matte; }

private:
    S32 Luma(S32 key) const
    {
        const S32 between = ShiftDown<16>(ShiftDown<16>(key) * m_gain - m_offset);
        const S32 matte =
            Select(Greater(key, m_low), Select(Greater(m_high, key), between, Splat32(255)), Splat32(0));
        return ShiftDown<16>(matte * Splat32(0xDBDC) + Splat32(0x100000)) & Splat32(0xFF);
    }

    FormLanes m_below, m_above, m_test;
    S32 m_limit, m_low, m_high, m_gain, m_offset;
};
#endif

template <class Keyer, bool spill, bool streaming>
void FillComposite(VideoKeyRow<typename Keyer::Params> (&rows)[2][2])
{
    rows[false][streaming] = Composite<Keyer, spill, false, streaming>;
    rows[true][streaming] = Composite<Keyer, spill, true, streaming>;
}

template <class Keyer, bool streaming>
void FillMatte(VideoKeyRow<typename Keyer::Params> (&rows)[2][2])
{
    rows[false][streaming] = Matte<Keyer, false, streaming>;
    rows[true][streaming] = Matte<Keyer, true, streaming>;
}

template <bool streaming>
void FillStreaming(VideoKeyRows& rows)
{
    FillComposite<ChromaKey, false, streaming>(rows.chroma[static_cast<int>(KeyResult::Composite)]);
    FillComposite<ChromaKey, true, streaming>(rows.chroma[static_cast<int>(KeyResult::SpillCorrected)]);
    FillMatte<ChromaKey, streaming>(rows.chroma[static_cast<int>(KeyResult::Matte)]);
    FillComposite<ChannelKey, false, streaming>(rows.channel[false]);
    FillComposite<ChannelKey, true, streaming>(rows.channel[true]);
    FillComposite<LumaKey, false, streaming>(rows.luma[false]);
    FillMatte<LumaKey, streaming>(rows.luma[true]);
#if defined(__AVX2__)
    FillMatte<FoldedKey, streaming>(rows.folded[true]);
#endif
}

} // namespace

namespace VFIL_LEVEL {

void Fill(VideoKeyRows& rows)
{
    FillStreaming<false>(rows);
    FillStreaming<true>(rows);
}

} // namespace VFIL_LEVEL
} // namespace vfil

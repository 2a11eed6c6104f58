/// \file
/// The vector forms of the legalizer's rules of saturation. Included by legalrows_simd.cpp alone, as vec.h
/// is.
///
/// Two ways to the same bytes: the limits in floats, which know where they are not sure, and for such pairs
/// the plain form's steps in doubles.
#pragma once

#include "il/rows/treat/legallanes.h"

namespace vfil {
namespace {

#if defined(__AVX2__)

/// The limits in floats, in codes of luma. Each limit shrinks both colour differences by the same share, so
/// that the least share of all counts, and of the two pixels' the one with less room.
///
/// Luma of up to 219 passes three steps, of which each may lose 4 of its 2 to the power of 24, and a code of
/// it is at most 3 of chroma. So results lie within a 2000th of those of doubles: what is farther from where
/// rounding turns is the same.
class QuickSaturation {
public:
    explicit QuickSaturation(const LegalParams& params)
        : m_blueOfCb(Weight(params.blueOfCb)), m_redOfCr(Weight(params.redOfCr)),
          m_greenOfCb(Weight(params.greenOfCb)), m_greenOfCr(Weight(params.greenOfCr)),
          m_lumaFactor(SplatFloat(static_cast<float>(params.lumaFactor)))
    {}

    /// Gives a bit for each pair that it is not sure of.
    ///
    /// \param p  In range.
    template <bool movesLuma, bool strict>
    [[gnu::always_inline]] unsigned Limit(Pairs& p) const
    {
        const F32 cb = ToFloat(p.cb - Splat32(128));
        const F32 cr = ToFloat(p.cr - Splat32(128));
        const Channels channels{cb * m_blueOfCb, cr * m_redOfCr, cb * m_greenOfCb + cr * m_greenOfCr};
        F32 y0 = ToFloat(p.y0 - Splat32(16));
        F32 y1 = ToFloat(p.y1 - Splat32(16));
        const Reach reach{Max(Max(channels.blue, channels.red), channels.green),
                          SplatFloat(0) - Min(Min(channels.blue, channels.red), channels.green)};
        if (AreAllLegal(reach, RoomOf(y0, y1))) return 0;
        F32 least = SplatFloat(1);
        if constexpr (movesLuma) {
            y0 = Moved(y0, channels);
            y1 = Moved(y1, channels);
            p.y0 = Rounded(y0 + SplatFloat(16), least);
            p.y1 = Rounded(y1 + SplatFloat(16), least);
            if constexpr (strict) {
                y0 = ToFloat(p.y0 - Splat32(16));
                y1 = ToFloat(p.y1 - Splat32(16));
            }
        }
        const F32 share = ShareOf(reach, RoomOf(y0, y1));
        p.cb = Rounded(cb * share + SplatFloat(128), least);
        p.cr = Rounded(cr * share + SplatFloat(128), least);
        return BitsWhereLess(least, SplatFloat(1.0F / 1024));
    }

private:
    struct Channels {
        F32 blue, red, green;
    };

    /// How far channels lie above and below luma; and how far they may.
    struct Reach {
        F32 above, below;
    };

    static F32 Weight(double weight) { return SplatFloat(static_cast<float>(weight * (219.0 / 224))); }

    static Reach RoomOf(F32 y0, F32 y1) { return {SplatFloat(219) - Max(y0, y1), Min(y0, y1)}; }

    /// With some room to spare, which rounding does not fill. At black and at white only chroma of 128 is
    /// legal, which reaches nowhere.
    static bool AreAllLegal(const Reach& reach, const Reach& room)
    {
        const F32 most = SplatFloat(1 - 0x1p-16F);
        return (BitsWhereLess(room.above * most, reach.above) |
                BitsWhereLess(room.below * most, reach.below)) == 0;
    }

    static F32 ShareOf(const Reach& reach, const Reach& room)
    {
        const F32 some = SplatFloat(1e-6F); // where chroma is 128, and any share will do
        return Min(Min(room.above / Max(reach.above, some), room.below / Max(reach.below, some)),
                   SplatFloat(1));
    }

    F32 Moved(F32 y, const Channels& channels) const
    {
        const F32 all[] = {channels.blue, channels.red, channels.green};
        for (const F32 channel : all) {
            const F32 level = y + channel;
            y = y - m_lumaFactor * (level - Min(Max(level, SplatFloat(0)), SplatFloat(219)));
        }
        return y;
    }

    /// Of what is not negative. Lowers `least` to the distance from where the result would be another.
    static S32 Rounded(F32 v, F32& least)
    {
        const F32 above = v + SplatFloat(0.5F);
        const S32 whole = ToWhole(above, 255);
        const F32 fraction = above - ToFloat(whole);
        least = Min(least, Min(fraction, SplatFloat(1) - fraction));
        return whole;
    }

    F32 m_blueOfCb, m_redOfCr, m_greenOfCb, m_greenOfCr, m_lumaFactor;
};

/// Colour differences of +-0.5.
struct Differences {
    F64 b, r;
};

/// The steps of the plain form. Only one of a limit's two sides can be passed, by its sign, so that half of
/// the divisions are made.
class Saturation {
public:
    explicit Saturation(const LegalParams& params)
        : m_blueOfCb(SplatDouble(params.blueOfCb)), m_redOfCr(SplatDouble(params.redOfCr)),
          m_greenOfCb(SplatDouble(params.greenOfCb)), m_greenOfCr(SplatDouble(params.greenOfCr)),
          m_lumaFactor(SplatDouble(params.lumaFactor))
    {}

    template <bool movesLuma, bool strict>
    void Limit(Pairs& p) const
    {
        Halves halves = HalvesOf(p);
        const auto& [low, high] = halves.of;
        if constexpr (movesLuma) {
            for (HalfPairs& half : halves.of) {
                half.y0 = Moved(half.y0, half.c);
                half.y1 = Moved(half.y1, half.c);
            }
            p.y0 = Rounded<219, 16>(low.y0, high.y0);
            p.y1 = Rounded<219, 16>(low.y1, high.y1);
            if constexpr (strict) halves = HalvesOf(p);
        }
        // In two loops, for the divisions of both halves to overlap: a tenth of all of noise's time.
        for (HalfPairs& half : halves.of)
            LimitTo(half.c, half.y0);
        for (HalfPairs& half : halves.of)
            LimitTo(half.c, half.y1);
        p.cb = Rounded<224, 128>(low.c.b, high.c.b);
        p.cr = Rounded<224, 128>(low.c.r, high.c.r);
    }

private:
    /// The pairs of half a vector.
    struct HalfPairs {
        F64 y0, y1;
        Differences c;
    };

    struct Halves {
        HalfPairs of[2];
    };

    template <int half, int span, int zero>
    static F64 Normalised(S32 v)
    {
        return HalfToDouble<half>((v - Splat32(zero)).bits) / SplatDouble(span);
    }

    template <int half>
    static HalfPairs HalfOf(const Pairs& p)
    {
        return {Normalised<half, 219, 16>(p.y0),
                Normalised<half, 219, 16>(p.y1),
                {Normalised<half, 224, 128>(p.cb), Normalised<half, 224, 128>(p.cr)}};
    }

    static Halves HalvesOf(const Pairs& p) { return {{HalfOf<0>(p), HalfOf<1>(p)}}; }

    /// Of what comes out not negative.
    template <int span, int zero>
    static S32 Rounded(F64 low, F64 high)
    {
        const auto code = [](F64 v) { return v * SplatDouble(span) + SplatDouble(zero) + SplatDouble(0.5); };
        return {HalvesToInt32(code(low), code(high))};
    }

    F64 Moved(F64 y, const Differences& c) const
    {
        y = MovedTo(y, m_blueOfCb * c.b);
        y = MovedTo(y, m_redOfCr * c.r);
        return MovedTo(y, Green(c));
    }

    F64 MovedTo(F64 y, F64 channel) const
    {
        const F64 high = SplatDouble(1) - channel;
        const F64 low = Negative(channel);
        y = Select(high < y, y - m_lumaFactor * (y - high), y);
        return Select(y < low, y - m_lumaFactor * (y - low), y);
    }

    void LimitTo(Differences& c, F64 y) const
    {
        const F64 top = SplatDouble(1) - y;
        const F64 bottom = Negative(y);
        LimitOne(c.b, c.r, m_blueOfCb, top, bottom);
        LimitOne(c.r, c.b, m_redOfCr, top, bottom);
        const F64 green = Green(c);
        const Mask64 positive = SplatDouble(0) < green;
        const F64 limit = Select(positive, top, bottom);
        const F64 share = Select(IsBeyond(green, limit, positive), limit / green, SplatDouble(1));
        c.b = c.b * share;
        c.r = c.r * share;
    }

    static void LimitOne(F64& first, F64& second, F64 weight, F64 top, F64 bottom)
    {
        const Mask64 positive = SplatDouble(0) < first;
        const F64 limit = Select(positive, top, bottom) / weight;
        const Mask64 beyond = IsBeyond(first, limit, positive);
        second = Select(beyond, second * limit / first, second);
        first = Select(beyond, limit, first);
    }

    static Mask64 IsBeyond(F64 v, F64 limit, Mask64 positive)
    {
        return (positive & (limit < v)) | Without(v < limit, positive);
    }

    F64 Green(const Differences& c) const { return m_greenOfCb * c.b + m_greenOfCr * c.r; }

    F64 m_blueOfCb, m_redOfCr, m_greenOfCb, m_greenOfCr, m_lumaFactor;
};

/// See BlueSettled of the plain form.
[[gnu::always_inline]] inline S32 SettledCb(const Pairs& p, const LegalParams& params)
{
    const S32 luma = Splat32(params.luma);
    const S32 blue = (p.cb - Splat32(128)) * Splat32(params.blue.cb);
    const S32 above = (Max(p.y0, p.y1) - Splat32(16)) * luma + blue;
    const S32 below = (Min(p.y0, p.y1) - Splat32(16)) * luma + blue;
    return p.cb + IsGreater(Splat32(-kOneCode), below) - IsGreater(above, Splat32(kMostChannel));
}

/// Limits parts of a row. What floats are not sure of is collected, as it is little and takes long: of noise
/// with luma moved by half, a seventh, half a code wherever luma is black or white.
template <bool movesLuma, bool strict, bool chromaFirst>
class Limiter {
public:
    static constexpr std::size_t kMostPairs = 512;

    explicit Limiter(const LegalParams& params) : m_quick(params), m_exact(params), m_params(params) {}

    void operator()(const Byte* in, Byte* out, std::size_t pairs)
    {
        m_unsure = 0;
        std::size_t first = 0;
        MapPairs<false>(in, out, pairs, [&](U8 block, U8) {
            Pairs p = Split<chromaFirst>(InRange<chromaFirst>(block));
            Collect(m_quick.template Limit<movesLuma, strict>(p), first, pairs);
            first += kLanes32;
            return Joined(p);
        });
        for (std::size_t i = 0; i < m_unsure; i += kLanes32)
            LimitExactly(in, out, m_places + i, m_unsure - i < kLanes32 ? m_unsure - i : kLanes32);
    }

private:
    /// The end of a row may fill a vector with pairs that are none.
    void Collect(unsigned bits, std::size_t first, std::size_t pairs)
    {
        if (bits == 0) return;
        const std::size_t past = pairs - first < kLanes32 ? pairs : first + kLanes32;
        std::size_t unsure = m_unsure;
        for (std::size_t pair = first; pair < past; ++pair, bits >>= 1) {
            m_places[unsure] = 4 * pair;
            unsure += bits & 1;
        }
        m_unsure = unsure;
    }

    void LimitExactly(const Byte* in, Byte* out, const std::size_t* places, std::size_t count) const
    {
        Byte pairs[kBytes] = {};
        for (std::size_t i = 0; i < count; ++i)
            std::memcpy(pairs + 4 * i, in + places[i], 4);
        Pairs p = Split<chromaFirst>(InRange<chromaFirst>(Load(pairs)));
        m_exact.template Limit<movesLuma, strict>(p);
        Store(pairs, Joined(p));
        for (std::size_t i = 0; i < count; ++i)
            std::memcpy(out + places[i], pairs + 4 * i, 4);
    }

    U8 Joined(Pairs& p) const
    {
        if constexpr (strict) p.cb = SettledCb(p, m_params);
        return Join<chromaFirst>(p);
    }

    QuickSaturation m_quick;
    Saturation m_exact;
    const LegalParams& m_params;
    std::size_t m_unsure = 0;
    std::size_t m_places[kMostPairs + 1]; ///< of bytes; the last is only written
};

template <bool movesLuma, bool strict, bool chromaFirst, bool streaming>
void LimitRow(const Byte* in, Byte* out, std::size_t pairs, const LegalParams& params)
{
    Limiter<movesLuma, strict, chromaFirst> limit(params);
    constexpr std::size_t kMost = limit.kMostPairs;
    Byte results[4 * kMost];
    for (std::size_t at = 0; at < pairs; at += kMost) {
        const std::size_t count = pairs - at < kMost ? pairs - at : kMost;
        limit(in + 4 * at, results, count);
        MapRow<streaming, 4>(results, results, out + 4 * at, 4 * count, [](U8 v, U8, Part) { return v; });
    }
}

#endif

} // namespace
} // namespace vfil

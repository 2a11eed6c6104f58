/// \file
/// The plain forms of the legalizer's kernels that work on RGB, and the table of the levels.
#include "il/rows/treat/legalrows.h"

#include "il/rows/treat/legalpairs.h"

namespace vfil {

namespace {

using namespace legal;

struct Rgb {
    int red, green, blue;
};

Rgb RgbOf(int y, Chroma c, const LegalParams& params)
{
    const auto channel = [&](const ChannelForm& form) {
        return (params.luma * y + form.cb * c.cb + form.cr * c.cr + form.constant) >> 16;
    };
    return {channel(params.red), channel(params.green), channel(params.blue)};
}

int Value(const SampleForm& form, const Rgb& rgb)
{
    return (form.red * rgb.red + form.green * rgb.green + form.blue * rgb.blue + form.constant) >> 16;
}

int LumaOf(const Rgb& rgb, const LegalParams& params)
{
    return ClampLuma(Value(params.y, rgb));
}

Chroma ChromaOf(const Rgb& rgb, const LegalParams& params)
{
    return {ClampChroma(Value(params.cb, rgb)), ClampChroma(Value(params.cr, rgb))};
}

Chroma OwnChroma(const Pair& pair)
{
    return {pair.cb, pair.cr};
}

Chroma MeanChroma(const Pair& pair, const Pair& next)
{
    return {(pair.cb + next.cb + 1) >> 1, (pair.cr + next.cr + 1) >> 1};
}

template <class Channel>
Rgb EachOf(const Rgb& rgb, Channel channel)
{
    return {channel(rgb.red), channel(rgb.green), channel(rgb.blue)};
}

Rgb Clipped(const Rgb& rgb)
{
    return EachOf(rgb, [](int v) { return std::clamp(v, 0, 255); });
}

/// Without what is negative, and dimmed so far that the largest channel is 255.
Rgb Dimmed(const Rgb& rgb)
{
    const Rgb positive = EachOf(rgb, [](int v) { return std::max(v, 0); });
    const int most = std::max({positive.red, positive.green, positive.blue});
    if (most <= 255) return positive;
    // Rounded to nearest: 2 to the power of 17 does not divide the largest channel, so there are no ties.
    const int factor = (2 * 255 * 65536 + most) / (2 * most);
    return EachOf(positive, [=](int v) { return std::min((v * factor + 32768) >> 16, 255); });
}

/// Both pixels corrected as RGB. The right one's colour does not reach the stored chroma.
template <class Correct>
Pair CorrectPair(const Pair& pair, const Pair& next, const LegalParams& params, Correct correct)
{
    const Rgb left = correct(RgbOf(pair.y0, OwnChroma(pair), params));
    const Rgb right = correct(RgbOf(pair.y1, MeanChroma(pair, next), params));
    const Chroma chroma = ChromaOf(left, params);
    return {LumaOf(left, params), chroma.cb, LumaOf(right, params), chroma.cr};
}

/// How far the channels of a colour are above luma's part of them, 65536ths: the least of them, and the most.
struct Reach {
    int below, above;
};

/// Of chroma around 0.
Reach ReachOf(Chroma c, const LegalParams& params)
{
    const int red = params.red.cr * c.cr;
    const int green = params.green.cb * c.cb + params.green.cr * c.cr;
    const int blue = params.blue.cb * c.cb;
    return {std::min({red, green, blue}), std::max({red, green, blue})};
}

int TowardsNeutral(int c)
{
    return c + (c < 128 ? 1 : 0) - (c > 128 ? 1 : 0);
}

/// The lumas with which no channel is outside by more than a code. `high` is less than `low` where there are
/// none.
struct Lumas {
    int low, high;
};

Lumas LumasOf(const Reach& reach, const LegalParams& params)
{
    const auto steps = [&](int channel) {
        return static_cast<int>(static_cast<float>(std::max(channel, 0)) / static_cast<float>(params.luma));
    };
    return {kBlack + steps(params.luma - 1 - kOneCode - reach.below),
            kBlack + steps(kMostChannel - reach.above)};
}

/// Moves luma to where no channel is outside by more than a code, and chroma before, by one, where rounding
/// has left no such luma.
Pair Settled(Pair pair, const LegalParams& params)
{
    const auto lumasOf = [&](const Pair& p) {
        return LumasOf(ReachOf({p.cb - 128, p.cr - 128}, params), params);
    };
    Lumas lumas = lumasOf(pair);
    if (lumas.low > lumas.high) {
        pair.cb = TowardsNeutral(pair.cb);
        pair.cr = TowardsNeutral(pair.cr);
        lumas = lumasOf(pair);
    }
    pair.y0 = std::min(std::max(pair.y0, lumas.low), lumas.high);
    pair.y1 = std::min(std::max(pair.y1, lumas.low), lumas.high);
    return pair;
}

bool IsInRange(const Rgb& rgb)
{
    return std::min({rgb.red, rgb.green, rgb.blue}) >= 0 && std::max({rgb.red, rgb.green, rgb.blue}) <= 255;
}

/// The share of twice a chroma that is legal with both lumas within a code, and spreads the channels over no
/// more than their range.
float ShareOf(const Reach& twice, int y0, int y1, const LegalParams& params)
{
    const int above = kMostChannel - params.luma * (std::max(y0, y1) - kBlack);
    const int below = kOneCode + params.luma * (std::min(y0, y1) - kBlack);
    const auto share = [](int room, int reach) {
        return static_cast<float>(2 * room) / static_cast<float>(std::max(reach, 1));
    };
    return std::min({share(above, twice.above), share(below, -twice.below),
                     share(255 * 65536, twice.above - twice.below), 1.0F});
}

/// Both pixels corrected by the chroma that they share. What that becomes for the one and for the other has
/// its mean stored, as far as it is legal with both lumas.
template <class Correct>
Pair CorrectStrictly(const Pair& pair, const LegalParams& params, Correct correct)
{
    const Rgb asIs[] = {RgbOf(pair.y0, OwnChroma(pair), params), RgbOf(pair.y1, OwnChroma(pair), params)};
    if (IsInRange(asIs[0]) && IsInRange(asIs[1])) return pair;
    const Rgb left = correct(asIs[0]);
    const Rgb right = correct(asIs[1]);
    const int y0 = LumaOf(left, params);
    const int y1 = LumaOf(right, params);
    const Chroma chroma[] = {ChromaOf(left, params), ChromaOf(right, params)};
    const Chroma twice{chroma[0].cb + chroma[1].cb - 256, chroma[0].cr + chroma[1].cr - 256};
    const float half = 0.5F * ShareOf(ReachOf(twice, params), y0, y1, params);
    const auto rounded = [=](int c) { return static_cast<int>(static_cast<float>(c) * half + 128.5F); };
    return Settled({y0, rounded(twice.cb), y1, rounded(twice.cr)}, params);
}

template <bool strict, bool chromaFirst, class Correct>
void CorrectRow(const Byte* in, Byte* out, std::size_t pairs, const LegalParams& params, Correct correct)
{
    MapPairs<chromaFirst>(in, out, pairs, [&](const Pair& pair, const Pair& next) {
        return strict ? CorrectStrictly(pair, params, correct) : CorrectPair(pair, next, params, correct);
    });
}

template <bool strict, bool chromaFirst>
void ProcessYCC422_Clip_Line(const Byte* in, Byte* out, std::size_t pairs, const LegalParams& params)
{
    CorrectRow<strict, chromaFirst>(in, out, pairs, params, Clipped);
}

template <bool strict, bool chromaFirst>
void ProcessYCC422_AdjustGain_Line(const Byte* in, Byte* out, std::size_t pairs, const LegalParams& params)
{
    CorrectRow<strict, chromaFirst>(in, out, pairs, params, Dimmed);
}

/// Green where a sample is out of range, else half of luma, with red for what is above the range of RGB, or
/// blue for what is below.
Rgb Shown(int y, Chroma c, const LegalParams& params)
{
    if (y != ClampLuma(y) || c.cb != ClampChroma(c.cb) || c.cr != ClampChroma(c.cr)) return {0, 255, 0};
    const Rgb rgb = RgbOf(y, c, params);
    const int over = std::max({rgb.red, rgb.green, rgb.blue}) - 255;
    const int under = -std::min({rgb.red, rgb.green, rgb.blue});
    const int half = (y + 1) >> 1;
    if (over > 0) return {std::min(half + 2 * over, 255), half, half};
    return {half, half, std::min(half + 2 * std::max(under, 0), 255)};
}

template <bool chromaFirst>
void ProcessYCC422_ShowIllegal_Line(const Byte* in, Byte* out, std::size_t pairs, const LegalParams& params)
{
    MapPairs<chromaFirst>(in, out, pairs, [&](const Pair& pair, const Pair& next) {
        const Rgb left = Shown(pair.y0, OwnChroma(pair), params);
        const Rgb right = Shown(pair.y1, MeanChroma(pair, next), params);
        const Chroma chroma = ChromaOf(left, params);
        return Pair{LumaOf(left, params), chroma.cb, LumaOf(right, params), chroma.cr};
    });
}

template <bool strict, bool chromaFirst>
void FillOrder(LegalRows& plain)
{
    const auto fill = [&](LegalRule rule, LegalRow row) {
        for (LegalRow& entry : plain.rows[static_cast<int>(rule)][strict][chromaFirst])
            entry = row;
    };
    fill(LegalRule::Clip, ProcessYCC422_Clip_Line<strict, chromaFirst>);
    fill(LegalRule::Gain, ProcessYCC422_AdjustGain_Line<strict, chromaFirst>);
    fill(LegalRule::Show, ProcessYCC422_ShowIllegal_Line<chromaFirst>);
}

LegalRows PlainRows()
{
    LegalRows plain{};
    FillOrder<false, false>(plain);
    FillOrder<false, true>(plain);
    FillOrder<true, false>(plain);
    FillOrder<true, true>(plain);
    FillSaturation(plain);
    return plain;
}

const LevelTables<LegalRows>& Tables()
{
    static const LevelTables<LegalRows> tables(PlainRows(), VFIL_FILLS);
    return tables;
}

} // namespace

const LegalRows& LegalRowsAt(Level level)
{
    return Tables().At(level);
}

LegalRow FindLegalRow(const LegalCase& which)
{
    const LegalRows& rows = LegalRowsAt(which.useVectors ? BestLevel() : Level::Plain);
    return rows.rows[static_cast<int>(which.rule)][which.strict][which.chromaFirst][which.streaming];
}

} // namespace vfil

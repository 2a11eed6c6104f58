/// \file
/// The plain forms of the legalizer's kernels, and the table of their levels.
#include "il/rows/treat/legalrows.h"

#include <algorithm>

namespace vfil {

namespace {

using Byte = std::uint8_t;

constexpr int kBlack = 16;
constexpr int kWhite = 235;
constexpr int kMostChroma = 240;

/// Two pixels that share chroma.
struct Pair {
    int y0, cb, y1, cr;
};

struct Chroma {
    int cb, cr;
};

struct Rgb {
    int red, green, blue;
};

template <bool chromaFirst>
Pair Load(const Byte* p)
{
    return chromaFirst ? Pair{p[1], p[0], p[3], p[2]} : Pair{p[0], p[1], p[2], p[3]};
}

template <bool chromaFirst>
void Store(const Pair& pair, Byte* p)
{
    constexpr int luma = chromaFirst ? 1 : 0;
    p[luma] = static_cast<Byte>(pair.y0);
    p[1 - luma] = static_cast<Byte>(pair.cb);
    p[luma + 2] = static_cast<Byte>(pair.y1);
    p[3 - luma] = static_cast<Byte>(pair.cr);
}

/// out = treat(pair, next pair); the last pair is its own next one.
template <bool chromaFirst, class Treat>
void MapPairs(const Byte* in, Byte* out, std::size_t pairs, Treat treat)
{
    for (std::size_t i = 0; i < pairs; ++i) {
        const Pair pair = Load<chromaFirst>(in + 4 * i);
        const Pair next = i + 1 < pairs ? Load<chromaFirst>(in + 4 * (i + 1)) : pair;
        Store<chromaFirst>(treat(pair, next), out + 4 * i);
    }
}

int ClampLuma(int y)
{
    return std::clamp(y, kBlack, kWhite);
}

int ClampChroma(int c)
{
    return std::clamp(c, kBlack, kMostChroma);
}

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

/// One code, less what the rounding of the coefficients comes to.
constexpr int kOneCode = 65536 - 512;
constexpr int kMostChannel = 255 * 65536 + kOneCode;

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

/// Colour differences of +-0.5.
struct Differences {
    double b, r;
};

/// Shrinks the first until the channel that it makes beside luma is legal, and the second by as much.
void LimitOne(double& first, double& second, double weight, double y)
{
    const double high = (1 - y) / weight;
    const double low = -y / weight;
    if (first > high) {
        second = second * high / first;
        first = high;
    } else if (first < low) {
        second = second * low / first;
        first = low;
    }
}

void Limit(Differences& c, double y, const LegalParams& params)
{
    LimitOne(c.b, c.r, params.blueOfCb, y);
    LimitOne(c.r, c.b, params.redOfCr, y);
    const double green = params.greenOfCb * c.b + params.greenOfCr * c.r;
    double share = 1;
    if (green > 1 - y) {
        share = (1 - y) / green;
    } else if (green < -y) {
        share = -y / green;
    }
    c.b *= share;
    c.r *= share;
}

/// Of what is not negative.
int Rounded(double v)
{
    return static_cast<int>(v + 0.5);
}

double Normalised(int y)
{
    return (y - 16) / 219.0;
}

double Difference(int c)
{
    return (c - 128) / 224.0;
}

Chroma LimitedChroma(Differences c, double y0, double y1, const LegalParams& params)
{
    Limit(c, y0, params);
    Limit(c, y1, params);
    return {Rounded(c.b * 224 + 128), Rounded(c.r * 224 + 128)};
}

/// The pair with Cb moved by one where blue is outside by more than a code, which the rounding of chroma
/// makes of no other channel.
Pair BlueSettled(Pair pair, const LegalParams& params)
{
    const auto blue = [&](int y) { return params.luma * (y - kBlack) + params.blue.cb * (pair.cb - 128); };
    const bool above = blue(std::max(pair.y0, pair.y1)) > kMostChannel;
    const bool below = blue(std::min(pair.y0, pair.y1)) < -kOneCode;
    pair.cb += (below ? 1 : 0) - (above ? 1 : 0);
    return pair;
}

template <bool strict, bool chromaFirst>
void ProcessYCC422_AdjustSaturation_Line(const Byte* in, Byte* out, std::size_t pairs,
                                         const LegalParams& params)
{
    MapPairs<chromaFirst>(in, out, pairs, [&](const Pair& pair, const Pair&) {
        const int y0 = ClampLuma(pair.y0);
        const int y1 = ClampLuma(pair.y1);
        const Differences c{Difference(ClampChroma(pair.cb)), Difference(ClampChroma(pair.cr))};
        const Chroma chroma = LimitedChroma(c, Normalised(y0), Normalised(y1), params);
        const Pair limited{y0, chroma.cb, y1, chroma.cr};
        return strict ? BlueSettled(limited, params) : limited;
    });
}

/// Luma moved towards where each channel in turn is legal.
double MovedLuma(double y, const Differences& c, const LegalParams& params)
{
    const double channels[] = {params.blueOfCb * c.b, params.redOfCr * c.r,
                               params.greenOfCb * c.b + params.greenOfCr * c.r};
    for (const double channel : channels) {
        const double high = 1 - channel;
        const double low = -channel;
        if (y > high) y = y - params.lumaFactor * (y - high);
        if (y < low) y = y - params.lumaFactor * (y - low);
    }
    return y;
}

template <bool strict, bool chromaFirst>
void ProcessYCC422_AdjustLuminanceSaturation_Line(const Byte* in, Byte* out, std::size_t pairs,
                                                  const LegalParams& params)
{
    MapPairs<chromaFirst>(in, out, pairs, [&](const Pair& pair, const Pair&) {
        const Differences c{Difference(ClampChroma(pair.cb)), Difference(ClampChroma(pair.cr))};
        const double moved0 = MovedLuma(Normalised(ClampLuma(pair.y0)), c, params);
        const double moved1 = MovedLuma(Normalised(ClampLuma(pair.y1)), c, params);
        const int y0 = Rounded(moved0 * 219 + 16);
        const int y1 = Rounded(moved1 * 219 + 16);
        // Strictly it is the luma that is stored that limits chroma.
        const Chroma chroma = strict ? LimitedChroma(c, Normalised(y0), Normalised(y1), params)
                                     : LimitedChroma(c, moved0, moved1, params);
        const Pair limited{y0, chroma.cb, y1, chroma.cr};
        return strict ? BlueSettled(limited, params) : limited;
    });
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
    fill(LegalRule::Saturation, ProcessYCC422_AdjustSaturation_Line<strict, chromaFirst>);
    fill(LegalRule::LumaSaturation, ProcessYCC422_AdjustLuminanceSaturation_Line<strict, chromaFirst>);
    fill(LegalRule::Show, ProcessYCC422_ShowIllegal_Line<chromaFirst>);
}

LegalRows PlainRows()
{
    LegalRows plain{};
    FillOrder<false, false>(plain);
    FillOrder<false, true>(plain);
    FillOrder<true, false>(plain);
    FillOrder<true, true>(plain);
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

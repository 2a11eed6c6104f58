/// \file
/// The plain forms of the legalizer's kernels of saturation.
#include "il/rows/pixarith.h"
#include "il/rows/treat/legalpairs.h"

namespace vfil {

namespace {

using namespace legal;

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
    return {RoundHalfAway(c.b * 224 + 128), RoundHalfAway(c.r * 224 + 128)};
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
        const int y0 = RoundHalfAway(moved0 * 219 + 16);
        const int y1 = RoundHalfAway(moved1 * 219 + 16);
        // Strictly it is the luma that is stored that limits chroma.
        const Chroma chroma = strict ? LimitedChroma(c, Normalised(y0), Normalised(y1), params)
                                     : LimitedChroma(c, moved0, moved1, params);
        const Pair limited{y0, chroma.cb, y1, chroma.cr};
        return strict ? BlueSettled(limited, params) : limited;
    });
}

template <bool strict, bool chromaFirst>
void FillOrder(LegalRows& plain)
{
    for (const bool streaming : {false, true}) {
        plain.rows[static_cast<int>(LegalRule::Saturation)][strict][chromaFirst][streaming] =
            ProcessYCC422_AdjustSaturation_Line<strict, chromaFirst>;
        plain.rows[static_cast<int>(LegalRule::LumaSaturation)][strict][chromaFirst][streaming] =
            ProcessYCC422_AdjustLuminanceSaturation_Line<strict, chromaFirst>;
    }
}

} // namespace

void legal::FillSaturation(LegalRows& plain)
{
    FillOrder<false, false>(plain);
    FillOrder<false, true>(plain);
    FillOrder<true, false>(plain);
    FillOrder<true, true>(plain);
}

} // namespace vfil

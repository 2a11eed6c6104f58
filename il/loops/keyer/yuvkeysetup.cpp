/// \file
/// The parameters of the colour-difference key of video.
#include "il/loops/keyer/yuvkeysetup.h"

#include "il/loops/frame/saturate.h"
#include "il/loops/keyer/differencekey.h"
#include "il/rows/keyer/rgbcompositerows.h"
#include "il/rows/pixarith.h"

#include <algorithm>

namespace vfil {

namespace {

/// The channels of a mode, as columns of the matrix to RGB.
struct Channels : KeyChannels {
    int other;
};

constexpr Channels kGreen{kGreenScreen, 2};
constexpr Channels kBlue{kBlueScreen, 1};
constexpr int kRed = 0;

struct Bytes {
    unsigned char byte[4];
};

Bytes BytesOf(const vfILColor& color, PXColorModel model)
{
    Bytes bytes{};
    color.GetColorAs32(bytes.byte, model);
    return bytes;
}

/// By the larger of green and blue.
Channels ChannelsOf(const vfILColor& keyColor, const Channels& ofTie)
{
    const Bytes rgb = BytesOf(keyColor, PXColorModel_RGB);
    if (rgb.byte[1] == rgb.byte[2]) return ofTie;
    return rgb.byte[1] > rgb.byte[2] ? kGreen : kBlue;
}

std::int32_t RoundToInt16(double v)
{
    return RoundSaturated<std::int16_t>(v);
}

/// A column of the matrix that takes YCC to RGB, on a scale of 0 .. 1; [3] is the constant.
struct Column {
    double y, cb, cr, constant;
};

Column ColumnOf(PXColorModel model, int channel)
{
    const vfILColorMatrix& m =
        model == PXColorModel_YCC709 ? s_dfArrayYCCA709OffsettoRGBA : s_dfArrayYCCAOffsettoRGBA;
    const auto at = static_cast<std::size_t>(channel);
    return {m[at], m[4 + at], m[8 + at], m[12 + at]};
}

Column operator*(double factor, const Column& c)
{
    return {factor * c.y, factor * c.cb, factor * c.cr, factor * c.constant};
}

Column operator+(const Column& a, const Column& b)
{
    return {a.y + b.y, a.cb + b.cb, a.cr + b.cr, a.constant + b.constant};
}

/// The channel of the key colour's samples, without the constant.
double KeyLevel(const vfILYUVKeySettings& settings, const Column& column)
{
    const Bytes key = BytesOf(settings.keyColor, settings.model);
    return key.byte[0] * column.y + key.byte[1] * column.cb + key.byte[2] * column.cr;
}

/// Gain and offset of a window between clip levels; none, for none is used, of equal ones.
void SetLine(MatteWindow& window, const vfILYUVKeySettings& settings)
{
    const double span = settings.clipHigh - settings.clipLow;
    if (span == 0) return;
    window.gain = RoundHalfAway(65536 / span);
    window.offset = RoundHalfAway(16711680 * settings.clipLow / span);
}

/// 512ths with a whole constant.
YccForm ChannelForm(const Column& c)
{
    return {RoundToInt16(512 * c.y), RoundToInt16(512 * c.cb), RoundToInt16(512 * c.cr),
            RoundToInt16(255 * c.constant)};
}

/// 65536ths.
YccForm FoldedForm(const Column& c, double constant)
{
    return {RoundHalfAway(65536 * c.y), RoundHalfAway(65536 * c.cb), RoundHalfAway(65536 * c.cr),
            RoundHalfAway(65536 * constant)};
}

} // namespace

ChannelKeyParams ChannelKeyOf(const vfILYUVKeySettings& s)
{
    const Channels channels = ChannelsOf(s.keyColor, kGreen);
    const Column key = ColumnOf(s.model, channels.key);
    const Column p = ColumnOf(s.model, channels.p);
    const Column q = ColumnOf(s.model, channels.q);
    ChannelKeyParams params{};
    params.key = ChannelForm(key);
    params.other = ChannelForm(ColumnOf(s.model, channels.other));
    params.red = ChannelForm(ColumnOf(s.model, kRed));
    params.red.cb = 0;
    // The weight of Y is the same in all columns, and taken from one.
    params.other.y = params.red.y = params.key.y;
    params.rest = ChannelForm(s.c2 * q + (s.c0 * s.c1) * p);
    params.rest.constant = RoundToInt16(255 + 255 * s.c2 * q.constant + 255 * s.c0 * s.c1 * p.constant);
    params.factor = RoundToInt16(-s.c0 * 4096);
    params.limit = RoundToInt16(KeyLevel(s, key) + 255 * key.constant);
    params.window.low = RoundToInt16(255 * s.clipLow);
    params.window.high = RoundToInt16(255 * s.clipHigh);
    SetLine(params.window, s);
    params.threshold = RoundToInt16(s.threshold * 255);
    params.softness = RoundToInt16(256.0 * RoundHalfAway(s.softness * 255) / 255);
    const std::int32_t factor = TruncateToInt32(s.lumaFactor * 128);
    params.luma = {2 * std::clamp<std::int32_t>(factor, INT16_MIN, INT16_MAX),
                   RoundToInt16(s.lumaTerm * 255)};
    const Bytes spill = BytesOf(s.spillColor, s.model);
    params.spillCb = spill.byte[1];
    params.spillCr = spill.byte[2];
    return params;
}

FoldedKeyParams FoldedKeyOf(const vfILYUVKeySettings& s)
{
    const Channels channels = ChannelsOf(s.keyColor, kBlue);
    const Column key = ColumnOf(s.model, channels.key);
    const Column p = ColumnOf(s.model, channels.p);
    const Column q = ColumnOf(s.model, channels.q);
    const Column above = s.c2 * q + (s.c0 * s.c1) * p;
    const Column below = above + (-s.c0) * key;
    const double level = KeyLevel(s, key);
    const auto constant = [&](double limited) {
        return 255 + 255 * s.c2 * q.constant -
               s.c0 * (255 * key.constant - 255 * s.c1 * p.constant + limited);
    };
    FoldedKeyParams params{};
    params.below = FoldedForm(below, constant(0));
    params.above = FoldedForm(above, constant(level));
    params.test = FoldedForm(key, 0);
    params.limit = RoundHalfAway(level * 65536);
    params.window.low = RoundHalfAway(s.clipLow * 65536 * 255);
    params.window.high = RoundHalfAway(255 * s.clipHigh * 65536);
    SetLine(params.window, s);
    return params;
}

RgbCompositeParams RgbCompositeOf(const vfILYUVKeySettings& s)
{
    const Channels channels = ChannelsOf(s.keyColor, kBlue);
    RgbCompositeParams params{};
    params.difference =
        DifferenceKeyOf(channels, s.c0, s.c1, s.c2, BytesOf(s.keyColor, PXColorModel_RGB).byte[channels.key]);
    params.low = RoundHalfAway(255 * s.clipLow);
    params.low16 = RoundHalfAway(s.clipLow * 65536 * 255);
    params.high16 = RoundHalfAway(s.clipHigh * 65536 * 255);
    MatteWindow window{};
    SetLine(window, s);
    params.gain = window.gain;
    RgbSpillParams& spill = params.spill;
    spill.key = channels.key;
    spill.other = channels.other;
    spill.threshold = RoundHalfAway(s.threshold * 255);
    SetSoftness(spill, RoundHalfAway(s.softness * 255));
    spill.lumaTerm = RoundHalfAway(s.lumaTerm * 255);
    const Bytes color = BytesOf(s.spillColor, s.model);
    spill.cb = color.byte[1];
    spill.cr = color.byte[2];
    spill.weights = s.model == PXColorModel_YCC709 ? YccWeights::Bt709 : YccWeights::Bt601;
    return params;
}

} // namespace vfil

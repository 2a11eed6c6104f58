/// \file
/// The plain forms of the kernels of the 4:2:2 keyers, and the table of their levels. A keyer is a rule: the
/// matte of a macropixel, and what the matte makes of the macropixels of both pictures.
#include "il/rows/keyer/videokeyrows.h"

#include "il/rows/pixarith.h"

#include <algorithm>
#include <cstdlib>

namespace vfil {

namespace {

using Byte = std::uint8_t;

constexpr int kBlackLuma = 16;
constexpr int kNoChroma = 128;

/// Two pixels that share chroma. Results of 64 bits are stored by their low byte.
struct Macropixel {
    std::int64_t y0, cb, y1, cr;
};

template <bool chromaFirst>
Macropixel Load(const Byte* p)
{
    return chromaFirst ? Macropixel{p[1], p[0], p[3], p[2]} : Macropixel{p[0], p[1], p[2], p[3]};
}

template <bool chromaFirst>
void Store(const Macropixel& m, Byte* p)
{
    const auto byte = [](std::int64_t v) { return static_cast<Byte>(v & 0xFF); };
    constexpr int luma = chromaFirst ? 1 : 0;
    p[luma] = byte(m.y0);
    p[1 - luma] = byte(m.cb);
    p[luma + 2] = byte(m.y1);
    p[3 - luma] = byte(m.cr);
}

std::int64_t ClampToByte(std::int64_t v)
{
    return std::clamp<std::int64_t>(v, 0, 255);
}

/// A by the matte, B by the rest: all of 0 .. 255.
std::int64_t Blend(std::int64_t a, std::int64_t b, std::int64_t matte)
{
    return Arith<Byte>::Blend(static_cast<Byte>(a), static_cast<Byte>(b), static_cast<Byte>(matte));
}

/// The same without rounding, of any matte: less than A where it is full.
std::int64_t BlendDown(std::int64_t a, std::int64_t b, std::int64_t matte)
{
    return (a * matte + (255 - matte) * b) >> 8;
}

std::int64_t MatteOf(std::int64_t value, const MatteWindow& window)
{
    if (value <= window.low) return 0;
    if (value >= window.high) return 255;
    return (value * window.gain - window.offset) >> 16;
}

/// A matte of 0 .. 255 as luma of 16 .. 235.
std::int64_t LumaOfMatte(std::int64_t matte)
{
    return (matte * 0xDBDC + 0x100000) >> 16;
}

std::int64_t SpilledLuma(std::int64_t y, const SpillLuma& luma)
{
    return ClampToByte(((y * luma.gain) >> 8) + luma.offset);
}

/// The mattes of both pixels, and whether they make the macropixel wholly one of the pictures.
struct PairMatte {
    std::int64_t m0, m1;
    bool back, front;

    std::int64_t Mean() const { return (m0 + 1 + m1) >> 1; }
};

struct ChromaRule {
    using Params = ChromaKeyParams;

    /// Where the chroma lies beside the key colour's hue, which is the axis.
    struct Place {
        std::int64_t along, beside;
    };

    static Place PlaceOf(const Macropixel& a, const Params& params)
    {
        const std::int64_t u = a.cb - 128;
        const std::int64_t v = a.cr - 128;
        return {(u * params.cosine - v * params.sine) >> 7,
                std::abs((u * params.sine + v * params.cosine) >> 7)};
    }

    static std::int64_t KeyPixel(const Place& place, const KeySector& sector)
    {
        const std::int64_t inside = place.along - (((place.beside * sector.slope) >> 8) + sector.lift);
        // Beyond 32 bits only the sign counts; within, 64 hold the product.
        return ClampToByte((std::clamp<std::int64_t>(inside, INT32_MIN, INT32_MAX) * sector.gain) >> 8);
    }

    static std::int64_t SectorMatte(const Place& place, const KeySector& sector)
    {
        const std::int64_t rest = 255 - KeyPixel(place, sector);
        return ClampToByte((rest * sector.mapGain - std::int64_t{sector.mapLow} * sector.mapGain) >> 8);
    }

    static std::int64_t Matte(const Macropixel& a, const Params& params)
    {
        return SectorMatte(PlaceOf(a, params), params.key);
    }

    static Macropixel Corrected(const Macropixel& a, const Params& params)
    {
        const std::int64_t m = SectorMatte(PlaceOf(a, params), params.spill);
        return {Blend(a.y0, SpilledLuma(a.y0, params.luma), m), Blend(a.cb, params.spillCb, m),
                Blend(a.y1, SpilledLuma(a.y1, params.luma), m), Blend(a.cr, params.spillCr, m)};
    }

    template <bool spill>
    static Macropixel Mix(const Macropixel& a, const Macropixel& b, std::int64_t m, const Params& params)
    {
        if (m == 0) return b;
        const Macropixel front = spill ? Corrected(a, params) : a;
        return {Blend(front.y0, b.y0, m), Blend(front.cb, b.cb, m), Blend(front.y1, b.y1, m),
                Blend(front.cr, b.cr, m)};
    }

    static Macropixel Picture(std::int64_t m)
    {
        const std::int64_t luma = (m * 0xDC + 0x1000) >> 8;
        return {luma, kNoChroma, luma, kNoChroma};
    }
};

/// The picture of the mattes of two pixels.
Macropixel PictureOf(const PairMatte& m)
{
    if (m.back) return {kBlackLuma, kNoChroma, kBlackLuma, kNoChroma};
    if (m.front) return {235, kNoChroma, 235, kNoChroma};
    return {LumaOfMatte(m.m0), kNoChroma, LumaOfMatte(m.m1), kNoChroma};
}

struct ChannelRule {
    using Params = ChannelKeyParams;

    static std::int64_t Sum(const Macropixel& a, std::int64_t y, const YccForm& form)
    {
        return form.y * y + form.cb * a.cb + form.cr * a.cr;
    }

    static std::int64_t Channel(const Macropixel& a, std::int64_t y, const YccForm& form)
    {
        return ClampToByte((Sum(a, y, form) >> 9) + form.constant);
    }

    static std::int64_t KeyPixel(const Macropixel& a, std::int64_t y, const Params& params)
    {
        const std::int64_t limited = std::min<std::int64_t>(Channel(a, y, params.key), params.limit);
        return ((Sum(a, y, params.rest) + ((limited * params.factor) >> 3)) >> 9) + params.rest.constant;
    }

    static PairMatte Matte(const Macropixel& a, const Params& params)
    {
        const std::int64_t k0 = KeyPixel(a, a.y0, params);
        const std::int64_t k1 = KeyPixel(a, a.y1, params);
        const std::int64_t m0 = ClampToByte(MatteOf(k0, params.window));
        const std::int64_t m1 = ClampToByte(MatteOf(k1, params.window));
        // It is the matte, and not the key, that is held against the upper end.
        return {m0, m1, k0 <= params.window.low && k1 <= params.window.low,
                std::min(m0, m1) >= params.window.high};
    }

    /// How much of a pixel stays when the key colour that was spilled on it is taken away.
    static std::int64_t Kept(const Macropixel& a, std::int64_t y, const Params& params)
    {
        const std::int64_t key = Channel(a, y, params.key);
        const std::int64_t most = std::max(Channel(a, y, params.other), Channel(a, y, params.red));
        const std::int64_t from = ClampToByte(most - params.threshold);
        const std::int64_t to = std::min<std::int64_t>(from + params.softness, 255);
        if (key <= from) return 255;
        if (key >= to) return 0;
        return NormDiv8(static_cast<Byte>(to - key), static_cast<Byte>(to - from));
    }

    static Macropixel Corrected(const Macropixel& a, const Params& params)
    {
        const std::int64_t s0 = Kept(a, a.y0, params);
        const std::int64_t s1 = Kept(a, a.y1, params);
        const std::int64_t mean = (s0 + s1 + 1) >> 1;
        return {Blend(a.y0, SpilledLuma(a.y0, params.luma), s0), Blend(a.cb, params.spillCb, mean),
                Blend(a.y1, SpilledLuma(a.y1, params.luma), s1), Blend(a.cr, params.spillCr, mean)};
    }

    template <bool spill>
    static Macropixel Mix(const Macropixel& a, const Macropixel& b, const PairMatte& m, const Params& params)
    {
        if (m.back) return b;
        const Macropixel front = spill ? Corrected(a, params) : a;
        if (m.front) return front;
        return {Blend(front.y0, b.y0, m.m0), Blend(front.cb, b.cb, m.Mean()), Blend(front.y1, b.y1, m.m1),
                Blend(front.cr, b.cr, m.Mean())};
    }
};

struct FoldedRule {
    using Params = FoldedKeyParams;

    static std::int64_t KeyPixel(const Macropixel& a, std::int64_t y, const Params& params)
    {
        const std::int64_t channel = ChannelRule::Sum(a, y, params.test);
        const YccForm& form = channel < params.limit ? params.below : params.above;
        return ChannelRule::Sum(a, y, form) + form.constant;
    }

    static std::int64_t MatteOfKey(std::int64_t key, const MatteWindow& window)
    {
        if (key <= window.low) return 0;
        if (key >= window.high) return 255;
        return ((key >> 16) * window.gain - window.offset) >> 16;
    }

    static PairMatte Matte(const Macropixel& a, const Params& params)
    {
        const std::int64_t k0 = KeyPixel(a, a.y0, params);
        const std::int64_t k1 = KeyPixel(a, a.y1, params);
        const MatteWindow& window = params.window;
        return {MatteOfKey(k0, window), MatteOfKey(k1, window), k0 <= window.low && k1 <= window.low,
                k0 >= window.high && k1 >= window.high};
    }

    template <bool spill>
    static Macropixel Mix(const Macropixel& a, const Macropixel& b, const PairMatte& m, const Params&)
    {
        if (m.back) return b;
        if (m.front) return a;
        return {BlendDown(a.y0, b.y0, m.m0), BlendDown(a.cb, b.cb, m.Mean()), BlendDown(a.y1, b.y1, m.m1),
                BlendDown(a.cr, b.cr, m.Mean())};
    }

    static Macropixel Picture(const PairMatte& m) { return PictureOf(m); }
};

struct LumaRule {
    using Params = VideoLumaKeyParams;

    static std::int64_t KeyPixel(std::int64_t y, const Params& params)
    {
        const std::int64_t luma =
            std::clamp<std::int64_t>(((y * params.gain) >> 16) + params.offset, params.least, params.most);
        return params.reverse ? 251 - luma : luma;
    }

    static PairMatte Matte(const Macropixel& a, const Params& params)
    {
        const std::int64_t k0 = KeyPixel(a.y0, params);
        const std::int64_t k1 = KeyPixel(a.y1, params);
        const MatteWindow& window = params.window;
        return {MatteOf(k0, window), MatteOf(k1, window), k0 <= window.low && k1 <= window.low,
                k0 >= window.high && k1 >= window.high};
    }

    /// The first pixel's matte serves the chroma of both.
    template <bool spill>
    static Macropixel Mix(const Macropixel& a, const Macropixel& b, const PairMatte& m, const Params&)
    {
        if (m.back) return b;
        if (m.front) return a;
        return {BlendDown(a.y0, b.y0, m.m0), BlendDown(a.cb, b.cb, m.m0), BlendDown(a.y1, b.y1, m.m1),
                BlendDown(a.cr, b.cr, m.m0)};
    }

    static Macropixel Picture(const PairMatte& m) { return PictureOf(m); }
};

template <class Rule, KeyResult result, bool chromaFirst>
void PlainRow(const Byte* a, const Byte* b, Byte* out, std::size_t macropixels,
              const typename Rule::Params& params)
{
    for (; macropixels != 0; --macropixels, a += 4, b += 4, out += 4) {
        const Macropixel front = Load<chromaFirst>(a);
        const auto matte = Rule::Matte(front, params);
        if constexpr (result == KeyResult::Matte) {
            Store<chromaFirst>(Rule::Picture(matte), out);
        } else {
            constexpr bool spill = result == KeyResult::SpillCorrected;
            Store<chromaFirst>(Rule::template Mix<spill>(front, Load<chromaFirst>(b), matte, params), out);
        }
    }
}

template <class Rule, KeyResult result>
void FillPlain(VideoKeyRow<typename Rule::Params> (&rows)[2][2])
{
    for (int streaming = 0; streaming < 2; ++streaming) {
        rows[false][streaming] = PlainRow<Rule, result, false>;
        rows[true][streaming] = PlainRow<Rule, result, true>;
    }
}

VideoKeyRows PlainRows()
{
    VideoKeyRows rows;
    FillPlain<ChromaRule, KeyResult::Composite>(rows.chroma[static_cast<int>(KeyResult::Composite)]);
    FillPlain<ChromaRule, KeyResult::SpillCorrected>(
        rows.chroma[static_cast<int>(KeyResult::SpillCorrected)]);
    FillPlain<ChromaRule, KeyResult::Matte>(rows.chroma[static_cast<int>(KeyResult::Matte)]);
    FillPlain<ChannelRule, KeyResult::Composite>(rows.channel[false]);
    FillPlain<ChannelRule, KeyResult::SpillCorrected>(rows.channel[true]);
    FillPlain<FoldedRule, KeyResult::Composite>(rows.folded[false]);
    FillPlain<FoldedRule, KeyResult::Matte>(rows.folded[true]);
    FillPlain<LumaRule, KeyResult::Composite>(rows.luma[false]);
    FillPlain<LumaRule, KeyResult::Matte>(rows.luma[true]);
    return rows;
}

template <bool chromaFirst>
void PlainHalf(KeyResult result, KeptHalf half, const Byte* pixelsA, const Byte* pixelsB, Byte* out,
               const ChromaKeyParams& params)
{
    const Macropixel a = Load<chromaFirst>(pixelsA);
    const Macropixel b = Load<chromaFirst>(pixelsB);
    const bool first = half == KeptHalf::First;
    const std::int64_t m = ChromaRule::Matte(a, params);
    if (result == KeyResult::Matte) {
        Macropixel picture = ChromaRule::Picture(m);
        (first ? picture.y1 : picture.y0) = kBlackLuma;
        Store<chromaFirst>(picture, out);
        return;
    }
    std::int64_t luma = first ? a.y0 : a.y1;
    Macropixel front = a;
    if (result == KeyResult::SpillCorrected && m != 0) {
        const std::int64_t spill = ChromaRule::SectorMatte(ChromaRule::PlaceOf(a, params), params.spill);
        const std::int64_t spilled = SpilledLuma(a.y1, params.luma);
        const std::int64_t corrected = Blend(luma, spilled, spill);
        front = ChromaRule::Corrected(a, params);
        luma = first ? corrected : spilled;
        if (!first) front.cb = corrected;
    }
    const auto chroma = [m](auto ours, auto back) { return Blend(Blend(ours, back, m), back, 128); };
    const std::int64_t keyed = Blend(luma, first ? b.y0 : b.y1, m);
    Store<chromaFirst>(
        {first ? keyed : b.y0, chroma(front.cb, b.cb), first ? b.y1 : keyed, chroma(front.cr, b.cr)}, out);
}

const LevelTables<VideoKeyRows>& Tables()
{
    static const LevelTables<VideoKeyRows> tables(PlainRows(), VFIL_FILLS);
    return tables;
}

template <class Params>
const VideoKeyRows& RowsFor(const VideoKeyCase& which, const Params& params)
{
    return VideoKeyRowsAt(which.useVectors && FitsLanes(params) ? BestLevel() : Level::Plain);
}

} // namespace

const VideoKeyRows& VideoKeyRowsAt(Level level)
{
    return Tables().At(level);
}

VideoKeyRow<ChromaKeyParams> FindVideoKeyRow(const VideoKeyCase& which, const ChromaKeyParams& params)
{
    return RowsFor(which, params).chroma[static_cast<int>(which.result)][which.chromaFirst][which.streaming];
}

VideoKeyRow<ChannelKeyParams> FindVideoKeyRow(const VideoKeyCase& which, const ChannelKeyParams& params)
{
    return RowsFor(which, params)
        .channel[which.result == KeyResult::SpillCorrected][which.chromaFirst][which.streaming];
}

VideoKeyRow<FoldedKeyParams> FindVideoKeyRow(const VideoKeyCase& which, const FoldedKeyParams& params)
{
    return RowsFor(which, params)
        .folded[which.result == KeyResult::Matte][which.chromaFirst][which.streaming];
}

VideoKeyRow<VideoLumaKeyParams> FindVideoKeyRow(const VideoKeyCase& which, const VideoLumaKeyParams& params)
{
    return RowsFor(which, params).luma[which.result == KeyResult::Matte][which.chromaFirst][which.streaming];
}

void KeyHalf(const VideoKeyCase& which, KeptHalf half, const std::uint8_t* a, const std::uint8_t* b,
             std::uint8_t* out, const ChromaKeyParams& params)
{
    (which.chromaFirst ? PlainHalf<true> : PlainHalf<false>)(which.result, half, a, b, out, params);
}

} // namespace vfil

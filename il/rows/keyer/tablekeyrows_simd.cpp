/// \file
/// The vector forms of the kernels of keys by tables, for the level VFIL_LEVEL.
#include "il/rows/keyer/tablekeyparams.h"
#include "il/rows/vecplanes.h"

namespace vfil {
namespace {

using Byte = std::uint8_t;

/// \tparam channel  The one that is limited by the one before it.
template <int channel, bool streaming>
void Surpress(const Byte* in, Byte* out, std::size_t pixels)
{
    const U8 others = SplatU32(~(0xFFU << (8 * channel)));
    MapRow<streaming, 4>(in, in, out, 4 * pixels,
                         [others](U8 v, U8, Part) { return Min(v, ShiftLeft32<8>(v) | others); });
}

#if defined(__AVX2__)

/// Gives kBytes pixels at a time the alpha that alphaOf(planes) makes.
template <bool keepAlpha, bool streaming, class AlphaOf>
void KeyRow(const Byte* in, Byte* out, std::size_t pixels, AlphaOf alphaOf)
{
    ConvertRow<streaming, 4, 4>(in, out, pixels, [&alphaOf](const Byte* from, U8* vectors) {
        Block planes = ToPlanes(LoadBlock(from));
        const U8 alpha = alphaOf(planes);
        planes.v[3] = keepAlpha ? Min(alpha, planes.v[3]) : alpha;
        const Block keyed = FromPlanes(planes);
        for (int i = 0; i < 4; ++i)
            vectors[i] = keyed.v[i];
    });
}

struct Ends {
    U8 smallest, largest;
};

Ends EndsOf(const Block& planes)
{
    const auto& [r, g, b, a] = planes.v;
    return {Min(Min(r, g), b), Max(Max(r, g), b)};
}

/// In 256ths of the circle; of a grey 0.
U8 Hue(const Block& planes, const Ends& ends, U8 distance)
{
    const auto& [r, g, b, a] = planes.v;
    const auto red = Equal(ends.largest, r);
    const auto green = Equal(ends.largest, g);
    const U8 to = Select(red, g, Select(green, b, r));
    const U8 from = Select(red, b, Select(green, r, g));
    const U8 middle = Select(red, SplatByte(0), Select(green, SplatByte(85), SplatByte(170)));
    const U8 share = Quotient(AbsDiff(to, from), Max(distance, SplatByte(1)), 42.5F);
    const U8 back = Select(Equal(Max(to, from), to), SplatByte(0), SplatByte(255));
    return Add(middle, Subtract(share ^ back, back));
}

template <bool keepAlpha, bool streaming>
void HlsKey(const Byte* in, Byte* out, std::size_t pixels, const HlsKeyTables& tables)
{
    const ByteTable<16> alphaOfHue(tables.alphaOfHue);
    const ByteTable<2> lightnesses(tables.outsideLightnesses);
    const ByteTable<2> saturations(tables.outsideSaturations);
    const U8 outside = SplatByte(tables.outsideAlpha);
    KeyRow<keepAlpha, streaming>(in, out, pixels, [&](const Block& planes) {
        const Ends ends = EndsOf(planes);
        const U8 distance = Subtract(ends.largest, ends.smallest);
        const U8 lightness = Average(ends.largest, ends.smallest);
        // Above the middle the largest distance is the sum of the complements.
        const U8 light = UpperHalf(lightness);
        const U8 most = Add(ends.largest ^ light, ends.smallest ^ light);
        const U8 saturation = Quotient(distance, Max(most, SplatByte(1)), 255.0F);
        const U8 isOutside = IsIn(lightnesses, lightness) | IsIn(saturations, saturation);
        return Select(Equal(isOutside, SplatByte(0)), Lookup(alphaOfHue, Hue(planes, ends, distance)),
                      outside);
    });
}

template <bool keepAlpha, bool streaming>
void LumKey(const Byte* in, Byte* out, std::size_t pixels, const LumKeyTable& table)
{
    const ByteTable<16> alphaOf(table.alphaOf);
    KeyRow<keepAlpha, streaming>(in, out, pixels, [&alphaOf](const Block& planes) {
        const Ends ends = EndsOf(planes);
        const U8 rounded = (ends.largest ^ ends.smallest) & SplatByte(1);
        return Lookup(alphaOf, Subtract(Average(ends.largest, ends.smallest), rounded));
    });
}

/// A byte x of each 32 bits as the pair (8 x, x), whose product with a pair of weights is one with a weight
/// of up to 19 bits.
S32 Scaled(S32 x)
{
    return ShiftUp<3>(x) | ShiftUp<16>(x);
}

S32 WeightOfScaled(std::int32_t weight)
{
    return SplatPair16(weight >> 3, weight & 7);
}

/// Lanes of three samples of YCC, or of RGB.
struct Lanes {
    S32 a, b, c;
};

struct Encoder {
    struct Row {
        Row(const EncodeWeights& w, int offset)
            : redBlue(SplatPair16(w.red, w.blue)), green(WeightOfScaled(w.green)),
              constant(Splat32(0x8000 + (offset << 16)))
        {}
        S32 operator()(S32 redBlues, S32 greens) const
        {
            return ShiftDown<16>(DotPairs(redBlues, redBlue) + DotPairs(greens, green) + constant);
        }

        S32 redBlue, green, constant;
    };

    explicit Encoder(const EncodeTable& table) : y(table.y, 16), cb(table.cb, 128), cr(table.cr, 128) {}

    /// Of one byte of each 32 bits of the planes.
    template <int byte>
    Lanes At(const Block& planes) const
    {
        const S32 redBlues = ByteLanes<byte>(planes.v[0]) | ShiftUp<16>(ByteLanes<byte>(planes.v[2]));
        const S32 greens = Scaled(ByteLanes<byte>(planes.v[1]));
        return {y(redBlues, greens), cb(redBlues, greens), cr(redBlues, greens)};
    }

    Row y, cb, cr;
};

/// a by the weight, b by the rest.
U8 Blend(U8 a, U8 b, U8 weight)
{
    const U16Pair w = Widen(weight);
    const U16Pair rest = Widen(weight ^ SplatByte(255));
    const U16Pair as = Widen(a);
    const U16Pair bs = Widen(b);
    return Narrow(
        {NormMult(w.lo, as.lo) + NormMult(rest.lo, bs.lo), NormMult(w.hi, as.hi) + NormMult(rest.hi, bs.hi)});
}

struct YccPlanes {
    U8 y, cb, cr;
};

struct Decoder {
    explicit Decoder(const DecodeTable& table)
        : luma(WeightOfScaled(table.red.y)), redCr(WeightOfScaled(table.red.cr)),
          greenCb(WeightOfScaled(table.green.cb)), greenCr(WeightOfScaled(table.green.cr)),
          blueCb(WeightOfScaled(table.blue.cb)), red(Splat32(table.red.constant)),
          green(Splat32(table.green.constant)), blue(Splat32(table.blue.constant))
    {}

    template <int byte>
    Lanes At(const YccPlanes& ycc) const
    {
        const S32 y = DotPairs(Scaled(ByteLanes<byte>(ycc.y)), luma); // the same in all three channels
        const S32 cb = Scaled(ByteLanes<byte>(ycc.cb));
        const S32 cr = Scaled(ByteLanes<byte>(ycc.cr));
        return {ShiftDown<16>(y + DotPairs(cr, redCr) + red),
                ShiftDown<16>(y + DotPairs(cb, greenCb) + DotPairs(cr, greenCr) + green),
                ShiftDown<16>(y + DotPairs(cb, blueCb) + blue)};
    }

    S32 luma, redCr, greenCb, greenCr, blueCb, red, green, blue;
};

struct Replacement {
    explicit Replacement(const ChromaReplacement& r)
        : lumaOf(r.lumaOf), cb(SplatByte(r.cb)), cr(SplatByte(r.cr)),
          encode(kEncode[0][static_cast<int>(r.weights)]), decode(kDecode[0][static_cast<int>(r.weights)])
    {}
    Block operator()(const Byte* a, const Byte* b) const
    {
        const Block from = ToPlanes(LoadBlock(a));
        const U8 weight = from.v[3];
        const Lanes ycc[] = {encode.At<0>(from), encode.At<1>(from), encode.At<2>(from), encode.At<3>(from)};
        const U8 y = JoinBytes(ycc[0].a, ycc[1].a, ycc[2].a, ycc[3].a);
        const YccPlanes mixed{Blend(y, Lookup(lumaOf, y), weight),
                              Blend(JoinBytes(ycc[0].b, ycc[1].b, ycc[2].b, ycc[3].b), cb, weight),
                              Blend(JoinBytes(ycc[0].c, ycc[1].c, ycc[2].c, ycc[3].c), cr, weight)};
        const Lanes rgb[] = {decode.At<0>(mixed), decode.At<1>(mixed), decode.At<2>(mixed),
                             decode.At<3>(mixed)};
        return FromPlanes(
            {{JoinLimited(rgb[0].a, rgb[1].a, rgb[2].a, rgb[3].a),
              JoinLimited(rgb[0].b, rgb[1].b, rgb[2].b, rgb[3].b),
              JoinLimited(rgb[0].c, rgb[1].c, rgb[2].c, rgb[3].c), ToPlanes(LoadBlock(b)).v[3]}});
    }

    ByteTable<16> lumaOf;
    U8 cb, cr;
    Encoder encode;
    Decoder decode;
};

void StoreBlock(Byte* out, const Block& block)
{
    for (std::size_t i = 0; i < 4; ++i)
        Store(out + i * kBytes, block.v[i]);
}

void Replace(const Byte* a, const Byte* b, Byte* out, std::size_t pixels,
             const ChromaReplacement& replacement)
{
    static_assert(static_cast<int>(YccArithmetic::Exact) == 0);
    const Replacement replace(replacement);
    std::size_t at = 0;
    for (; pixels - at >= kBytes; at += kBytes)
        StoreBlock(out + 4 * at, replace(a + 4 * at, b + 4 * at));
    if (at == pixels) return;
    Byte as[4 * kBytes] = {};
    Byte bs[4 * kBytes] = {};
    std::memcpy(as, a + 4 * at, 4 * (pixels - at));
    std::memcpy(bs, b + 4 * at, 4 * (pixels - at));
    StoreBlock(as, replace(as, bs));
    std::memcpy(out + 4 * at, as, 4 * (pixels - at));
}

template <bool keepAlpha>
void FillKeys(TableKeyRows& rows)
{
    rows.hlsKey[keepAlpha][0] = HlsKey<keepAlpha, false>;
    rows.hlsKey[keepAlpha][1] = HlsKey<keepAlpha, true>;
    rows.lumKey[keepAlpha][0] = LumKey<keepAlpha, false>;
    rows.lumKey[keepAlpha][1] = LumKey<keepAlpha, true>;
}

#endif

} // namespace

namespace VFIL_LEVEL {

// Tables take a byte shuffle, which the lowest level lacks.
void Fill(TableKeyRows& rows)
{
    rows.surpress[0][0] = Surpress<1, false>;
    rows.surpress[0][1] = Surpress<1, true>;
    rows.surpress[1][0] = Surpress<2, false>;
    rows.surpress[1][1] = Surpress<2, true>;
#if defined(__AVX2__)
    FillKeys<false>(rows);
    FillKeys<true>(rows);
    // So much is computed that stores around the cache gain nothing.
    rows.replace[0] = Replace;
    rows.replace[1] = Replace;
#endif
}

} // namespace VFIL_LEVEL
} // namespace vfil

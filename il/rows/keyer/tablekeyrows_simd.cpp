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

/// One sample of YCC of one byte of each 32 bits of the planes.
template <int byte>
S32 EncodeLanes(const Block& planes, const EncodeWeights& weights, int offset)
{
    const S32 sum = ByteLanes<byte>(planes.v[0]) * Splat32(weights.red) +
                    ByteLanes<byte>(planes.v[1]) * Splat32(weights.green) +
                    ByteLanes<byte>(planes.v[2]) * Splat32(weights.blue);
    return ShiftDown<16>(sum + Splat32(0x8000 + (offset << 16)));
}

U8 Encode(const Block& planes, const EncodeWeights& weights, int offset)
{
    return JoinBytes(EncodeLanes<0>(planes, weights, offset), EncodeLanes<1>(planes, weights, offset),
                     EncodeLanes<2>(planes, weights, offset), EncodeLanes<3>(planes, weights, offset));
}

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

template <int byte>
S32 DecodeLanes(const YccPlanes& ycc, const DecodeWeights& weights)
{
    return ShiftDown<16>(ByteLanes<byte>(ycc.y) * Splat32(weights.y) +
                         ByteLanes<byte>(ycc.cb) * Splat32(weights.cb) +
                         ByteLanes<byte>(ycc.cr) * Splat32(weights.cr) + Splat32(weights.constant));
}

U8 Decode(const YccPlanes& ycc, const DecodeWeights& weights)
{
    return JoinLimited(DecodeLanes<0>(ycc, weights), DecodeLanes<1>(ycc, weights),
                       DecodeLanes<2>(ycc, weights), DecodeLanes<3>(ycc, weights));
}

struct Replacement {
    explicit Replacement(const ChromaReplacement& r)
        : lumaOf(r.lumaOf), cb(SplatByte(r.cb)), cr(SplatByte(r.cr)),
          encode(kEncode[0][static_cast<int>(r.weights)]), decode(kDecode[0][static_cast<int>(r.weights)])
    {}
    Block operator()(const Byte* a, const Byte* b) const
    {
        const Block from = ToPlanes(LoadBlock(a));
        const U8 weight = from.v[3];
        const U8 y = Encode(from, encode.y, 16);
        const YccPlanes mixed{Blend(y, Lookup(lumaOf, y), weight),
                              Blend(Encode(from, encode.cb, 128), cb, weight),
                              Blend(Encode(from, encode.cr, 128), cr, weight)};
        return FromPlanes({{Decode(mixed, decode.red), Decode(mixed, decode.green),
                            Decode(mixed, decode.blue), ToPlanes(LoadBlock(b)).v[3]}});
    }

    ByteTable<16> lumaOf;
    U8 cb, cr;
    const EncodeTable& encode;
    const DecodeTable& decode;
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

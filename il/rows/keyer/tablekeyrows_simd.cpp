/// \file
/// The vector forms of the kernels of keys by tables, for the level VFIL_LEVEL.
#include "il/rows/keyer/keylanes.h"
#include "il/rows/keyer/tablekeyparams.h"

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

struct Replacement {
    explicit Replacement(const ChromaReplacement& r)
        : lumaOf(r.lumaOf), cb(SplatByte(r.cb)), cr(SplatByte(r.cr)), encode(r.weights), decode(r.weights)
    {}
    Block operator()(const Byte* a, const Byte* b) const
    {
        const Block from = ToPlanes(LoadBlock(a));
        const U8 weight = from.v[3];
        const YccPlanes ycc = encode(from);
        Block rgb = decode({Blend(ycc.y, Lookup(lumaOf, ycc.y), weight), Blend(ycc.cb, cb, weight),
                            Blend(ycc.cr, cr, weight)});
        rgb.v[3] = ToPlanes(LoadBlock(b)).v[3];
        return FromPlanes(rgb);
    }

    ByteTable<16> lumaOf;
    U8 cb, cr;
    Encoder encode;
    Decoder decode;
};

void Replace(const Byte* a, const Byte* b, Byte* out, std::size_t pixels,
             const ChromaReplacement& replacement)
{
    MapBlocks(a, b, out, pixels, Replacement(replacement));
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

/// \file
/// The plain forms of the kernels of keys by tables, and the table of their levels.
#include "il/rows/keyer/tablekeyrows.h"

#include "il/rows/keyer/keybytes.h"

#include <algorithm>

namespace vfil {

namespace {

using Byte = std::uint8_t;
using Rules = Arith<Byte>;

struct Hls {
    Byte hue, lightness, saturation;
};

struct Ends {
    int smallest, largest;
};

Ends EndsOf(const Byte* rgba)
{
    const auto [smallest, largest] = std::minmax({rgba[0], rgba[1], rgba[2]});
    return {smallest, largest};
}

/// The hue in 256ths of the circle: red at 0, green at 85, blue at 170. On a tie the earlier of red, green,
/// blue counts as the largest.
Byte HueOf(const Byte* rgba, const Ends& ends)
{
    const int r = rgba[0];
    const int g = rgba[1];
    const int b = rgba[2];
    const int distance = ends.largest - ends.smallest;
    if (distance < 1) return 0;
    int middle = 170;
    int turn = r - g;
    if (ends.largest == r) {
        middle = 0;
        turn = g - b;
    } else if (ends.largest == g) {
        middle = 85;
        turn = b - r;
    }
    const int share = HueDiv8(static_cast<Byte>(turn < 0 ? -turn : turn), static_cast<Byte>(distance));
    return static_cast<Byte>(turn < 0 ? middle - share : middle + share);
}

Hls CalculateHLS(const Byte* rgba)
{
    const Ends ends = EndsOf(rgba);
    const int sum = ends.largest + ends.smallest;
    const int lightness = (sum + 1) >> 1;
    const int most = lightness < 128 ? sum : 510 - sum;
    return {HueOf(rgba, ends), static_cast<Byte>(lightness),
            NormDiv8(static_cast<Byte>(ends.largest - ends.smallest), static_cast<Byte>(most))};
}

bool IsIn(const Byte (&set)[32], Byte number)
{
    return (set[number >> 3] >> (number & 7) & 1) != 0;
}

/// A pixel's colour with the alpha that \p alphaOf(pixel) gives.
template <bool keepAlpha, class AlphaOf>
void KeyPixels(const Byte* in, Byte* out, std::size_t pixels, AlphaOf alphaOf)
{
    for (; pixels != 0; --pixels, in += 4, out += 4) {
        const Byte alpha = alphaOf(in);
        const Byte limit = keepAlpha ? in[3] : Byte{255};
        std::copy_n(in, 3, out);
        out[3] = std::min(alpha, limit);
    }
}

template <bool keepAlpha>
void PlainHlsKey(const Byte* in, Byte* out, std::size_t pixels, const HlsKeyTables& tables)
{
    KeyPixels<keepAlpha>(in, out, pixels, [&tables](const Byte* rgba) {
        const Hls hls = CalculateHLS(rgba);
        const bool outside =
            IsIn(tables.outsideLightnesses, hls.lightness) || IsIn(tables.outsideSaturations, hls.saturation);
        return outside ? tables.outsideAlpha : tables.alphaOfHue[hls.hue];
    });
}

template <bool keepAlpha>
void PlainLumKey(const Byte* in, Byte* out, std::size_t pixels, const LumKeyTable& table)
{
    KeyPixels<keepAlpha>(in, out, pixels, [&table](const Byte* rgba) {
        const Ends ends = EndsOf(rgba);
        return table.alphaOf[(ends.largest + ends.smallest) >> 1];
    });
}

/// \tparam channel  The one that is limited by the one before it.
template <int channel>
void PlainSurpress(const Byte* in, Byte* out, std::size_t pixels)
{
    for (; pixels != 0; --pixels, in += 4, out += 4) {
        const Byte limited = std::min(in[channel], in[channel - 1]);
        std::copy_n(in, 4, out);
        out[channel] = limited;
    }
}

void PlainReplace(const Byte* a, const Byte* b, Byte* out, std::size_t pixels,
                  const ChromaReplacement& replacement)
{
    for (; pixels != 0; --pixels, a += 4, b += 4, out += 4) {
        const Byte weight = a[3];
        const Byte alpha = b[3];
        const YccBytes ycc = Encode(a, replacement.weights);
        Decode({Rules::Blend(ycc.y, replacement.lumaOf[ycc.y], weight),
                Rules::Blend(ycc.cb, replacement.cb, weight), Rules::Blend(ycc.cr, replacement.cr, weight)},
               replacement.weights, out);
        out[3] = alpha;
    }
}

const LevelTables<TableKeyRows>& Tables()
{
    static const LevelTables<TableKeyRows> tables(
        {
            .hlsKey = {{PlainHlsKey<false>, PlainHlsKey<false>}, {PlainHlsKey<true>, PlainHlsKey<true>}},
            .lumKey = {{PlainLumKey<false>, PlainLumKey<false>}, {PlainLumKey<true>, PlainLumKey<true>}},
            .surpress = {{PlainSurpress<1>, PlainSurpress<1>}, {PlainSurpress<2>, PlainSurpress<2>}},
            .replace = {PlainReplace, PlainReplace},
        },
        VFIL_FILLS);
    return tables;
}

} // namespace

const TableKeyRows& TableKeyRowsAt(Level level)
{
    return Tables().At(level);
}

const TableKeyRows& FindTableKeyRows(bool useVectors)
{
    return TableKeyRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace vfil

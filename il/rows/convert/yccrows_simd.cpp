/// \file
/// The vector forms of the kernels between RGB and 4:2:2, for the level VFIL_LEVEL.
#include "il/rows/convert/yccparams.h"
#include "il/rows/vecmove.h"

namespace vfil {
namespace {

#if defined(__AVX2__)

using Byte = std::uint8_t;

/// Pixels of one step of a row.
constexpr std::size_t kStep = kLanes32;

/// Loads kStep pixels, each in 32 bits; the top byte of 3-byte pixels is undefined.
template <int pixelBytes>
S32 LoadPixels(const Byte* rgb)
{
    if constexpr (pixelBytes == 4) {
        return {Load(rgb).bits};
    } else {
        return LoadTriples(rgb);
    }
}

/// The coefficients of one sample, spread over the lanes that LoadPixels' parts are multiplied with.
struct SpreadWeights {
    S32 redBlue; ///< of the lanes (first byte, third byte)
    S32 green;   ///< of the lanes (green, 1) or (green, green)
};

template <YccArithmetic arithmetic>
SpreadWeights Spread(const EncodeWeights& weights, bool blueFirst)
{
    const S32 redBlue =
        blueFirst ? SplatPair16(weights.blue, weights.red) : SplatPair16(weights.red, weights.blue);
    if constexpr (arithmetic == YccArithmetic::Fast) {
        return {redBlue, SplatPair16(weights.green, 0x4000)};
    } else {
        // A weight of 16 fraction bits may need two lanes.
        const std::int32_t half = weights.green / 2;
        return {redBlue, SplatPair16(half, weights.green - half)};
    }
}

struct EncodeConstants {
    SpreadWeights y, chroma;
};

template <YccArithmetic arithmetic>
EncodeConstants MakeConstants(const YccLayout& layout)
{
    const EncodeTable& table = kEncode[static_cast<int>(arithmetic)][static_cast<int>(layout.weights)];
    const SpreadWeights cb = Spread<arithmetic>(table.cb, layout.blueFirst);
    const SpreadWeights cr = Spread<arithmetic>(table.cr, layout.blueFirst);
    return {Spread<arithmetic>(table.y, layout.blueFirst),
            {Alternate(cb.redBlue, cr.redBlue), Alternate(cb.green, cr.green)}};
}

/// Weighs lanes that hold `pixels` pixels' sums, rounded to nearest.
template <YccArithmetic arithmetic, int pixels>
S32 Weigh(S32 redBlue, S32 green, const SpreadWeights& weights)
{
    const S32 sum = DotPairs(redBlue, weights.redBlue) + DotPairs(green, weights.green);
    if constexpr (arithmetic == YccArithmetic::Fast) {
        return ShiftDown<14 + pixels>(sum); // the lane of ones brought the rounding term
    } else {
        return ShiftDown<15 + pixels>(sum + Splat32(pixels << 15));
    }
}

/// kStep pixels to 16 bits each, in 32-bit lanes: luma with the offset, beside Cb in even lanes and Cr in
/// odd.
template <YccArithmetic arithmetic, bool averaging, bool chromaFirst>
S32 EncodePixels(S32 pixels, const EncodeConstants& weights)
{
    const S32 redBlue = pixels & Splat32(0x00FF00FF);
    S32 green;
    if constexpr (arithmetic == YccArithmetic::Fast) {
        green = (ShiftDownBits<8>(pixels) & Splat32(0xFF)) | Splat32(0x10000);
    } else {
        green = {Shuffle16(pixels.bits, 0x8005'8005'8001'8001, 0x800D'800D'8009'8009)};
    }
    const S32 y = Weigh<arithmetic, 1>(redBlue, green, weights.y);
    S32 c;
    if constexpr (averaging) {
        constexpr int swapped = 0b10'11'00'01;
        c = Weigh<arithmetic, 2>(redBlue + Shuffle32<swapped>(redBlue), green + Shuffle32<swapped>(green),
                                 weights.chroma);
    } else {
        constexpr int left = 0b10'10'00'00;
        c = Weigh<arithmetic, 1>(Shuffle32<left>(redBlue), Shuffle32<left>(green), weights.chroma);
    }
    return chromaFirst ? c + ShiftUp<8>(y) + Splat32(0x1080) : y + ShiftUp<8>(c) + Splat32(0x8010);
}

template <bool streaming>
void Put(Byte* p, U8 v)
{
    if constexpr (streaming) {
        StoreStreaming(p, v);
    } else {
        Store(p, v);
    }
}

template <YccArithmetic arithmetic, int pixelBytes, bool averaging, bool chromaFirst, bool streaming>
void EncodePairs(const Byte* rgb, Byte* ycc, std::size_t pixels, const EncodeConstants& weights)
{
    const auto twoSteps = [&](const Byte* from) {
        return NarrowPairs(
            EncodePixels<arithmetic, averaging, chromaFirst>(LoadPixels<pixelBytes>(from), weights),
            EncodePixels<arithmetic, averaging, chromaFirst>(
                LoadPixels<pixelBytes>(from + kStep * pixelBytes), weights));
    };
    std::size_t at = 0;
    for (; pixels - at >= 2 * kStep; at += 2 * kStep)
        Put<streaming>(ycc + 2 * at, twoSteps(rgb + at * pixelBytes));
    if (at == pixels) return;
    Byte from[2 * kStep * pixelBytes] = {};
    Byte to[kBytes];
    std::memcpy(from, rgb + at * pixelBytes, (pixels - at) * pixelBytes);
    Store(to, twoSteps(from));
    std::memcpy(ycc + 2 * at, to, (pixels - at) * 2);
}

bool IsAligned(const Byte* p)
{
    return BytesToAligned(p) == 0;
}

template <YccArithmetic arithmetic, int pixelBytes, bool averaging, bool streaming>
void EncodeOrders(const Byte* rgb, Byte* ycc, std::size_t pixels, const YccLayout& layout)
{
    const auto encode = layout.chromaFirst ? EncodePairs<arithmetic, pixelBytes, averaging, true, streaming>
                                           : EncodePairs<arithmetic, pixelBytes, averaging, false, streaming>;
    encode(rgb, ycc, pixels & ~std::size_t{1}, MakeConstants<arithmetic>(layout));
}

/// Stores around the cache where the output allows it.
template <YccArithmetic arithmetic, int pixelBytes, bool averaging>
void EncodeStreaming(const Byte* rgb, Byte* ycc, std::size_t pixels, const YccLayout& layout)
{
    const auto encode = IsAligned(ycc) ? EncodeOrders<arithmetic, pixelBytes, averaging, true>
                                       : EncodeOrders<arithmetic, pixelBytes, averaging, false>;
    encode(rgb, ycc, pixels, layout);
}

/// Byte indices into 64 bits of a pair, below, and of the chroma of its right pixel, above; for 128 bits.
struct Indices {
    std::uint64_t low, high;
};

/// Where a sample of the left and of the right pixel stands.
struct Places {
    int left, right;
};

constexpr Places Luma(bool chromaFirst)
{
    return chromaFirst ? Places{1, 3} : Places{0, 2};
}

/// \param which 0 for Cb, 1 for Cr.
constexpr Places Chroma(bool chromaFirst, int which)
{
    const int at = (chromaFirst ? 0 : 1) + 2 * which;
    return {at, at + 4};
}

/// Two samples of each pixel to the 16-bit lanes of its 32 bits.
constexpr Indices SpreadPairs(Places lower, Places upper)
{
    const auto lanes = [=](int from) {
        const auto index = [=](int byte) { return static_cast<std::uint64_t>(from + byte) | 0x8000U; };
        return index(lower.left) | index(upper.left) << 16 | index(lower.right) << 32 |
               index(upper.right) << 48;
    };
    return {lanes(0), lanes(8)};
}

/// One sample of each pixel to its 32 bits.
constexpr Indices SpreadOne(Places places)
{
    const auto lanes = [=](int from) {
        const auto index = [=](int byte) { return static_cast<std::uint64_t>(from + byte) | 0x8080'8000U; };
        return index(places.left) | index(places.right) << 32;
    };
    return {lanes(0), lanes(8)};
}

S32 SpreadBy(U8 pairs, Indices indices)
{
    return {Shuffle16(pairs.bits, indices.low, indices.high)};
}

/// kStep pixels, a vector a channel, not yet limited to bytes.
struct Channels {
    S32 red, green, blue;
};

/// The decoder of one arithmetic.
template <YccArithmetic arithmetic>
class Decoder;

template <>
class Decoder<YccArithmetic::Fast> {
public:
    explicit Decoder(const YccLayout& layout)
        : m_cb(SpreadPairs(Luma(layout.chromaFirst), Chroma(layout.chromaFirst, 0))),
          m_cr(SpreadPairs(Luma(layout.chromaFirst), Chroma(layout.chromaFirst, 1)))
    {
        const DecodeTable& table =
            kDecode[static_cast<int>(YccArithmetic::Fast)][static_cast<int>(layout.weights)];
        m_red = SplatPair16(table.red.y, table.red.cr);
        m_greenCb = SplatPair16(table.green.y, table.green.cb);
        m_greenCr = SplatPair16(0, table.green.cr);
        m_blue = SplatPair16(table.blue.y, table.blue.cb);
        m_constants = {Splat32(table.red.constant), Splat32(table.green.constant),
                       Splat32(table.blue.constant)};
    }

    Channels operator()(U8 pairs) const
    {
        const S32 yCb = SpreadBy(pairs, m_cb);
        const S32 yCr = SpreadBy(pairs, m_cr);
        return {ShiftDown<14>(DotPairs(yCr, m_red) + m_constants.red),
                ShiftDown<14>(DotPairs(yCb, m_greenCb) + DotPairs(yCr, m_greenCr) + m_constants.green),
                ShiftDown<13>(DotPairs(yCb, m_blue) + m_constants.blue)};
    }

private:
    Indices m_cb, m_cr; ///< luma beside that chroma
    S32 m_red, m_greenCb, m_greenCr, m_blue;
    Channels m_constants;
};

template <>
class Decoder<YccArithmetic::Exact> {
public:
    explicit Decoder(const YccLayout& layout)
        : m_y(SpreadOne(Luma(layout.chromaFirst))), m_cb(SpreadOne(Chroma(layout.chromaFirst, 0))),
          m_cr(SpreadOne(Chroma(layout.chromaFirst, 1)))
    {
        const DecodeTable& table =
            kDecode[static_cast<int>(YccArithmetic::Exact)][static_cast<int>(layout.weights)];
        m_luma = Splat32(table.red.y);
        m_redCr = Splat32(table.red.cr);
        m_greenCb = Splat32(table.green.cb);
        m_greenCr = Splat32(table.green.cr);
        m_blueCb = Splat32(table.blue.cb);
        m_constants = {Splat32(table.red.constant), Splat32(table.green.constant),
                       Splat32(table.blue.constant)};
    }

    Channels operator()(U8 pairs) const
    {
        const S32 y = SpreadBy(pairs, m_y) * m_luma; // the same in all three channels
        const S32 cb = SpreadBy(pairs, m_cb);
        const S32 cr = SpreadBy(pairs, m_cr);
        return {ShiftDown<16>(y + cr * m_redCr + m_constants.red),
                ShiftDown<16>(y + cb * m_greenCb + cr * m_greenCr + m_constants.green),
                ShiftDown<16>(y + cb * m_blueCb + m_constants.blue)};
    }

private:
    Indices m_y, m_cb, m_cr;
    S32 m_luma, m_redCr, m_greenCb, m_greenCr, m_blueCb;
    Channels m_constants;
};

/// The alpha bytes of kStep pixels, in the lowest byte of each 32 bits.
template <bool hasAlpha>
S32 LoadAlpha(const Byte* alpha, std::size_t at)
{
    if constexpr (hasAlpha) {
        return {LoadEachAs32(alpha + at).bits};
    } else {
        return Splat32(255);
    }
}

/// Stores kStep pixels.
template <int pixelBytes, bool blueFirst, bool streaming>
void StorePixels(Byte* rgb, Channels channels, S32 alpha)
{
    // Four pixels of each 128 bits: their first and third bytes, then the second and fourth.
    const U16 outer =
        blueFirst ? PackSigned(channels.blue, channels.red) : PackSigned(channels.red, channels.blue);
    const U8 planes = Narrow({outer, PackSigned(channels.green, alpha)});
    if constexpr (pixelBytes == 4) {
        Put<streaming>(rgb, {Shuffle16(planes.bits, 0x0D05'0901'0C04'0800, 0x0F07'0B03'0E06'0A02)});
    } else {
        StoreTwelves(rgb, {Shuffle16(planes.bits, 0x0A02'0509'0104'0800, 0x8080'8080'070B'0306)});
    }
}

/// The pair and what stands for the chroma of its right pixel.
template <bool interpolating>
U8 WithRightChroma(const Byte* ycc)
{
    const U8 pairs = LoadEachAs64(ycc);
    U8 right = pairs;
    if constexpr (interpolating) right = Average(pairs, LoadEachAs64(ycc + 4));
    return pairs | ShiftLeft64<32>(right);
}

/// A row's rules, fixed before its loop.
template <YccArithmetic kArithmetic, int kPixelBytes, bool kInterpolating, bool kHasAlpha, bool kBlueFirst,
          bool kStreaming>
struct DecodeRules {
    static constexpr int pixelBytes = kPixelBytes;
    static constexpr bool interpolating = kInterpolating, hasAlpha = kHasAlpha, blueFirst = kBlueFirst,
                          streaming = kStreaming;
    using Arithmetic = Decoder<kArithmetic>;
};

/// Pixels of 4:2:2 in a line of the cache.
constexpr std::size_t kLinePixels = 32;

template <class Rules>
void DecodePairs(const Byte* ycc, const Byte* alpha, Byte* rgb, std::size_t pixels, const YccLayout& layout,
                 std::ptrdiff_t nextRow)
{
    constexpr std::size_t bytes = Rules::pixelBytes;
    const typename Rules::Arithmetic decode(layout);
    // The pair behind a step is read when interpolating: there is none behind the last.
    constexpr std::size_t ahead = Rules::interpolating ? 2 : 0;
    std::size_t at = 0;
    for (; pixels - at >= kStep + ahead; at += kStep) {
        if (at % kLinePixels == 0) Prefetch(ycc + 2 * at + nextRow);
        StorePixels<Rules::pixelBytes, Rules::blueFirst, Rules::streaming>(
            rgb + bytes * at, decode(WithRightChroma<Rules::interpolating>(ycc + 2 * at)),
            LoadAlpha<Rules::hasAlpha>(alpha, at));
    }
    if (at == pixels) return;
    const std::size_t count = pixels - at;
    Byte from[2 * kStep + 4] = {};
    Byte alphas[kStep] = {};
    Byte to[kBytes];
    std::memcpy(from, ycc + 2 * at, count * 2);
    std::memcpy(from + count * 2, ycc + 2 * pixels - 4, 4);
    if constexpr (Rules::hasAlpha) std::memcpy(alphas, alpha + at, count);
    StorePixels<Rules::pixelBytes, Rules::blueFirst, false>(
        to, decode(WithRightChroma<Rules::interpolating>(from)), LoadAlpha<Rules::hasAlpha>(alphas, 0));
    std::memcpy(rgb + bytes * at, to, count * bytes);
}

template <YccArithmetic arithmetic, int pixelBytes, bool interpolating, bool hasAlpha, bool streaming>
void DecodeOrders(const Byte* ycc, const Byte* alpha, Byte* rgb, std::size_t pixels, const YccLayout& layout,
                  std::ptrdiff_t nextRow)
{
    const auto decode =
        layout.blueFirst
            ? DecodePairs<DecodeRules<arithmetic, pixelBytes, interpolating, hasAlpha, true, streaming>>
            : DecodePairs<DecodeRules<arithmetic, pixelBytes, interpolating, hasAlpha, false, streaming>>;
    decode(ycc, alpha, rgb, pixels & ~std::size_t{1}, layout, nextRow);
}

/// Pixels of 4 bytes.
template <bool interpolating, bool streaming>
void Decode32(const Byte* ycc, const Byte* alpha, Byte* rgb, std::size_t pixels, const YccLayout& layout,
              std::ptrdiff_t nextRow)
{
    constexpr YccArithmetic fast = YccArithmetic::Fast;
    const auto decode = alpha != nullptr ? DecodeOrders<fast, 4, interpolating, true, streaming>
                                         : DecodeOrders<fast, 4, interpolating, false, streaming>;
    decode(ycc, alpha, rgb, pixels, layout, nextRow);
}

/// Stores around the cache where the output allows it.
template <bool interpolating>
void Decode32Streaming(const Byte* ycc, const Byte* alpha, Byte* rgb, std::size_t pixels,
                       const YccLayout& layout, std::ptrdiff_t nextRow)
{
    const auto decode = IsAligned(rgb) ? Decode32<interpolating, true> : Decode32<interpolating, false>;
    decode(ycc, alpha, rgb, pixels, layout, nextRow);
}

template <bool filtered>
void FillFiltered(YccRows& rows)
{
    constexpr int exact = static_cast<int>(YccArithmetic::Exact);
    constexpr int fast = static_cast<int>(YccArithmetic::Fast);
    rows.encode[fast][1][filtered][0] = EncodeOrders<YccArithmetic::Fast, 4, filtered, false>;
    rows.encode[fast][1][filtered][1] = EncodeStreaming<YccArithmetic::Fast, 4, filtered>;
    rows.encode[exact][0][filtered][0] = EncodeOrders<YccArithmetic::Exact, 3, filtered, false>;
    rows.encode[exact][0][filtered][1] = EncodeStreaming<YccArithmetic::Exact, 3, filtered>;
    rows.decode[fast][1][filtered][0] = Decode32<filtered, false>;
    rows.decode[fast][1][filtered][1] = Decode32Streaming<filtered>;
    // Pixels of 3 bytes never align with the stores that go around the cache.
    rows.decode[exact][0][filtered][0] = DecodeOrders<YccArithmetic::Exact, 3, filtered, false, false>;
    rows.decode[exact][0][filtered][1] = DecodeOrders<YccArithmetic::Exact, 3, filtered, false, false>;
}

#endif

} // namespace

namespace VFIL_LEVEL {

// Spreading bytes over lanes takes a byte shuffle, which the lowest level lacks. Four-byte pixels have the
// fast arithmetic, three-byte ones the exact one: no run asks for the others here.
void Fill([[maybe_unused]] YccRows& rows)
{
#if defined(__AVX2__)
    FillFiltered<false>(rows);
    FillFiltered<true>(rows);
#endif
}

} // namespace VFIL_LEVEL
} // namespace vfil

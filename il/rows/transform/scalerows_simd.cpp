/// \file
/// The vector forms of the kernels of sampling along the axes, for the level VFIL_LEVEL.
#include "il/rows/transform/scaleboxes.h"
#include "il/rows/vecfloat.h"
#include "il/rows/vecmove.h"
#include "il/rows/vecsum.h"
#include "il/rows/vectaps.h"

namespace vfil {
namespace {

#if !defined(__AVX512BW__)

static_assert(kScaleSlack >= kBytes);

/// a + ((b - a) * fraction + 32768) / 65536 of samples of 8 bits in 16-bit lanes. The high half of the
/// product with an unsigned fraction is that with a signed one, and once more the factor where it is above
/// half.
U16 Between(U16 a, U16 b, U16 fraction)
{
    const U16 d = b - a;
    const U16 whole = MulHighSigned(d, fraction) + (d & SignMask(fraction));
    return a + whole + ShiftRight<15>(d * fraction);
}

/// Pixels at kLanes32 places, and the ones behind them, in order.
PixelPairs LoadPixelPairs(const std::uint8_t* line, const std::int32_t* starts)
{
#if defined(__AVX2__)
    PixelPairs near{};
    if (LoadNearPairs(line, starts, near)) return near;
#endif
    const auto at = [&](std::size_t i) {
        return LoadEights(line + 4 * std::ptrdiff_t{starts[i]},
                          line + 4 * std::ptrdiff_t{starts[i + kLanes32 - 4]});
    };
    return SplitHalves(at(0), at(1), at(2), at(3));
}

/// A copy of the tables' addresses, which no store of bytes can change, stays in registers.
void LerpFours(const std::uint8_t* line, const LerpTaps& tables, std::uint8_t* out, std::size_t pixels)
{
    const LerpTaps taps = tables;
    for (std::size_t k = 0; k < pixels; k += kLanes32) {
        const PixelPairs pairs = LoadPixelPairs(line, taps.starts + k);
        const S32 fractions = LoadLanes(taps.fractions + k);
        const U16Pair a = Widen({pairs.first});
        const U16Pair b = Widen({pairs.second});
        Store(out + 4 * k, Narrow({Between(a.lo, b.lo, TwiceLow32(fractions)),
                                   Between(a.hi, b.hi, TwiceHigh32(fractions))}));
    }
}

/// Lanes of a sample each, the first of a pair, and the second.
void LerpOnes(const std::uint8_t* line, const LerpTaps& taps, std::uint8_t* out, std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; k += kBytes) {
        S32 results[4];
        for (std::size_t i = 0; i < 4; ++i) {
            const std::size_t at = k + i * kLanes32;
            const S32 pairs = GatherFours<1>(line, taps.starts + at);
            const U16 first{(pairs & Splat32(0xFF)).bits};
            const U16 second{(ShiftDownBits<8>(pairs) & Splat32(0xFF)).bits};
            results[i] = {Between(first, second, {LoadLanes(taps.fractions + at).bits}).bits};
        }
        Store(out + k, NarrowLanes(results[0], results[1], results[2], results[3]));
    }
}

#if defined(__AVX2__)
void PickNearFours(const std::uint8_t* line, const std::int32_t* places, std::uint8_t* out,
                   std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; k += kLanes32) {
        PixelPairs near{};
        if (LoadNearPairs(line, places + k, near)) {
            Store(out + 4 * k, {near.first});
        } else {
            for (std::size_t i = 0; i < kLanes32; ++i)
                std::memcpy(out + 4 * (k + i), line + 4 * std::ptrdiff_t{places[k + i]}, 4);
        }
    }
}
#endif

template <bool streaming>
void LerpTwoRows(const std::uint8_t* low, const std::uint8_t* high, const RowFraction& fraction,
                 std::uint8_t* out, std::size_t samples)
{
    if (fraction.fixed == 0) {
        MapRow<streaming, 1>(low, low, out, samples, [](U8 a, U8, Part) { return a; });
        return;
    }
    if (fraction.fixed == 0x8000) {
        MapRow<streaming, 1>(low, high, out, samples, [](U8 a, U8 b, Part) { return Average(a, b); });
        return;
    }
    // Seen from the nearer row the weight is below a half: a signed number.
    const bool isHigh = fraction.fixed > 0x8000;
    const U16 weight = Splat(isHigh ? 0x10000 - fraction.fixed : fraction.fixed);
    const auto between = [weight](U16 a, U16 b) {
        const U16 d = b - a;
        return a + MulHighSigned(d, weight) + ShiftRight<15>(d * weight);
    };
    MapRow<streaming, 1>(isHigh ? high : low, isHigh ? low : high, out, samples, [&](U8 near, U8 far, Part) {
        const U16Pair a = Widen(near);
        const U16Pair b = Widen(far);
        return Narrow({between(a.lo, b.lo), between(a.hi, b.hi)});
    });
}

/// The weights of four rows, as 4 high + low, in pairs.
struct SplitWeights {
    explicit SplitWeights(const std::int32_t* w)
        : high{SplatPair16(w[0] >> 2, w[1] >> 2), SplatPair16(w[2] >> 2, w[3] >> 2)},
          low{SplatPair16(w[0] & 3, w[1] & 3), SplatPair16(w[2] & 3, w[3] & 3)}
    {}
    /// Of samples of the rows 0 and 1, and of 2 and 3.
    S32 Sum(U16 first, U16 second) const
    {
        const S32 a{first.bits};
        const S32 b{second.bits};
        return ShiftUp<2>(DotPairs(a, high[0]) + DotPairs(b, high[1])) + DotPairs(a, low[0]) +
               DotPairs(b, low[1]);
    }

    S32 high[2], low[2];
};

void ColumnChunk(const std::uint8_t* const (&rows)[4], const SplitWeights& weights, std::int16_t* out)
{
    const U8 a = Load(rows[0]);
    const U8 b = Load(rows[1]);
    const U8 c = Load(rows[2]);
    const U8 d = Load(rows[3]);
    const U16Pair low[2] = {Widen(InterleaveLow(a, b)), Widen(InterleaveLow(c, d))};
    const U16Pair high[2] = {Widen(InterleaveHigh(a, b)), Widen(InterleaveHigh(c, d))};
    const auto column = [](S32 sum) { return ShiftDown<10>(sum + Splat32(0x200)); };
    StoreLanesInTurn(
        out, PackSigned(column(weights.Sum(low[0].lo, low[1].lo)), column(weights.Sum(low[0].hi, low[1].hi))),
        PackSigned(column(weights.Sum(high[0].lo, high[1].lo)), column(weights.Sum(high[0].hi, high[1].hi))));
}

void Columns(const std::uint8_t* const* rows, const RowWeights& weights, std::int16_t* out,
             std::size_t samples)
{
    const SplitWeights split(weights.fixed);
    std::size_t at = 0;
    for (; samples - at >= kBytes; at += kBytes)
        ColumnChunk({rows[0] + at, rows[1] + at, rows[2] + at, rows[3] + at}, split, out + at);
    if (at == samples) return;
    std::uint8_t parts[4][kBytes] = {};
    std::int16_t results[kBytes];
    for (std::size_t row = 0; row < 4; ++row)
        std::memcpy(parts[row], rows[row] + at, samples - at);
    ColumnChunk({parts[0], parts[1], parts[2], parts[3]}, split, results);
    std::memcpy(out + at, results, (samples - at) * sizeof *out);
}

/// Sums of the columns' products, rounded; limited to samples by who packs them.
S32 CubicSum(S32 high, S32 low)
{
    return ShiftDown<22>(ShiftUp<2>(high) + low + Splat32(0x200000));
}

/// The outputs k + lane and k + lane + 4.
template <int lane>
S32 CubicFour(const std::int16_t* columns, const CubicTaps& taps, std::size_t k)
{
    const std::int16_t* const first = columns + 4 * std::ptrdiff_t{taps.starts[k + lane]};
    const std::int16_t* const second = columns + 4 * std::ptrdiff_t{taps.starts[k + lane + kLanes32 - 4]};
    const auto weight = [k](const std::uint32_t* weights) {
        return Shuffle32<lane * 0x55>(LoadLanes(weights + k));
    };
    const S32 a = PairChannels16(LoadSixteens(first, second));
    const S32 b = PairChannels16(LoadSixteens(first + 8, second + 8));
    return CubicSum(DotPairs(a, weight(taps.high[0])) + DotPairs(b, weight(taps.high[1])),
                    DotPairs(a, weight(taps.low[0])) + DotPairs(b, weight(taps.low[1])));
}

/// The last bytes of a row go through a block of memory.
void StorePart(std::uint8_t* out, U8 v, std::size_t bytes)
{
    if (bytes >= kBytes) return Store(out, v);
    std::uint8_t block[kBytes];
    Store(block, v);
    std::memcpy(out, block, bytes);
}

void CubicFours(const std::int16_t* columns, const CubicTaps& tables, std::uint8_t* out, std::size_t pixels)
{
    const CubicTaps taps = tables;
    for (std::size_t k = 0; k < pixels; k += kLanes32) {
        const U16 low = PackSigned(CubicFour<0>(columns, taps, k), CubicFour<1>(columns, taps, k));
        const U16 high = PackSigned(CubicFour<2>(columns, taps, k), CubicFour<3>(columns, taps, k));
        StorePart(out + 4 * k, Narrow({low, high}), 4 * (pixels - k));
    }
}

S32 CubicOne(const std::int16_t* columns, const CubicTaps& taps, std::size_t k)
{
    const S32 a = GatherFours<2>(columns, taps.starts + k);
    const S32 b = GatherFours<2>(columns + 2, taps.starts + k);
    const auto weight = [k](const std::uint32_t* weights) { return LoadLanes(weights + k); };
    return CubicSum(DotPairs(a, weight(taps.high[0])) + DotPairs(b, weight(taps.high[1])),
                    DotPairs(a, weight(taps.low[0])) + DotPairs(b, weight(taps.low[1])));
}

void CubicOnes(const std::int16_t* columns, const CubicTaps& taps, std::uint8_t* out, std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; k += kBytes) {
        S32 results[4];
        for (std::size_t i = 0; i < 4; ++i)
            results[i] = CubicOne(columns, taps, k + i * kLanes32);
        StorePart(out + k, NarrowLanes(results[0], results[1], results[2], results[3]), pixels - k);
    }
}

F64 Between(F64 a, F64 b, F64 fraction)
{
    return a + (b - a) * fraction;
}

void LerpFourWords(const std::uint16_t* line, const LerpTaps& taps, double* out, std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; ++k, out += 4) {
        const std::uint16_t* const in = line + 4 * std::ptrdiff_t{taps.starts[k]};
        const F64 fraction = SplatDouble(taps.exact[k]);
        for (std::size_t c = 0; c < 4; c += kLanes64)
            StoreDoubles(out + c, Between(LoadAsDoubles(in + c), LoadAsDoubles(in + 4 + c), fraction));
    }
}

/// 4 kLanes64 samples of doubles, rounded half up and limited.
template <class Sum>
void StoreWords(std::uint16_t* out, Sum sum)
{
    const auto whole = [&](std::size_t i) {
        const F64 limited = Max(Min(sum(i * kLanes64), SplatDouble(65535)), SplatDouble(0));
        return limited + SplatDouble(0.5);
    };
    const S32 low{HalvesToInt32(whole(0), whole(1))};
    const S32 high{HalvesToInt32(whole(2), whole(3))};
    Store(reinterpret_cast<std::uint8_t*>(out), NarrowPairs(low, high));
}

/// A row of so many samples; the last go through a block of memory. The rows that sum(at) reads are longer.
template <class SumAt>
void MakeWords(std::uint16_t* out, std::size_t samples, SumAt sumAt)
{
    constexpr std::size_t kWords = 4 * kLanes64;
    for (std::size_t at = 0; at < samples; at += kWords) {
        const auto sum = [&](std::size_t i) { return sumAt(at + i); };
        if (samples - at >= kWords) {
            StoreWords(out + at, sum);
        } else {
            std::uint16_t block[kWords];
            StoreWords(block, sum);
            std::memcpy(out + at, block, (samples - at) * sizeof *out);
        }
    }
}

void LerpTwoRowsOfDoubles(const double* low, const double* high, const RowFraction& fraction,
                          std::uint16_t* out, std::size_t samples)
{
    const F64 weight = SplatDouble(fraction.exact);
    MakeWords(out, samples,
              [=](std::size_t at) { return Between(LoadDoubles(low + at), LoadDoubles(high + at), weight); });
}

/// In the order of the plain form.
F64 SumOfFour(F64 a, F64 b, F64 c, F64 d, const double* weights)
{
    return ((a * SplatDouble(weights[0]) + b * SplatDouble(weights[1])) + c * SplatDouble(weights[2])) +
           d * SplatDouble(weights[3]);
}

void ColumnsOfWords(const std::uint16_t* const* rows, const RowWeights& weights, double* out,
                    std::size_t samples)
{
    const auto sum = [&](const std::uint16_t* a, const std::uint16_t* b, const std::uint16_t* c,
                         const std::uint16_t* d) {
        return SumOfFour(LoadAsDoubles(a), LoadAsDoubles(b), LoadAsDoubles(c), LoadAsDoubles(d),
                         weights.exact);
    };
    std::size_t at = 0;
    for (; samples - at >= kLanes64; at += kLanes64)
        StoreDoubles(out + at, sum(rows[0] + at, rows[1] + at, rows[2] + at, rows[3] + at));
    if (at == samples) return;
    std::uint16_t parts[4][kLanes64] = {};
    double results[kLanes64];
    for (std::size_t row = 0; row < 4; ++row)
        std::memcpy(parts[row], rows[row] + at, (samples - at) * sizeof(std::uint16_t));
    StoreDoubles(results, sum(parts[0], parts[1], parts[2], parts[3]));
    std::memcpy(out + at, results, (samples - at) * sizeof *out);
}

void CubicFourWords(const double* columns, const CubicTaps& taps, std::uint16_t* out, std::size_t pixels)
{
    MakeWords(out, 4 * pixels, [=, &taps](std::size_t at) {
        const double* const in = columns + 4 * std::ptrdiff_t{taps.starts[at / 4]} + at % 4;
        return SumOfFour(LoadDoubles(in), LoadDoubles(in + 4), LoadDoubles(in + 8), LoadDoubles(in + 12),
                         taps.exact + at / 4 * 4);
    });
}

#endif

} // namespace

namespace VFIL_LEVEL {

void Fill([[maybe_unused]] ScaleRows& rows)
{
#if !defined(__AVX512BW__)
    rows.bytes = {{LerpFours, LerpOnes},
                  {LerpTwoRows<false>, LerpTwoRows<true>},
                  Columns,
                  {CubicFours, CubicOnes},
                  {SumBoxesOf<std::uint8_t>, SumSampleBoxes<std::uint8_t>}};
    rows.words.lerpPixels[0] = LerpFourWords;
    rows.words.lerpRows[0] = rows.words.lerpRows[1] = LerpTwoRowsOfDoubles;
#if defined(__AVX2__)
    rows.pickFours = PickNearFours;
#endif
    rows.words.columns = ColumnsOfWords;
    rows.words.cubicPixels[0] = CubicFourWords;
    rows.words.sumBoxes[0] = SumBoxesOf<std::uint16_t>;
    rows.words.sumBoxes[1] = SumSampleBoxes<std::uint16_t>;
#endif
}

} // namespace VFIL_LEVEL
} // namespace vfil

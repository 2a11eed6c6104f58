/// \file
/// The vector forms of the two-pass resampler's kernels, for the level VFIL_LEVEL.
#include "il/rows/transform/resampleparams.h"
#include "il/rows/vecmove.h"
#include "il/rows/vecsum.h"
#include "il/rows/vectaps.h"

namespace vfil {
namespace {

#if !defined(__AVX512BW__)

static_assert(kTapSlack >= kBytes);

/// Sums are of samples less than 32768, so that they are signed; this brings them back, and rounds.
constexpr std::int32_t kHalf = kWholeWeight / 2;

S32 Rounded(S32 sum)
{
    return ShiftDown<kWeightBits>(sum + Splat32(kHalf));
}

S32 LoadTapWeights(const LineTaps& taps, std::size_t pair, std::size_t k)
{
    return LoadLanes(taps.weights + 2 * (pair * taps.pitch + k));
}

/// The address of pixel `pixel` of output k.
template <std::size_t pixelSamples, class Sample>
const Sample* TapAt(const Sample* line, const LineTaps& taps, std::size_t k, std::size_t pixel)
{
    return line +
           (taps.starts[k] + static_cast<std::ptrdiff_t>(pixel)) * static_cast<std::ptrdiff_t>(pixelSamples);
}

/// Vector `lane` holds the outputs `lane` and `lane` + 4 of a block, one in each 128 bits: packing brings
/// them in order.
template <int lane>
S32 SplatLane(S32 v)
{
    return Shuffle32<lane * 0x55>(v);
}

template <bool single, int lane>
S32 SumPixel8(const std::uint8_t* line, const LineTaps& taps, std::size_t k)
{
    const std::size_t low = k + lane;
    const std::size_t high = k + lane + (kLanes32 - 4);
    if constexpr (single) {
        const Register pixels = LoadEights(TapAt<4>(line, taps, low, 0), TapAt<4>(line, taps, high, 0));
        return DotPairs(PairChannels8<false>(pixels), SplatLane<lane>(LoadTapWeights(taps, 0, k)));
    } else {
        S32 sum = Splat32(0);
        for (std::size_t pair = 0; pair < taps.pairs; pair += 2) {
            const Register pixels =
                LoadSixteens(TapAt<4>(line, taps, low, 2 * pair), TapAt<4>(line, taps, high, 2 * pair));
            sum =
                sum + DotPairs(PairChannels8<false>(pixels), SplatLane<lane>(LoadTapWeights(taps, pair, k)));
            sum = sum +
                  DotPairs(PairChannels8<true>(pixels), SplatLane<lane>(LoadTapWeights(taps, pair + 1, k)));
        }
        return sum;
    }
}

#if defined(__AVX2__)
/// Two pixels an output, of neighbours whose pixels all lie in one vector.
U8 NearPixels8(const PixelPairs& pairs, const LineTaps& taps, std::size_t k)
{
    const S32 weights = LoadTapWeights(taps, 0, k);
    const U16Pair low = Widen(InterleaveLow(U8{pairs.first}, U8{pairs.second}));
    const U16Pair high = Widen(InterleaveHigh(U8{pairs.first}, U8{pairs.second}));
    return Narrow({PackSigned(Rounded(DotPairs({low.lo.bits}, SplatLane<0>(weights))),
                              Rounded(DotPairs({low.hi.bits}, SplatLane<1>(weights)))),
                   PackSigned(Rounded(DotPairs({high.lo.bits}, SplatLane<2>(weights))),
                              Rounded(DotPairs({high.hi.bits}, SplatLane<3>(weights))))});
}
#endif

template <bool single>
void Pixels8(const std::uint8_t* line, LineTaps taps, std::uint8_t* out, std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; k += kLanes32) {
#if defined(__AVX2__)
        if constexpr (single) {
            PixelPairs pairs{};
            if (LoadNearPairs(line, taps.starts + k, pairs)) {
                Store(out + 4 * k, NearPixels8(pairs, taps, k));
                continue;
            }
        }
#endif
        const U16 low = PackSigned(Rounded(SumPixel8<single, 0>(line, taps, k)),
                                   Rounded(SumPixel8<single, 1>(line, taps, k)));
        const U16 high = PackSigned(Rounded(SumPixel8<single, 2>(line, taps, k)),
                                    Rounded(SumPixel8<single, 3>(line, taps, k)));
        Store(out + 4 * k, Narrow({low, high}));
    }
}

void AnyPixels8(const std::uint8_t* line, const LineTaps& taps, std::uint8_t* out, std::size_t pixels)
{
    return taps.pairs == 1 ? Pixels8<true>(line, taps, out, pixels) : Pixels8<false>(line, taps, out, pixels);
}

template <bool single>
S32 SumMono8(const std::uint8_t* line, const LineTaps& taps, std::size_t k)
{
    if constexpr (single) {
        return DotPairs(PairBytes<false>(GatherFours<1>(line, taps.starts + k)), LoadTapWeights(taps, 0, k));
    } else {
        S32 sum = Splat32(0);
        for (std::size_t pair = 0; pair < taps.pairs; pair += 2) {
            const S32 samples = GatherFours<1>(line + 2 * pair, taps.starts + k);
            sum = sum + DotPairs(PairBytes<false>(samples), LoadTapWeights(taps, pair, k)) +
                  DotPairs(PairBytes<true>(samples), LoadTapWeights(taps, pair + 1, k));
        }
        return sum;
    }
}

template <bool single>
void Mono8(const std::uint8_t* line, LineTaps taps, std::uint8_t* out, std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; k += kBytes) {
        S32 results[4];
        for (std::size_t i = 0; i < 4; ++i)
            results[i] = Rounded(SumMono8<single>(line, taps, k + i * kLanes32));
        Store(out + k, NarrowLanes(results[0], results[1], results[2], results[3]));
    }
}

void AnyMono8(const std::uint8_t* line, const LineTaps& taps, std::uint8_t* out, std::size_t pixels)
{
    return taps.pairs == 1 ? Mono8<true>(line, taps, out, pixels) : Mono8<false>(line, taps, out, pixels);
}

/// 16-bit samples as signed ones, 32768 less.
Register Signed(Register words)
{
    return (U16{words} ^ Splat(-0x8000)).bits;
}

/// What the sum of such samples lacks.
S32 Lack(S32 weightSums)
{
    return ShiftUp<15>(weightSums);
}

template <int lane>
S32 SumPixel16(const std::uint16_t* line, const LineTaps& taps, std::size_t k)
{
    const std::size_t low = k + lane;
    const std::size_t high = k + lane + (kLanes32 - 4);
    S32 sum = SplatLane<lane>(Lack(LoadLanes(taps.sums + k)));
    for (std::size_t pair = 0; pair < taps.pairs; ++pair) {
        const Register pixels =
            LoadSixteens(TapAt<4>(line, taps, low, 2 * pair), TapAt<4>(line, taps, high, 2 * pair));
        sum = sum + DotPairs(PairChannels16(Signed(pixels)), SplatLane<lane>(LoadTapWeights(taps, pair, k)));
    }
    return Rounded(sum);
}

void Pixels16(const std::uint16_t* line, const LineTaps& taps, std::uint16_t* out, std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; k += kLanes32) {
        const U16 low = NarrowFull({SumPixel16<0>(line, taps, k), SumPixel16<1>(line, taps, k)});
        const U16 high = NarrowFull({SumPixel16<2>(line, taps, k), SumPixel16<3>(line, taps, k)});
        StoreLanesInTurn(out + 4 * k, low, high);
    }
}

S32 SumMono16(const std::uint16_t* line, const LineTaps& taps, std::size_t k)
{
    S32 sum = Lack(LoadLanes(taps.sums + k));
    for (std::size_t pair = 0; pair < taps.pairs; ++pair) {
        const S32 samples{Signed(GatherFours<2>(line + 2 * pair, taps.starts + k).bits)};
        sum = sum + DotPairs(samples, LoadTapWeights(taps, pair, k));
    }
    return Rounded(sum);
}

void Mono16(const std::uint16_t* line, const LineTaps& taps, std::uint16_t* out, std::size_t pixels)
{
    for (std::size_t k = 0; k < pixels; k += 2 * kLanes32) {
        const U8 words = NarrowPairs(SumMono16(line, taps, k), SumMono16(line, taps, k + kLanes32));
        Store(reinterpret_cast<std::uint8_t*>(out + k), words);
    }
}

/// A few pairs of rows, held in registers.
template <class Sample, std::size_t pairs>
class FewRows {
public:
    FewRows(const Sample* const* rows, const std::int16_t* weights)
    {
        for (std::size_t row = 0; row < 2 * pairs; ++row) {
            m_rows[row] = rows[row];
            m_sum += weights[row];
        }
        for (std::size_t pair = 0; pair < pairs; ++pair)
            m_weights[pair] = SplatPair16(weights[2 * pair], weights[2 * pair + 1]);
    }
    static constexpr std::size_t Pairs() { return pairs; }
    S32 Weight(std::size_t pair) const { return m_weights[pair]; }
    const Sample* Row(std::size_t row) const { return m_rows[row]; }
    std::int32_t WeightSum() const { return m_sum; }

private:
    S32 m_weights[pairs];
    const Sample* m_rows[2 * pairs];
    std::int32_t m_sum = 0;
};

template <class Sample>
class ManyRows {
public:
    ManyRows(const Sample* const* rows, const std::int16_t* weights, std::size_t pairs)
        : m_rows(rows), m_weights(weights), m_pairs(pairs)
    {
        for (std::size_t row = 0; row < 2 * pairs; ++row)
            m_sum += weights[row];
    }
    std::size_t Pairs() const { return m_pairs; }
    S32 Weight(std::size_t pair) const { return SplatPair16(m_weights[2 * pair], m_weights[2 * pair + 1]); }
    const Sample* Row(std::size_t row) const { return m_rows[row]; }
    std::int32_t WeightSum() const { return m_sum; }

private:
    const Sample* const* m_rows;
    const std::int16_t* m_weights;
    std::size_t m_pairs;
    std::int32_t m_sum = 0;
};

/// kBytes bytes of all rows.
template <class Rows>
U8 SumRows(const Rows& rows, std::uint8_t, std::size_t at)
{
    S32 sums[4] = {Splat32(kHalf), Splat32(kHalf), Splat32(kHalf), Splat32(kHalf)};
    for (std::size_t pair = 0; pair < rows.Pairs(); ++pair) {
        const S32 weight = rows.Weight(pair);
        const U8 a = Load(rows.Row(2 * pair) + at);
        const U8 b = Load(rows.Row(2 * pair + 1) + at);
        const U16Pair low = Widen(InterleaveLow(a, b));
        const U16Pair high = Widen(InterleaveHigh(a, b));
        sums[0] = sums[0] + DotPairs({low.lo.bits}, weight);
        sums[1] = sums[1] + DotPairs({low.hi.bits}, weight);
        sums[2] = sums[2] + DotPairs({high.lo.bits}, weight);
        sums[3] = sums[3] + DotPairs({high.hi.bits}, weight);
    }
    return Narrow({PackSigned(ShiftDown<kWeightBits>(sums[0]), ShiftDown<kWeightBits>(sums[1])),
                   PackSigned(ShiftDown<kWeightBits>(sums[2]), ShiftDown<kWeightBits>(sums[3]))});
}

template <class Rows>
U8 SumRows(const Rows& rows, std::uint16_t, std::size_t at)
{
    S32 low = Splat32(kHalf + rows.WeightSum() * 32768);
    S32 high = low;
    for (std::size_t pair = 0; pair < rows.Pairs(); ++pair) {
        const S32 weight = rows.Weight(pair);
        const U16 a{Signed(LoadLanes(rows.Row(2 * pair) + at).bits)};
        const U16 b{Signed(LoadLanes(rows.Row(2 * pair + 1) + at).bits)};
        low = low + DotPairs(InterleaveLow(a, b), weight);
        high = high + DotPairs(InterleaveHigh(a, b), weight);
    }
    return {NarrowFull({ShiftDown<kWeightBits>(low), ShiftDown<kWeightBits>(high)}).bits};
}

/// The vectors of a row. A streaming row first comes to an aligned output; its last samples, and those before
/// the first aligned ones, go through a vector of memory.
template <bool streaming, class Sample, class Rows>
void MakeRow(const Rows& rows, Sample* out, std::size_t samples)
{
    constexpr std::size_t kSamples = kBytes / sizeof(Sample);
    const auto part = [&](std::size_t at, std::size_t count) {
        std::uint8_t bytes[kBytes];
        Store(bytes, SumRows(rows, Sample{}, at));
        std::memcpy(out + at, bytes, count * sizeof(Sample));
    };
    auto* const row = reinterpret_cast<std::uint8_t*>(out);
    std::size_t at = 0;
    if constexpr (streaming) {
        const std::size_t head = BytesToAligned(row);
        if (head % sizeof(Sample) == 0 && head / sizeof(Sample) < samples) {
            at = head / sizeof(Sample);
            if (at != 0) part(0, at);
            for (; samples - at >= kSamples; at += kSamples)
                StoreStreaming(row + at * sizeof(Sample), SumRows(rows, Sample{}, at));
        }
    }
    for (; samples - at >= kSamples; at += kSamples)
        Store(row + at * sizeof(Sample), SumRows(rows, Sample{}, at));
    if (at != samples) part(at, samples - at);
}

template <bool streaming, class Sample>
void RowsOf(const Sample* const* rows, const std::int16_t* weights, std::size_t pairs, Sample* out,
            std::size_t samples)
{
    if (pairs == 1) {
        MakeRow<streaming>(FewRows<Sample, 1>(rows, weights), out, samples);
    } else if (pairs == 2) {
        MakeRow<streaming>(FewRows<Sample, 2>(rows, weights), out, samples);
    } else {
        MakeRow<streaming>(ManyRows<Sample>(rows, weights, pairs), out, samples);
    }
}

void Under8(const std::uint8_t* front, std::uint8_t* back, std::size_t pixels)
{
    MapRow<false, 4>(back, front, back, 4 * pixels, [](U8 b, U8 f, Part) {
        const U16Pair under = Widen(b);
        const U16Pair added = Widen(f);
        const U16 full = Splat(255);
        return AddClip(b, Narrow({NormMult(full - SplatAlpha(under.lo), added.lo),
                                  NormMult(full - SplatAlpha(under.hi), added.hi)}));
    });
}

void Under16(const std::uint16_t* front, std::uint16_t* back, std::size_t pixels)
{
    MapRow<false, 8>(back, front, back, 8 * pixels, [](U8 b, U8 f, Part) {
        const U16 under{b.bits};
        return U8{AddClip(under, NormMultFull(Splat(-1) - SplatAlpha(under), {f.bits})).bits};
    });
}

/// Alpha itself is multiplied by the full value.
void Multiply8(std::uint8_t* row, std::size_t pixels)
{
    MapRow<false, 4>(row, row, row, 4 * pixels, [](U8 v, U8, Part) {
        const U16Pair wide = Widen(v);
        const U16 kept = SplatPixel(0x00FF'0000'0000'0000);
        return Narrow(
            {NormMult(wide.lo, SplatAlpha(wide.lo) | kept), NormMult(wide.hi, SplatAlpha(wide.hi) | kept)});
    });
}

void Multiply16(std::uint16_t* row, std::size_t pixels)
{
    MapRow<false, 8>(row, row, row, 8 * pixels, [](U8 v, U8, Part) {
        const U16 wide{v.bits};
        return U8{NormMultFull(wide, SplatAlpha(wide) | SplatPixel(0xFFFF'0000'0000'0000)).bits};
    });
}

#endif

} // namespace

namespace VFIL_LEVEL {

void Fill([[maybe_unused]] ResampleRows& rows)
{
#if !defined(__AVX512BW__)
    rows = {AnyPixels8,
            AnyMono8,
            Pixels16,
            Mono16,
            {RowsOf<false, std::uint8_t>, RowsOf<true, std::uint8_t>},
            {RowsOf<false, std::uint16_t>, RowsOf<true, std::uint16_t>},
            Under8,
            Under16,
            Multiply8,
            Multiply16};
#endif
}

} // namespace VFIL_LEVEL
} // namespace vfil

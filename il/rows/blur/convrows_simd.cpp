/// \file
/// The vector forms of the convolutions' kernels, for the level VFIL_LEVEL.
#include "il/rows/blur/convparams.h"
#include "il/rows/vecfloat.h"
#include "il/rows/vecsum.h"

#include <utility>

namespace vfil {
namespace {

/// Half of a result's last bit, of 15 fraction bits.
constexpr std::int32_t kHalf = 0x4000;

/// Samples that are treated at once: what they sum to fills four vectors of 32-bit lanes.
constexpr std::size_t kChunk = kBytes;

/// Walks a row by chunks of chunk(read, at), in which read(source) gives the address of a source's samples.
/// A ragged end goes with the samples before it, which are made twice. A row shorter than a chunk is read
/// from, and written by store(results, samples) from, a buffer.
template <class In, class Out, class Chunk>
void MapChunks(Out* out, std::size_t samples, Chunk chunk)
{
    std::size_t at = 0;
    for (; samples - at >= kChunk; at += kChunk)
        chunk([at](const In* source, In*) { return source + at; }, out + at);
    if (at == samples) return;
    if (samples > kChunk) {
        at = samples - kChunk;
        chunk([at](const In* source, In*) { return source + at; }, out + at);
        return;
    }
    Out results[kChunk];
    chunk(
        [samples](const In* source, In* buffer) {
            std::memcpy(buffer, source, samples * sizeof(In));
            return const_cast<const In*>(buffer);
        },
        results);
    std::memcpy(out, results, samples * sizeof(Out));
}

/// Four vectors of 32-bit sums.
struct Sums {
    S32 v[4];
};

void AddPairs(Sums& sums, const std::uint8_t* a, const std::uint8_t* b, S32 weights)
{
    const U8 first = Load(a);
    const U8 second = Load(b);
    const U16Pair low = Widen(InterleaveLow(first, second));
    const U16Pair high = Widen(InterleaveHigh(first, second));
    sums.v[0] = sums.v[0] + DotPairs({low.lo.bits}, weights);
    sums.v[1] = sums.v[1] + DotPairs({low.hi.bits}, weights);
    sums.v[2] = sums.v[2] + DotPairs({high.lo.bits}, weights);
    sums.v[3] = sums.v[3] + DotPairs({high.hi.bits}, weights);
}

/// The sums' whole parts, limited to 16 bits; in the order of what InterleaveLow and InterleaveHigh took
/// apart.
U16 WholeParts(S32 a, S32 b)
{
    return PackSigned(ShiftDown<15>(a), ShiftDown<15>(b));
}

/// Two weights, the first of them lower, in all lanes.
S32 LoadWeights(const std::int16_t* weights)
{
    std::int32_t pair;
    std::memcpy(&pair, weights, sizeof pair);
    return Splat32(pair);
}

void FixedSum(const std::uint8_t* const* sources, const std::int16_t* weights, std::size_t count,
              std::uint8_t* out, std::size_t samples)
{
    MapChunks<std::uint8_t>(out, samples, [=](auto read, std::uint8_t* to) {
        std::uint8_t buffers[2][kChunk] = {};
        Sums sums;
        for (S32& sum : sums.v)
            sum = Splat32(kHalf);
        for (std::size_t k = 0; k < count; k += 2)
            AddPairs(sums, read(sources[k], buffers[0]), read(sources[k + 1], buffers[1]),
                     LoadWeights(weights + k));
        Store(to, Narrow({WholeParts(sums.v[0], sums.v[1]), WholeParts(sums.v[2], sums.v[3])}));
    });
}

void Pairs(const std::uint8_t* row, std::uint32_t* pairs, std::size_t samples)
{
    const auto pair = [=](std::size_t i) {
        const S32 next = ShiftUp<16>(S32{LoadEachAs32(row + i + 4).bits});
        StoreLanes(pairs + i, S32{LoadEachAs32(row + i).bits} | next);
    };
    std::size_t i = 0;
    if (samples >= kLanes32 + 4) {
        const std::size_t last = samples - kLanes32 - 4;
        for (; i < last; i += kLanes32)
            pair(i);
        pair(last);
        i = samples - 4;
    }
    for (; i < samples; ++i)
        pairs[i] = row[i] | (i + 4 < samples ? std::uint32_t{row[i + 4]} << 16 : 0);
}

/// Calls operation(i) for each i below count. Unlike a loop's, what it keeps in an array stays in registers.
template <std::size_t count, class Operation>
void Unroll(Operation operation)
{
    const auto callEach = [&]<std::size_t... i>(std::index_sequence<i...>)
    {
        (operation(i), ...);
    };
    callEach(std::make_index_sequence<count>{});
}

void FixedAcross(const std::uint32_t* pairs, const std::int16_t* weights, std::size_t count,
                 std::int16_t* out, std::size_t samples)
{
    constexpr std::size_t kSums = 8;
    static_assert(kGrain % (kSums * kLanes32) == 0);
    for (std::size_t at = 0; at < samples; at += kSums * kLanes32) {
        S32 sums[kSums];
        Unroll<kSums>([&](std::size_t i) { sums[i] = Splat32(kHalf); });
        const std::uint32_t* from = pairs + at;
        for (std::size_t k = 0; k < count; k += 2, from += 8) {
            const S32 weight = LoadWeights(weights + k);
            Unroll<kSums>(
                [&](std::size_t i) { sums[i] = sums[i] + DotPairs(LoadLanes(from + i * kLanes32), weight); });
        }
        Unroll<kSums / 2>([&](std::size_t i) {
            const U16 whole = WholeParts(sums[2 * i], sums[2 * i + 1]);
            Store(reinterpret_cast<std::uint8_t*>(out + at + 2 * i * kLanes32), OrderNarrowed({whole.bits}));
        });
    }
}

/// Half a vector of results of each row, as 16-bit lanes.
struct HalfTile {
    U16 rows[kTileRows];
};

HalfTile SumDown(const std::int16_t* const* sources, const std::int16_t* weights, std::size_t count,
                 std::size_t at)
{
    S32 low[kTileRows];
    S32 high[kTileRows];
    Unroll<kTileRows>([&](std::size_t row) { low[row] = high[row] = Splat32(kHalf); });
    for (std::size_t k = 0; k < count; k += 2, weights += 2 * kTileRows) {
        const U16 first = LoadSamples(sources[k] + at);
        const U16 second = LoadSamples(sources[k + 1] + at);
        const S32 lowPairs = InterleaveLow(first, second);
        const S32 highPairs = InterleaveHigh(first, second);
        Unroll<kTileRows>([&](std::size_t row) {
            const S32 weight = LoadWeights(weights + 2 * row);
            low[row] = low[row] + DotPairs(lowPairs, weight);
            high[row] = high[row] + DotPairs(highPairs, weight);
        });
    }
    HalfTile tile;
    Unroll<kTileRows>([&](std::size_t row) { tile.rows[row] = WholeParts(low[row], high[row]); });
    return tile;
}

void FixedDown(const std::int16_t* const* sources, const std::int16_t* weights, std::size_t count,
               std::uint8_t* out, std::size_t step, std::size_t samples)
{
    static_assert(kGrain % kBytes == 0);
    for (std::size_t at = 0; at < samples; at += kBytes) {
        const HalfTile lower = SumDown(sources, weights, count, at);
        const HalfTile upper = SumDown(sources, weights, count, at + kBytes / 2);
        Unroll<kTileRows>([&](std::size_t row) {
            Store(out + row * step + at, OrderNarrowed(Narrow({lower.rows[row], upper.rows[row]})));
        });
    }
}

void StoreSums(const F32 (&sums)[4], float, float* out)
{
    for (std::size_t i = 0; i < 4; ++i)
        StoreFloats(out + i * kLanes32, sums[i]);
}

/// The sums as samples.
template <class Round>
void StoreRounded(Round whole, std::uint8_t* out)
{
    Store(out, NarrowLanes(whole(0), whole(1), whole(2), whole(3)));
}

template <class Round>
void StoreRounded(Round whole, std::uint16_t* out)
{
    Store(reinterpret_cast<std::uint8_t*>(out), NarrowPairs(whole(0), whole(1)));
    Store(reinterpret_cast<std::uint8_t*>(out + kChunk / 2), NarrowPairs(whole(2), whole(3)));
}

template <class Out>
void StoreSums(const F32 (&sums)[4], float offset, Out* out)
{
    constexpr float kFull = static_cast<Out>(~Out{0});
    const F32 offsets = SplatFloat(offset);
    const F32 half = SplatFloat(0.5F);
    StoreRounded([&](int i) { return ToWhole(sums[i] + offsets + half, kFull); }, out);
}

template <class In, class Out>
void FloatSum(const In* const* sources, const float* weights, std::size_t count, float offset, Out* out,
              std::size_t samples)
{
    MapChunks<In>(out, samples, [=](auto read, Out* to) {
        In buffer[kChunk] = {};
        F32 sums[4] = {SplatFloat(0), SplatFloat(0), SplatFloat(0), SplatFloat(0)};
        for (std::size_t k = 0; k < count; ++k) {
            const In* source = read(sources[k], buffer);
            const F32 weight = SplatFloat(weights[k]);
            for (std::size_t i = 0; i < 4; ++i)
                sums[i] = sums[i] + weight * LoadFloats(source + i * kLanes32);
        }
        StoreSums(sums, offset, to);
    });
}

} // namespace

namespace VFIL_LEVEL {

void Fill(ConvRows& rows)
{
    rows.fixed = FixedSum;
    rows.pairs = Pairs;
    rows.fixedAcross = FixedAcross;
    rows.fixedDown = FixedDown;
    rows.float8 = FloatSum<std::uint8_t, std::uint8_t>;
    rows.float8Across = FloatSum<std::uint8_t, float>;
    rows.float8Down = FloatSum<float, std::uint8_t>;
    rows.float16 = FloatSum<std::uint16_t, std::uint16_t>;
    rows.float16Across = FloatSum<std::uint16_t, float>;
    rows.float16Down = FloatSum<float, std::uint16_t>;
}

} // namespace VFIL_LEVEL
} // namespace vfil

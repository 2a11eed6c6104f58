/// \file
/// The vector forms of the convolutions' kernels, for the level VFIL_LEVEL.
#include "il/rows/convparams.h"
#include "il/rows/vecfloat.h"
#include "il/rows/vecsum.h"

namespace vfil {
namespace {

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

void AddPairs(Sums& sums, const std::int16_t* a, const std::int16_t* b, S32 weights)
{
    for (std::size_t half = 0; half < 2; ++half) {
        const U16 first = LoadSamples(a + half * kChunk / 2);
        const U16 second = LoadSamples(b + half * kChunk / 2);
        sums.v[2 * half] = sums.v[2 * half] + DotPairs(InterleaveLow(first, second), weights);
        sums.v[2 * half + 1] = sums.v[2 * half + 1] + DotPairs(InterleaveHigh(first, second), weights);
    }
}

/// The sums' whole parts; the sums of bytes stand as Widen's halves of bytes do.
U16Pair WholeParts(const Sums& sums)
{
    const auto whole = [&sums](int i) { return ShiftDown<15>(sums.v[i]); };
    return {PackSigned(whole(0), whole(1)), PackSigned(whole(2), whole(3))};
}

void StoreSums(const Sums& sums, const std::uint8_t*, std::uint8_t* out)
{
    Store(out, Narrow(WholeParts(sums)));
}

void StoreSums(const Sums& sums, const std::int16_t*, std::uint8_t* out)
{
    Store(out, OrderNarrowed(Narrow(WholeParts(sums))));
}

void StoreSums(const Sums& sums, const std::uint8_t*, std::int16_t* out)
{
    const U8Pair ordered = OrderWidened(WholeParts(sums));
    Store(reinterpret_cast<std::uint8_t*>(out), ordered.lo);
    Store(reinterpret_cast<std::uint8_t*>(out + kChunk / 2), ordered.hi);
}

template <class In, class Out>
void FixedSum(const In* const* sources, const std::int16_t* weights, std::size_t count, Out* out,
              std::size_t samples)
{
    MapChunks<In>(out, samples, [=](auto read, Out* to) {
        In buffers[2][kChunk] = {};
        Sums sums;
        for (S32& sum : sums.v)
            sum = Splat32(0x4000);
        for (std::size_t k = 0; k < count; k += 2) {
            std::int32_t pair;
            std::memcpy(&pair, weights + k, sizeof pair);
            AddPairs(sums, read(sources[k], buffers[0]), read(sources[k + 1], buffers[1]), Splat32(pair));
        }
        StoreSums(sums, buffers[0], to);
    });
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
    rows.fixed = FixedSum<std::uint8_t, std::uint8_t>;
    rows.fixedAcross = FixedSum<std::uint8_t, std::int16_t>;
    rows.fixedDown = FixedSum<std::int16_t, std::uint8_t>;
    rows.float8 = FloatSum<std::uint8_t, std::uint8_t>;
    rows.float8Across = FloatSum<std::uint8_t, float>;
    rows.float8Down = FloatSum<float, std::uint8_t>;
    rows.float16 = FloatSum<std::uint16_t, std::uint16_t>;
    rows.float16Across = FloatSum<std::uint16_t, float>;
    rows.float16Down = FloatSum<float, std::uint16_t>;
}

} // namespace VFIL_LEVEL
} // namespace vfil

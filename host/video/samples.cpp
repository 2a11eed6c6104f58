/// \file
/// Rows of samples between frames of a stream and pictures.

#include "host/video/samples.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace vfil::host {

namespace {

std::uint16_t SwapBytes(std::uint16_t word)
{
    return static_cast<std::uint16_t>(word << 8 | word >> 8);
}

template <class Sample>
unsigned Load(const std::uint8_t* from, bool swapped)
{
    Sample sample;
    std::memcpy(&sample, from, sizeof sample);
    if constexpr (sizeof sample == 2) {
        if (swapped) sample = SwapBytes(sample);
    }
    return sample;
}

template <class Sample>
void Store(std::uint8_t* to, unsigned code, bool swapped)
{
    auto sample = static_cast<Sample>(code);
    if constexpr (sizeof sample == 2) {
        if (swapped) sample = SwapBytes(sample);
    }
    std::memcpy(to, &sample, sizeof sample);
}

template <class From, class To>
void CopySamples(const SourceLine& from, const TargetLine& to, long count, const SampleMap& map)
{
    const unsigned mask = (1U << from.bits) - 1;
    const auto loop = [&](auto mapped) {
        for (long i = 0; i < count; ++i) {
            const unsigned code =
                Load<From>(from.first + i * from.stepBytes, from.swapped) >> from.shift & mask;
            Store<To>(to.first + i * to.stepBytes, mapped(code) << to.shift, to.swapped);
        }
    };
    if (map.Identity()) {
        loop([](unsigned code) { return code; });
    } else {
        loop([&map](unsigned code) { return unsigned{map(code)}; });
    }
}

bool IsPlain(const SourceLine& from, const TargetLine& to)
{
    const std::ptrdiff_t bytes = from.wide ? 2 : 1;
    return from.wide == to.wide && from.bits == to.bits && from.bits == bytes * 8 &&
           from.swapped == to.swapped && from.stepBytes == bytes && to.stepBytes == bytes;
}

/// Calls \p loop with the two maps of luma and chroma as functions of bytes.
template <class Loop>
void WithMaps(const SampleMap& luma, const SampleMap& chroma, Loop loop)
{
    if (luma.Identity() && chroma.Identity()) {
        const auto same = [](std::uint8_t code) { return code; };
        loop(same, same);
    } else {
        loop([&luma](std::uint8_t code) { return static_cast<std::uint8_t>(luma(code)); },
             [&chroma](std::uint8_t code) { return static_cast<std::uint8_t>(chroma(code)); });
    }
}

template <bool kChromaFirst, class Luma, class Chroma>
void PackPairs(const PlanarRow& from, std::uint8_t* to, long pairs, Luma luma, Chroma chroma)
{
    const std::uint8_t* const y = from.luma;
    const std::uint8_t* const cb = from.cb;
    const std::uint8_t* const cr = from.cr;
    for (long i = 0; i < pairs; ++i) {
        to[4 * i + !kChromaFirst] = chroma(cb[i]);
        to[4 * i + kChromaFirst] = luma(y[2 * i]);
        to[4 * i + 2 + !kChromaFirst] = chroma(cr[i]);
        to[4 * i + 2 + kChromaFirst] = luma(y[2 * i + 1]);
    }
}

template <bool kChromaFirst, class Luma, class Chroma>
void UnpackPairs(const std::uint8_t* from, const PlanarRow& to, long pairs, Luma luma, Chroma chroma)
{
    std::uint8_t* const y = to.luma;
    std::uint8_t* const cb = to.cb;
    std::uint8_t* const cr = to.cr;
    for (long i = 0; i < pairs; ++i) {
        cb[i] = chroma(from[4 * i + !kChromaFirst]);
        y[2 * i] = luma(from[4 * i + kChromaFirst]);
        cr[i] = chroma(from[4 * i + 2 + !kChromaFirst]);
        y[2 * i + 1] = luma(from[4 * i + 2 + kChromaFirst]);
    }
}

} // namespace

Coding StreamCoding(Role role, int bits, Range range)
{
    const double unit = std::exp2(bits - 8);
    const double greatest = std::exp2(bits) - 1;
    if (role == Role::Full) return {bits, 0, greatest};
    if (range == Range::Full) return {bits, role == Role::Luma ? 0 : 128 * unit, greatest};
    if (role == Role::Luma) return {bits, 16 * unit, 219 * unit};
    return {bits, 128 * unit, 224 * unit};
}

Coding PictureCoding(Role role, int bytes)
{
    const Coding byte = StreamCoding(role, 8, Range::Studio);
    return bytes == 1 ? byte : Coding{16, byte.offset * 257, byte.scale * 257};
}

Coding InHighBits(const Coding& coding)
{
    const double unit = std::exp2(16 - coding.bits);
    return {16, coding.offset * unit, coding.scale * unit};
}

SampleMap::SampleMap(const Coding& from, const Coding& to)
{
    if (from == to) return;
    const auto codes = std::size_t{1} << from.bits;
    const double greatest = std::exp2(to.bits) - 1;
    m_table.resize(codes);
    for (std::size_t i = 0; i < codes; ++i) {
        const double code = to.offset + (static_cast<double>(i) - from.offset) * (to.scale / from.scale);
        m_table[i] = static_cast<std::uint16_t>(std::lround(std::clamp(code, 0.0, greatest)));
    }
}

TargetLine LineOf(const AVFrame& frame, const PixelKind& kind, int component, int row)
{
    const AVComponentDescriptor& part = kind.descriptor->comp[component];
    TargetLine line;
    line.first = frame.data[part.plane] + std::ptrdiff_t{row} * frame.linesize[part.plane] + part.offset;
    line.stepBytes = part.step;
    line.bits = part.depth;
    line.shift = part.shift;
    line.wide = part.shift + part.depth > 8;
    line.swapped = (kind.descriptor->flags & AV_PIX_FMT_FLAG_BE) != 0;
    // A sample within one byte of a big-endian word: its offset is told from the word's other end.
    if (line.swapped && !line.wide) ++line.first;
    return line;
}

void CopyLine(const SourceLine& from, const TargetLine& to, long count, const SampleMap& map)
{
    if (map.Identity() && IsPlain(from, to)) {
        std::memcpy(to.first, from.first, static_cast<std::size_t>(count * from.stepBytes));
    } else if (from.wide) {
        to.wide ? CopySamples<std::uint16_t, std::uint16_t>(from, to, count, map)
                : CopySamples<std::uint16_t, std::uint8_t>(from, to, count, map);
    } else {
        to.wide ? CopySamples<std::uint8_t, std::uint16_t>(from, to, count, map)
                : CopySamples<std::uint8_t, std::uint8_t>(from, to, count, map);
    }
}

void FillLine(const TargetLine& to, long count, unsigned code)
{
    for (long i = 0; i < count; ++i) {
        std::uint8_t* const sample = to.first + i * to.stepBytes;
        if (to.wide) {
            Store<std::uint16_t>(sample, code << to.shift, to.swapped);
        } else {
            *sample = static_cast<std::uint8_t>(code << to.shift);
        }
    }
}

void PackRow(const PlanarRow& from, std::uint8_t* to, long pairs, bool chromaFirst, const SampleMap& luma,
             const SampleMap& chroma)
{
    WithMaps(luma, chroma, [&](auto mapLuma, auto mapChroma) {
        chromaFirst ? PackPairs<true>(from, to, pairs, mapLuma, mapChroma)
                    : PackPairs<false>(from, to, pairs, mapLuma, mapChroma);
    });
}

void UnpackRow(const std::uint8_t* from, const PlanarRow& to, long pairs, bool chromaFirst,
               const SampleMap& luma, const SampleMap& chroma)
{
    WithMaps(luma, chroma, [&](auto mapLuma, auto mapChroma) {
        chromaFirst ? UnpackPairs<true>(from, to, pairs, mapLuma, mapChroma)
                    : UnpackPairs<false>(from, to, pairs, mapLuma, mapChroma);
    });
}

} // namespace vfil::host

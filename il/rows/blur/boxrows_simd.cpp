/// \file
/// The vector forms of the box blur's kernels, for the level VFIL_LEVEL.
#include "il/rows/blur/boxparams.h"
#include "il/rows/vecsum.h"

namespace vfil {
namespace {

static_assert(kColumnSlack >= kBytes);

void MoveChunk(const std::uint8_t* gained, const std::uint8_t* lost, std::uint32_t* columns)
{
    for (std::size_t i = 0; i < kBytes; i += kLanes32) {
        const S32 change = S32{LoadEachAs32(gained + i).bits} - S32{LoadEachAs32(lost + i).bits};
        StoreLanes(columns + i, LoadLanes(columns + i) + change);
    }
}

void Move(const std::uint8_t* gained, const std::uint8_t* lost, std::uint32_t* columns, std::size_t samples)
{
    std::size_t at = 0;
    for (; samples - at >= kBytes; at += kBytes)
        MoveChunk(gained + at, lost + at, columns + at);
    if (at == samples) return;
    std::uint8_t parts[2][kBytes] = {};
    std::memcpy(parts[0], gained + at, samples - at);
    std::memcpy(parts[1], lost + at, samples - at);
    MoveChunk(parts[0], parts[1], columns + at);
}

/// The sum of so many pixels and another one, in each pixel's place.
template <int channels>
S32 SumPixels(const std::uint32_t* columns, std::size_t pixels, const std::uint32_t* another)
{
    const std::size_t samples = pixels * channels;
    S32 sums = Splat32(0);
    std::size_t at = 0;
    for (; samples - at >= kLanes32; at += kLanes32)
        sums = sums + LoadLanes(columns + at);
    std::uint32_t lanes[kLanes32];
    std::uint32_t totals[kLanes32] = {};
    std::memcpy(totals, another, channels * sizeof *another);
    StoreLanes(lanes, sums);
    for (std::size_t i = 0; i < kLanes32; ++i)
        totals[i % channels] += lanes[i];
    for (; at < samples; ++at)
        totals[at % channels] += columns[at];
    for (std::size_t i = channels; i < kLanes32; ++i)
        totals[i] = totals[i - channels];
    return LoadLanes(totals);
}

/// Each pixel becomes the sum of the pixels up to itself.
template <int channels>
S32 RunningSums(S32 v)
{
    if constexpr (channels == 1) {
        v = v + MoveLanesUp<1>(v);
        v = v + MoveLanesUp<2>(v);
    }
    if constexpr (kLanes32 > 4) v = v + MoveLanesUp<4>(v);
    if constexpr (kLanes32 > 8) v = v + MoveLanesUp<8>(v);
    return v;
}

template <int channels>
void Box(const std::uint32_t* columns, std::size_t width, const std::uint32_t* beyond, std::uint32_t scale,
         std::uint8_t* out, std::size_t pixels)
{
    const std::size_t samples = pixels * channels;
    const std::uint32_t* gained = columns + (width - 1) * channels;
    const std::uint32_t* lost = columns - channels;
    const S32 scales = Splat32(static_cast<std::int32_t>(scale));
    S32 carried = SumPixels<channels>(lost, width, beyond); // of the window before the first
    const auto next = [&](std::size_t at) {
        const S32 change = RunningSums<channels>(LoadLanes(gained + at) - LoadLanes(lost + at));
        const S32 sums = carried + change;
        carried = carried + SplatLastLanes<channels>(change);
        return MulHighRounded(sums, scales);
    };
    for (std::size_t at = 0; at < samples; at += kBytes) {
        S32 results[4];
        for (std::size_t i = 0; i < 4; ++i)
            results[i] = next(at + i * kLanes32);
        const U8 narrow = NarrowLanes(results[0], results[1], results[2], results[3]);
        if (samples - at >= kBytes) {
            Store(out + at, narrow);
        } else {
            std::uint8_t bytes[kBytes];
            Store(bytes, narrow);
            std::memcpy(out + at, bytes, samples - at);
        }
    }
}

} // namespace

namespace VFIL_LEVEL {

void Fill(BoxRows& rows)
{
    rows.move = Move;
    rows.pixels = Box<4>;
    rows.mono = Box<1>;
}

} // namespace VFIL_LEVEL
} // namespace vfil

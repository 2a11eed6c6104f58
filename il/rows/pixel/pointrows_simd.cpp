/// \file
/// The vector forms of the one-input kernels, for the level VFIL_LEVEL.
#include "il/rows/pixel/pointparams.h"
#include "il/rows/vec.h"

namespace vfil {
namespace {

// x ^ all ones is full - x.

template <bool streaming>
void InvertPixels8(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels, std::uint32_t select)
{
    const U8 selects = SplatU32(select);
    MapRow<streaming, 4>(in, in, out, 4 * pixels, [selects](U8 pixel, U8, Part) { return pixel ^ selects; });
}

template <bool streaming>
void InvertPixels16(const std::uint16_t* in, std::uint16_t* out, std::size_t pixels, std::uint64_t select)
{
    const U8 selects = SplatU64(select);
    MapRow<streaming, 8>(in, in, out, 8 * pixels, [selects](U8 pixel, U8, Part) { return pixel ^ selects; });
}

template <bool streaming, class Sample>
void InvertSamples(const Sample* in, Sample* out, std::size_t samples)
{
    const U8 ones = SplatU32(0xFFFFFFFF);
    MapRow<streaming, sizeof(Sample)>(in, in, out, samples * sizeof(Sample),
                                      [ones](U8 sample, U8, Part) { return sample ^ ones; });
}

void CopyAroundCache(const void* in, void* out, std::size_t bytes)
{
    MapRow<true, 1>(in, in, out, bytes, [](U8 samples, U8, Part) { return samples; });
}

template <bool streaming>
void FillStreaming(PointRows& rows)
{
    rows.invert8[streaming] = InvertPixels8<streaming>;
    rows.invertMono8[streaming] = InvertSamples<streaming, std::uint8_t>;
    rows.invert16[streaming] = InvertPixels16<streaming>;
    rows.invertMono16[streaming] = InvertSamples<streaming, std::uint16_t>;
}

} // namespace

namespace VFIL_LEVEL {

void Fill(PointRows& rows)
{
    FillStreaming<false>(rows);
    FillStreaming<true>(rows);
    // A copy that stays in the cache is left to memcpy, which no loop here was found to beat.
    rows.copy[true] = CopyAroundCache;
}

} // namespace VFIL_LEVEL
} // namespace vfil

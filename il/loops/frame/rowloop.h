/// \file
/// The pixel loops of the frames: rows, interruption, mask and channel selection, once. A leaf gives the
/// operation of one sample or pixel as a function that is inlined.
#pragma once

#include "il/rows/pixarith.h"

#include <vfil/frame.h>

#include <algorithm>
#include <cstdint>

namespace vfil {

/// Formats whose pixels are a few samples of one width.
template <const GUID& kFormat, class SampleType, int kSamples>
struct SampledFormat {
    using Sample = SampleType;
    static constexpr int kChannels = kSamples;
    static constexpr const GUID& kId = kFormat;

    /// The channels of a pixel that an operator writes; a mono picture ignores the mode.
    static unsigned Channels(const vfILProcessor& processor)
    {
        return kChannels == 1 ? 1U : static_cast<unsigned>(processor.GetProcessingMode() & VFIL_MODE_RGBA);
    }
};

using Rgba8 = SampledFormat<PXFormat_RGBA32, std::uint8_t, 4>;
using Rgba16 = SampledFormat<PXFormat_RGBA64, std::uint16_t, 4>;
using Mono8 = SampledFormat<PXFormat_Mono8, std::uint8_t, 1>;
using Mono16 = SampledFormat<PXFormat_Mono16, std::uint16_t, 1>;

/// The formats that an operator takes: asked by its Verify, visited by its DoEffect.
template <class... Formats>
struct FormatList {
    static bool Contains(const GUID& format) { return ((format == Formats::kId) || ...); }

    /// Calls \p effect with the format's tag; does nothing for a format that is not in the list.
    template <class Effect>
    static void Visit(const GUID& format, Effect&& effect)
    {
        ((format == Formats::kId ? effect(Formats{}) : void()), ...);
    }

    /// Calls the one for the format's samples, of 8 or of 16 bits; succeeds with a format that is not in the
    /// list.
    template <class Effect8, class Effect16>
    static vfILStatus RunByDepth(const GUID& format, Effect8 effect8, Effect16 effect16)
    {
        vfILStatus status = VFIL_SUCCESS;
        Visit(format, [&](auto tag) {
            status = sizeof(typename decltype(tag)::Sample) == 1 ? effect8() : effect16();
        });
        return status;
    }
};

using PointFormats = FormatList<Rgba8, Rgba16, Mono8, Mono16>;
using RgbaFormats = FormatList<Rgba8, Rgba16>;
using MonoFormats = FormatList<Mono8, Mono16>;

/// The format of a prepared run's output.
inline const GUID& FormatOf(const vfILPixelRun& run)
{
    return run.picture.format->id;
}

/// Treats rows 0 .. rows - 1 in turn. Stops quietly after a row when the interrupt is set.
template <class TreatRow>
void ForEachRow(const vfILProcessor& processor, long rows, TreatRow treatRow)
{
    for (long row = 0; row < rows; ++row) {
        treatRow(row);
        if (processor.MustInterrupt() != 0) return;
    }
}

/// The samples of one row of a walk; null for a walk of nothing.
template <class Sample>
Sample* RowOf(const vfILRowWalk& walk, long row)
{
    return walk.first == nullptr ? nullptr : reinterpret_cast<Sample*>(walk.first + row * walk.step);
}

/// One row of mask samples. Without a mask every sample is full.
template <class Sample>
struct MaskRow {
    MaskRow(const vfILPixelRun& run, long row)
        : samples(RowOf<const Sample>(run.mask, row)),
          step(run.maskPixelStep / std::ptrdiff_t{sizeof(Sample)})
    {}
    Sample operator[](long pixel) const
    {
        return samples == nullptr ? Arith<Sample>::kFull : samples[pixel * step];
    }

    const Sample* samples;
    std::ptrdiff_t step;
};

/// Writes one pixel: the result by the mask's sample, the base by the rest and in channels that are not
/// selected.
template <class Format>
void MixPixel(const typename Format::Sample* base, const typename Format::Sample* result,
              typename Format::Sample* out, typename Format::Sample mask, unsigned channels)
{
    using Rules = Arith<typename Format::Sample>;
    if (mask == 0) channels = 0;
    for (int c = 0; c < Format::kChannels; ++c) {
        const auto mixed = mask == Rules::kFull ? result[c] : Rules::Blend(result[c], base[c], mask);
        out[c] = (channels >> c & 1U) != 0 ? mixed : base[c];
    }
}

/// Runs over the process box: \p makePixel(row, index, result) gives the operation's samples for the pixel
/// whose first sample stands at `index` in its row, and the frame mixes them with the base input.
template <class Format, class MakePixel>
void RunPixels(const vfILProcessor& processor, const vfILPixelRun& run, const vfILRowWalk& base,
               unsigned channels, MakePixel makePixel)
{
    using Sample = typename Format::Sample;
    const long width = run.processBox.GetSizeX();
    ForEachRow(processor, run.rows, [&](long row) {
        const auto* from = RowOf<const Sample>(base, row);
        auto* out = RowOf<Sample>(run.output, row);
        const MaskRow<Sample> mask(run, row);
        for (long x = 0; x < width; ++x) {
            const long index = x * Format::kChannels;
            Sample result[Format::kChannels];
            makePixel(row, index, result);
            MixPixel<Format>(from + index, result, out + index, mask[x], channels);
        }
    });
}

/// An operation of one sample for one.
template <class Format, class Op>
vfILStatus RunPointOp(const vfILProcessor& processor, const vfILPixelRun& run, const vfILRowWalk& input,
                      Op op)
{
    using Sample = typename Format::Sample;
    RunPixels<Format>(processor, run, input, Format::Channels(processor),
                      [&](long row, long index, Sample* result) {
                          const auto* in = RowOf<const Sample>(input, row) + index;
                          for (int c = 0; c < Format::kChannels; ++c)
                              result[c] = op(in[c]);
                      });
    return VFIL_SUCCESS;
}

/// An operation of one sample for two; the first input is the base.
template <class Format, class Op>
vfILStatus RunPairOp(const vfILProcessor& processor, const vfILPixelRun& run, const vfILRowWalk& inputA,
                     const vfILRowWalk& inputB, Op op)
{
    using Sample = typename Format::Sample;
    RunPixels<Format>(processor, run, inputA, Format::Channels(processor),
                      [&](long row, long index, Sample* result) {
                          const auto* a = RowOf<const Sample>(inputA, row) + index;
                          const auto* b = RowOf<const Sample>(inputB, row) + index;
                          for (int c = 0; c < Format::kChannels; ++c)
                              result[c] = op(a[c], b[c]);
                      });
    return VFIL_SUCCESS;
}

} // namespace vfil

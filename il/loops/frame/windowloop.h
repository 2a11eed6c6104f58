/// \file
/// The loops of the filters: treated rows, interruption, mask and channel selection, once. A leaf makes a row
/// of results, or one sample of a window, as a function that is inlined.
#pragma once

#include "il/loops/frame/rowloop.h"

#include <vfil/spatial.h>

#include <array>
#include <bit>
#include <cstring>
#include <type_traits>

namespace vfil {

/// The channels of a pixel that a run writes; a mono picture ignores the selection.
template <class Format>
unsigned SelectedChannels(const vfILWindowRun& run)
{
    return Format::kChannels == 1 ? 1U : static_cast<unsigned>(run.channels & VFIL_MODE_RGBA);
}

/// True when results need no mixing, so that RunWindowRows has them made in the output's rows.
template <class Format>
bool WritesToOutput(const vfILWindowRun& run)
{
    return run.mask.first == nullptr && SelectedChannels<Format>(run) == (1U << Format::kChannels) - 1;
}

/// Writes the selected channels of four-channel results, and the base's others, by whole pixels.
template <class Sample>
void SelectChannels(const Sample* base, const Sample* results, Sample* out, long pixels, unsigned channels)
{
    using Word = std::conditional_t<sizeof(Sample) == 1, std::uint32_t, std::uint64_t>;
    std::array<Sample, 4> selected;
    for (unsigned c = 0; c < 4; ++c)
        selected[c] = (channels >> c & 1U) != 0 ? Arith<Sample>::kFull : Sample{0};
    const auto select = std::bit_cast<Word>(selected);
    for (long x = 0; x < pixels; ++x, base += 4, results += 4, out += 4) {
        Word kept;
        Word word;
        std::memcpy(&kept, base, sizeof kept);
        std::memcpy(&word, results, sizeof word);
        word = (word & select) | (kept & ~select);
        std::memcpy(out, &word, sizeof word);
    }
}

/// Writes a row of results by the mask and the selected channels, as MixPixel does.
template <class Format>
void WriteResults(const vfILWindowRun& run, long row, const typename Format::Sample* results,
                  unsigned channels)
{
    using Sample = typename Format::Sample;
    const long width = run.processBox.GetSizeX();
    const auto* base = RowOf<const Sample>(run.centres, row);
    auto* out = RowOf<Sample>(run.output, row);
    if constexpr (Format::kChannels == 4) {
        if (run.mask.first == nullptr) return SelectChannels(base, results, out, width, channels);
    }
    const MaskRow<Sample> mask(run, row);
    for (long x = 0; x < width; ++x) {
        const long index = x * Format::kChannels;
        MixPixel<Format>(base + index, results + index, out + index, mask[x], channels);
    }
}

/// makeRow(row, results), which may have no result: then it made the row.
template <class MakeResults, class Sample>
bool MakesRow(MakeResults& makeRow, long row, Sample* results)
{
    if constexpr (std::is_void_v<decltype(makeRow(row, results))>) {
        makeRow(row, results);
        return true;
    } else {
        return makeRow(row, results);
    }
}

/// Runs over the treated rows: \p makeRow(row, results) gives the results of effect row `row`, whose windows
/// are the rows `row`, row + 1 ... of run.windows. The processor tells when to stop; so does makeRow if it
/// returns false, and that row is not written. makeRow may write results
/// in any order, and read them back: they are the output's own row when nothing has to be mixed.
template <class Format, class MakeRow>
void RunWindowRows(const vfILProcessor& processor, vfILWindowRun& run, MakeRow makeRow)
{
    using Sample = typename Format::Sample;
    const unsigned channels = SelectedChannels<Format>(run);
    const bool direct = WritesToOutput<Format>(run);
    for (long i = 0; i < run.rows && !run.stopped; ++i) {
        const long row = run.firstRow + i * run.rowStep;
        auto* results = direct ? RowOf<Sample>(run.output, row) : reinterpret_cast<Sample*>(run.resultRow);
        if (!MakesRow(makeRow, row, results)) {
            run.stopped = true;
            return;
        }
        if (!direct) WriteResults<Format>(run, row, results, channels);
        run.stopped = processor.MustInterrupt() != 0;
    }
}

/// One channel's samples around a pixel: (0, 0) is the window's top-left corner.
template <class Format>
struct Window {
    using Sample = typename Format::Sample;

    Sample operator()(long x, long y) const { return first[y * step + x * Format::kChannels]; }

    const Sample* first;
    std::ptrdiff_t step; ///< samples from a row to the next
};

/// An operation of one channel's window.
template <class Format, class Op>
void RunWindowOp(const vfILProcessor& processor, vfILWindowRun& run, Op op)
{
    using Sample = typename Format::Sample;
    const std::ptrdiff_t step = run.windows.step / std::ptrdiff_t{sizeof(Sample)};
    const long samples = run.processBox.GetSizeX() * Format::kChannels;
    RunWindowRows<Format>(processor, run, [&](long row, Sample* results) {
        const auto* window = RowOf<const Sample>(run.windows, row);
        for (long i = 0; i < samples; ++i)
            results[i] = op(Window<Format>{window + i, step});
    });
}

} // namespace vfil

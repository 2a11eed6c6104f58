/// \file
/// The loop of the filters that take the brightest or the darkest pixel.
#pragma once

#include "il/loops/rank/rankloop.h"
#include "il/loops/rank/rankpixels.h"

namespace vfil {

/// Does nothing for an output format that is not in the list.
template <class Formats>
void RunRankExtremes(const vfILMonadicSpatialProc& processor, vfILWindowRun& run, bool brightest,
                     bool useVectors)
{
    const ElementRuns runs = EllipseRuns(double{processor.GetRadiusX()}, double{processor.GetRadiusY()});
    Formats::Visit(FormatOf(processor.GetOutputImg()), [&](auto format) {
        using Format = decltype(format);
        using Sample = typename Format::Sample;
        const auto runRows = [&](auto rows) {
            RunFold fold(std::move(rows), runs, run);
            RunWindowRows<Format>(processor, run, [&fold](long row, Sample* results) { fold(row, results); });
        };
        if (runs.empty()) return CopyCentres<Format>(processor, run);
        if constexpr (Format::kChannels == 1) {
            // A sample is its own key.
            runRows(SampleRows<Format>(run, ExtremeKernels<Sample>(brightest, useVectors, false)));
        } else {
            runRows(PixelRows<Format>(run, brightest, useVectors));
        }
    });
}

} // namespace vfil

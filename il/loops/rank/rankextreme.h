/// \file
/// The loop of the filters that take the brightest or the darkest pixel.
#pragma once

#include "il/loops/frame/runfold.h"
#include "il/loops/rank/rankloop.h"
#include "il/loops/rank/rankpixels.h"
#include "il/loops/rank/sampleextremes.h"

namespace vfil {

/// The window of such a filter: that of its radii, as far as it meets the picture. False when memory is
/// short.
inline bool FindExtremeShape(const vfILMonadicSpatialProc& filter, const vfILPictureView& input,
                             WindowShape& shape)
{
    return shape.SetFirstMeetings(double{filter.GetRadiusX()}, double{filter.GetRadiusY()},
                                  {filter.GetEdgeMode(), input.width, input.height});
}

/// Runs over windows of FindExtremeShape. Does nothing for an output format that is not in the list. False
/// when memory is short.
template <class Formats>
bool RunRankExtremes(const vfILMonadicSpatialProc& filter, vfILWindowRun& run, bool brightest,
                     bool useVectors)
{
    WindowShape shape;
    if (!FindExtremeShape(filter, run.inputPicture, shape)) return false;
    bool done = true;
    Formats::Visit(FormatOf(run), [&](auto format) {
        using Format = decltype(format);
        using Sample = typename Format::Sample;
        const auto runRows = [&](auto rows) {
            RunFold fold(std::move(rows), shape, run);
            done = fold.Allocate();
            if (!done) return;
            RunWindowRows<Format>(filter, run, [&fold](long row, Sample* results) { fold(row, results); });
        };
        if (shape.IsEmpty()) return CopyCentres<Format>(filter, run);
        if constexpr (Format::kChannels == 1) {
            // A sample is its own key.
            runRows(SampleRows<Format>(run, ExtremeKernels<Sample>(brightest, useVectors, false)));
        } else {
            runRows(PixelRows<Format>(run, brightest, useVectors));
        }
    });
    return done;
}

} // namespace vfil

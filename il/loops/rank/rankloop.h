/// \file
/// What the loops of the rank filters share.
#pragma once

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/windowloop.h"
#include "il/loops/frame/windowshape.h"

namespace vfil {

using ByteFormats = FormatList<Rgba8, Mono8>;
using WordFormats = FormatList<Rgba16, Mono16>;

/// Copies the centres: what is left to do for a window without a pixel, as only radii that Verify refuses
/// have.
template <class Format>
void CopyCentres(const vfILProcessor& processor, vfILWindowRun& run)
{
    using Sample = typename Format::Sample;
    const long samples = run.processBox.GetSizeX() * Format::kChannels;
    RunWindowRows<Format>(processor, run, [&](long row, Sample* results) {
        std::copy_n(RowOf<const Sample>(run.centres, row), samples, results);
    });
}

} // namespace vfil

/// \file
/// Sampling of pictures by the kernels: what of a run they take.
#pragma once

#include "il/rows/transform/samplerows.h"

#include <vfil/transform.h>

namespace vfil {

/// Coordinates that are made at a time: they stay in the nearest cache.
inline constexpr long kSampleBlock = 256;

/// The kind of a format's pixels; of RGBA and mono formats alone.
SamplePixel SamplePixelOf(const vfILPictureView& picture);

/// The input of a run, without what was cropped.
SampleSource SourceOf(const vfILTransformRun& run);

/// A whole picture, with the default pixel of a run.
SampleSource SourceOf(const vfILPictureView& picture, const vfILTransformRun& run);

/// The form that the type samples a point with.
SampleForm SampleFormOf(vfILInterpolationType type);

} // namespace vfil

/// \file
/// The parameters of the colour-difference key of video, from numbers that a host sets, for each of its
/// forms.
#pragma once

#include "il/rows/keyer/rgbcompositeparams.h"
#include "il/rows/keyer/videokeyparams.h"

#include <vfil/color.h>

/// What a host sets. Any numbers: what a form cannot hold is limited.
struct vfILYUVKeySettings {
    double c0, c1, c2;
    double clipLow, clipHigh;
    const vfILColor& keyColor;
    const vfILColor& spillColor;
    double lumaFactor, lumaTerm;
    double threshold, softness;
    PXColorModel model;
};

namespace vfil {

/// 4:2:2, on channels that are made; a tie of green and blue keys green.
ChannelKeyParams ChannelKeyOf(const vfILYUVKeySettings& settings);

/// 4:2:2, on the samples; a tie keys blue.
FoldedKeyParams FoldedKeyOf(const vfILYUVKeySettings& settings);

/// RGBA; a tie keys blue.
RgbCompositeParams RgbCompositeOf(const vfILYUVKeySettings& settings);

} // namespace vfil

/// \file
/// The layer operators that work through hue, lightness and saturation, pixel by pixel.
#pragma once

#include "il/loops/layer/comploop.h"

namespace vfil {

struct Hlsa {
    double hue;
    double lightness;
    double saturation;
    double alpha;
};

template <class Sample>
Hlsa ToHlsa(const Sample* rgba)
{
    constexpr double kUnit = 1.0 / Arith<Sample>::kFull;
    const vfILColor color(rgba[0] * kUnit, rgba[1] * kUnit, rgba[2] * kUnit, rgba[3] * kUnit);
    Hlsa hlsa{};
    color.GetColorAsHLSA(&hlsa.hue, &hlsa.lightness, &hlsa.saturation, &hlsa.alpha);
    return hlsa;
}

/// Back to samples, by truncation: these operators never rounded.
template <class Sample>
void ToRgba(const Hlsa& hlsa, Sample* rgba)
{
    vfILColor color;
    color.SetColorAsHLSA(&hlsa.hue, &hlsa.lightness, &hlsa.saturation, &hlsa.alpha);
    const double values[4] = {color.GetRed(), color.GetGreen(), color.GetBlue(), color.GetAlpha()};
    constexpr double kFull = Arith<Sample>::kFull;
    for (int c = 0; c < 4; ++c)
        rgba[c] = static_cast<Sample>(std::clamp(values[c] * kFull, 0.0, kFull));
}

/// \p combine(back, front) makes the result's colour of the back's and of the scaled front's.
template <class Format, class Combine>
vfILStatus RunModelOp(vfILCompImg& processor, const vfILLayerRun& layers, Combine combine)
{
    using Sample = typename Format::Sample;
    return RunWholePixelOp<Format>(processor, layers,
                                   [&](const Sample* back, const Sample* front, Sample* out) {
                                       ToRgba(combine(ToHlsa(back), ToHlsa(front)), out);
                                   });
}

} // namespace vfil

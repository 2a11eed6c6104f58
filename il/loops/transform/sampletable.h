/// \file
/// Where the outputs of one axis lie among the pixels of the other picture.
#pragma once

#include "il/loops/transform/axistaps.h"
#include "il/rows/pixarith.h"
#include "il/rows/transform/sampleparams.h"

#include <cmath>

namespace vfil {

/// A place on an axis: the pixel at or below it, and how far it is beyond that.
struct AxisPlace {
    std::int64_t whole = 0;
    std::int32_t fraction = 0; ///< in 65536ths
    double exact = 0;
    bool isNear = false; ///< pixels that count may be among its neighbours
};

/// Places of outputs on an axis, by the rules of samplerows.h.
struct AxisPlaces {
    AxisMap map;
    Span source; ///< the pixels that count
    SampleForm form = SampleForm::Nearest;
    bool isFixed = false; ///< fractions are rounded to 65536ths, as those of 8-bit samples

    AxisPlace At(std::int64_t output) const
    {
        const double u = map.scale * static_cast<double>(output) + map.offset;
        const double reach = form == SampleForm::Bicubic ? 2 : 1;
        AxisPlace place;
        if (!(u >= static_cast<double>(source.first) - reach && u < static_cast<double>(source.last) + reach))
            return place;
        place.isNear = true;
        if (form == SampleForm::Nearest) {
            place.whole = RoundHalfAway(u);
            place.isNear = place.whole >= source.first && place.whole <= source.last;
        } else if (isFixed) {
            const auto fixed = static_cast<std::int64_t>(std::floor(u * kFractions + 0.5));
            place.whole = fixed >> kFractionBits;
            place.fraction = static_cast<std::int32_t>(fixed & ((1 << kFractionBits) - 1));
        } else {
            const double low = std::floor(u);
            place.whole = static_cast<std::int64_t>(low);
            place.exact = u - low;
        }
        return place;
    }
    /// The pixels that count among the place's neighbours.
    Span PixelsAt(const AxisPlace& place) const
    {
        if (!place.isNear) return {};
        const std::int64_t before = form == SampleForm::Bicubic ? 1 : 0;
        const std::int64_t after = form == SampleForm::Bicubic ? 2 : (form == SampleForm::Bilinear ? 1 : 0);
        return {std::max(source.first, place.whole - before), std::min(source.last, place.whole + after)};
    }
};

/// The weights of samples of 16 bits.
inline void SetExactWeights(double t, double* weights)
{
    const double t2 = t * t;
    const double t3 = t2 * t;
    weights[0] = t2 - 0.5 * t - 0.5 * t3;
    weights[1] = 1 - 2.5 * t2 + 1.5 * t3;
    weights[2] = 0.5 * t + 2 * t2 - 1.5 * t3;
    weights[3] = 0.5 * t3 - 0.5 * t2;
}

} // namespace vfil

/// \file
/// The scales that are measured, for those who add them.
#pragma once

#include "filters.h"

#include <vfil/transform.h>

#include <array>
#include <cmath>

namespace bench {

/// What a peer is asked for, too.
enum class ScaleFilter { Nearest, Bilinear, Bicubic, Area };

/// A scale of the photograph: its outer edges come to those of the result. What grows is as much of the
/// photograph as fills the output; what shrinks is all of it. Times are so of the larger picture's pixels.
struct Scale {
    const char* name;
    double factor;
    ScaleFilter filter;
    vfILInterpolationType type;

    int InWidth() const { return factor > 1 ? Over(kWidth) : static_cast<int>(kWidth); }
    int InHeight() const { return factor > 1 ? Over(kHeight) : static_cast<int>(kHeight); }
    int OutWidth() const { return factor > 1 ? static_cast<int>(kWidth) : Times(kWidth); }
    int OutHeight() const { return factor > 1 ? static_cast<int>(kHeight) : Times(kHeight); }

private:
    int Over(std::size_t size) const
    {
        return static_cast<int>(std::lround(static_cast<double>(size) / factor));
    }
    int Times(std::size_t size) const
    {
        return static_cast<int>(std::lround(static_cast<double>(size) * factor));
    }
};

inline constexpr std::array kScales = {
    Scale{"grow by 1.7, nearest", 1.7, ScaleFilter::Nearest, VFIL_INTERP_NEAREST},
    Scale{"grow by 1.7, bilinear", 1.7, ScaleFilter::Bilinear, VFIL_INTERP_BILINEAR},
    Scale{"grow by 1.7, bilinear, two passes", 1.7, ScaleFilter::Bilinear, VFIL_INTERP_PANZOOM},
    Scale{"grow by 1.7, bicubic", 1.7, ScaleFilter::Bicubic, VFIL_INTERP_BICUBIC},
    Scale{"shrink by 0.6, two passes", 0.6, ScaleFilter::Area, VFIL_INTERP_PANZOOM},
    Scale{"shrink by 0.37, two passes", 0.37, ScaleFilter::Area, VFIL_INTERP_PANZOOM},
    Scale{"shrink by 0.37, footprints", 0.37, ScaleFilter::Area, VFIL_INTERP_SUM_BILINEAR}};

} // namespace bench

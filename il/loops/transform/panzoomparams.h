/// \file
/// What the two-pass resampler is given. Included by the resampler, and by who runs it.
#pragma once

#include "il/loops/frame/imageview.h"
#include "il/loops/transform/axistaps.h"

#include <vfil/color.h>
#include <vfil/processor.h>

namespace vfil {

/// The widths of the bands at both ends of a line.
struct BandWidths {
    unsigned long low = 0;
    unsigned long high = 0;

    bool IsNone() const { return low == 0 && high == 0; }
};

/// A picture, and its pixels or a copy of them.
struct PanZoomPicture {
    ImageView view{nullptr};
    unsigned char* pixels = nullptr;

    const unsigned char* Row(std::int64_t y) const { return pixels + y * view.RowBytes(); }
};

/// What a run is given. Arrays of two are of x and of y.
struct PanZoomRun {
    AxisMap x, y; ///< from output to input
    PanZoomPicture a, b;
    vfILBbox2l boxB;      ///< the part of B that shows
    vfILVector2l offsetB; ///< from the plane to B
    vfILColor defaultColour{0.0, 0.0, 0.0, 0.0};
    ImageView output{nullptr};
    vfILBbox2l effectBox;      ///< in the plane
    vfILVector2l outputOffset; ///< from the plane to the output
    unsigned long mode = 0;
    bool useVectors = false;
    bool aPremultiplied = false;
    bool bPremultiplied = false;
    bool multiplies = false; ///< A's colour by its alpha
    BandWidths crop[2], border[2], softness[2], falloff[2];
    vfILColor borderColour{0.0, 0.0, 0.0, 0.0};
    double opacity = 1;
    /// vfILTransformBase::ComputeFalloff.
    double (*bandStrength)(long p, unsigned long a, unsigned long b, long inLow, unsigned long softLow,
                           long inHigh, unsigned long softHigh) = nullptr;
    const vfILProcessor* processor = nullptr; ///< asked for the interruption; may be null

    bool HasBorder() const { return !border[0].IsNone() || !border[1].IsNone(); }
    /// Opacity or falloff.
    bool Fades() const { return opacity != 1 || !falloff[0].IsNone() || !falloff[1].IsNone(); }
    /// Something else than A is seen through A's transparency, or is made so.
    bool ShowsThrough() const
    {
        return b.view.HasPixels() || defaultColour.GetAlpha() > 0 || HasBorder() || Fades();
    }
};

} // namespace vfil

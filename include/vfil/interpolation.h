/// \file
/// How missing pixels are made of those that are there.
#pragma once

/// How a transform samples its input, or how a deinterlacer fills the rows that a field lacks. The same type
/// serves both; the names tell which values mean what to whom.
enum vfILInterpolationType : int {
    VFIL_INTERP_NEAREST = 1,              ///< the pixel whose centre is nearest
    VFIL_INTERP_BILINEAR = 2,             ///< of 2 x 2 pixels
    VFIL_INTERP_BICUBIC = 3,              ///< Catmull-Rom, of 4 x 4 pixels
    VFIL_INTERP_BILINEAR_PREFILTERED = 4, ///< bilinear on two levels of a pyramid, mixed
    VFIL_INTERP_SUM_BILINEAR = 5,         ///< area of the pixel's footprint; bilinear where it is small
    VFIL_INTERP_SUM_BICUBIC = 6,          ///< the same with bicubic
    VFIL_INTERP_SUM_NEAREST = 7,          ///< the same with nearest
    VFIL_INTERP_PANZOOM = 8,              ///< the two-pass resampler; vfILPanZoomTransform only

    VFIL_DEINTERLACE_DUPLICATE = 1,   ///< a missing row is a neighbouring row of the field
    VFIL_DEINTERLACE_INTERPOLATE = 2, ///< the mean of the two neighbouring rows of the field
    VFIL_DEINTERLACE_ADAPTIVE = 4,    ///< woven where the picture is still, the mean where it moves
};

/// \file
/// A few pixels of a plate that stand for all.
#pragma once

#include "keyauto/plate.h"
#include "keyauto/reference.h"

#include <vector>

namespace vfil::keyauto {

/// Pixels of the plate with what their alpha ought to be.
struct Samples {
    host::PicturePtr picture;  ///< RGBA32, one row
    std::vector<float> alpha;  ///< 0 .. 1
    std::vector<float> weight; ///< shares of the plate, each less when its alpha is a guess; they add up to 1
};

/// Takes more of the cells between clear and solid than of the others, by chance that is the same each time.
Samples TakeSamples(const Plate& plate, const Regions& regions, const Reference& reference);

/// How far a matte is from what it ought to be, in squares of 8-bit steps: the mean squared error, and as
/// much again for edges that are off and for screen and subject that are not quite clear and solid.
///
/// \param keyed The picture of the samples with the matte as its alpha.
double Distance(const Samples& samples, const host::Picture& keyed);

} // namespace vfil::keyauto

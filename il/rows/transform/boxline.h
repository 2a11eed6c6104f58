/// \file
/// Footprints that are boxes side by side in a line, as of a picture that is shrunk and not turned: their
/// rows are summed once for all of them. Included by the transforms' line functions.
#pragma once

#include "il/rows/transform/footprint.h"

namespace vfil {

/// Sums a line of boxes, if that gives the bits of FootprintPixels.
///
/// The sums of columns, weighted and summed again, differ from the sums of pixels by roundings alone; where
/// the sides have so few binary places that no product or sum is rounded, they are the same. Most sides have:
/// they are numbers of a float. False, and nothing written, where they do not, where a box reaches over what
/// counts of the input, and where one is smaller than a pixel or far larger.
///
/// \param left, right  The sides of each box, in either order.
/// \param low, high    The sides that all of them share.
template <class Source>
bool SumBoxes(const double* left, const double* right, std::size_t count, double low, double high,
              const Source& source, bool useVectors, typename Source::Sample* out);

} // namespace vfil

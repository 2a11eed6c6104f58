/// \file
/// Mean colours of chosen cells around a place.
#pragma once

#include "keyauto/grid.h"

#include <array>
#include <vector>

namespace vfil::keyauto {

/// Answers what the chosen cells of a plate look like near a place, at a cost that does not grow with the
/// reach.
class LocalMean {
public:
    LocalMean(const Grid<Light>& plate, const Mask& chosen);
    /// The mean over the square of this half side around a cell. Where it holds no chosen cell it is widened
    /// until it does; without any at all the answer is black.
    Light Mean(long x, long y, long reach) const;
    /// The share of chosen cells in that square.
    float Share(long x, long y, long reach) const;

private:
    using Sums = std::array<double, 4>; // red, green, blue, cells: of everything left of and above

    Sums Total(long x, long y, long reach) const;

    long m_width;
    long m_height;
    std::vector<Sums> m_sums;
};

/// Each cell as the mean of the square around it.
Grid<Light> Smooth(const Grid<Light>& plate, long reach);

} // namespace vfil::keyauto

/// \file
/// Searches for the lowest place of a function.
#pragma once

#include <functional>
#include <vector>

namespace vfil::keyauto {

using Point = std::vector<double>;

/// The lowest point that a simplex finds which crawls downhill for some rounds (Nelder and Mead's). The same
/// arguments give the same point.
///
/// \param start Where one corner of the first simplex is.
/// \param steps How far along each axis another corner is.
Point FindLowest(const std::function<double(const Point&)>& height, const Point& start, const Point& steps,
                 int rounds);

} // namespace vfil::keyauto

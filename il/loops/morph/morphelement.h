/// \file
/// The shape of a window as runs of its rows. Included by the filters that look for extremes in a window.
#pragma once

#include <vector>

namespace vfil {

/// Neighbouring entries of one row of a window.
struct ElementRun {
    long row, first, length;
};

/// In row order, and from left to right.
using ElementRuns = std::vector<ElementRun>;

/// The entries (x, y) with x^2 ry^2 + y^2 rx^2 <= rx^2 ry^2 of a window of the radii's whole parts. None for
/// NaN.
ElementRuns EllipseRuns(double rx, double ry);

/// All entries.
ElementRuns RectangleRuns(long width, long height);

/// The entries that are not 0.
ElementRuns NonZeroRuns(const long* entries, long width, long height);

bool IsWholeWindow(const ElementRuns& runs, long width, long height);

} // namespace vfil

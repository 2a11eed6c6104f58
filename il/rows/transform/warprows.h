/// \file
/// The kernels of a mesh warp, and the cell that they are about.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/transform/warpparams.h"

namespace vfil {

/// Cell \p index of a row.
WarpCell CellOf(const WarpCells& cells, std::size_t index);

/// The roots of a t^2 + b t + c. With a = 0 there is one, unless b is 0 too. Both are computed without
/// cancellation: a turn leaves rounding of 1e-16 for a, of which the usual formula makes a root without a
/// right digit.
///
/// \return How many there are.
int SolveQuadratic(double a, double b, double c, double (&roots)[2]);

/// Finds where in a moved cell a point lies: s along the lower edge, t along the left one, both 0 .. 1.
///
/// \return False outside of the cell. A cell whose lower and upper edges have no extent in x has no inside.
bool InverseBilinearTransform(const WarpCell& cell, double x, double y, double& s, double& t);

/// The way from a to b.
double BilinearInterp(double t, double a, double b);
/// Between four corners, in the order of WarpCell.
double BilinearInterp(double s, double t, const double (&corners)[4]);

const WarpRows& WarpRowsAt(Level level);
/// The kernels for this machine, or the plain forms.
const WarpRows& FindWarpRows(bool useVectors);

} // namespace vfil

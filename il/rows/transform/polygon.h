/// \file
/// Convex polygons in homogeneous coordinates: cut by planes, and measured. Behind the public functions of
/// the same purpose, and the footprints.
#pragma once

namespace vfil {

/// Vertices of a polygon that is cut, before and after.
constexpr long kMostClipVertices = 22;

/// Cuts a polygon by planes a x + b y + c z + d >= 0, in turn; values within 0.001 of 0 count as inside.
/// Each plane may add a vertex, for which the arrays must have room.
///
/// \param capacity  Vertices that the arrays hold, kMostClipVertices at most; what does not fit empties the
///                  polygon.
/// \return Whether the polygon was changed.
bool ClipPolygon(long& count, double x[], double y[], double z[], const double (*planes)[4], long planeCount,
                 long capacity);

/// The area of a plane polygon in space; 0 for fewer than 3 vertices.
double PolygonArea(long count, const double x[], const double y[], const double z[]);

} // namespace vfil

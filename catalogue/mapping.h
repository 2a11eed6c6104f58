/// \file
/// The mappings of the geometric operators, from the numbers by which people describe them.
///
/// Coordinates are pixels, y up, with the centre of the bottom-left pixel at 0,0. A mapping leads from the
/// picture to the output.
#pragma once

#include <catalogue/placement.h>

#include <array>

namespace vfil::catalogue {

/// x' = a x + b y + c, y' = d x + e y + f.
struct AffineMap {
    double a = 1;
    double b = 0;
    double c = 0;
    double d = 0;
    double e = 1;
    double f = 0;
};

struct MapPoint {
    double x = 0;
    double y = 0;
};

/// What is done to a picture, in the order of the members.
struct AffineParts {
    MapPoint scale{1, 1};
    MapPoint shear = {}; ///< by how much x grows with y, and y with x
    double rotation = 0; ///< in degrees, counter-clockwise as one sees it
    MapPoint translation = {};
    std::optional<MapPoint> about = {}; ///< the point that stays but for the translation; absent: the middle
};

/// The mapping of a picture of that size. Turned by quarters about its middle, and not scaled, a picture
/// lands on whole pixels: it is moved by half a pixel where its sides are not both even or both odd.
AffineMap AffineOf(const AffineParts& parts, long width, long height);

/// The smallest factor by which a mapping multiplies a length: below 1 it shrinks, in some direction.
double LeastScale(const AffineMap& map);

Extent ExtentOf(const AffineMap& map, long width, long height);

/// x' = (m0 x + m1 y + m2) / w, y' = (m3 x + m4 y + m5) / w with w = m6 x + m7 y + m8.
using Homography = std::array<double, 9>;

/// Points for the corners of a picture, which are the centres of its pixels bottom left, bottom right, top
/// right and top left: x and y of each.
using Corners = std::array<double, 8>;

/// Whether the corners, in their order, go once around a convex area.
bool AreConvex(const Corners& corners);

/// The mapping to convex corners. None for a picture that is one pixel wide or high.
std::optional<Homography> HomographyOf(const Corners& corners, long width, long height);

/// A multiple of the mapping, which maps the same: with 1 as the last number, or, where that is next to 0,
/// as the largest. The summing of areas has limits that are not relative.
Homography Normalized(const Homography& map);

/// 0 when the mapping has no inverse.
double Determinant(const Homography& map);

/// None when a part of the picture is not before the camera, where w is above 0.
std::optional<Extent> ExtentOf(const Homography& map, long width, long height);

/// The extent of the picture when lines between its corners are divided evenly.
Extent ExtentOf(const Corners& corners, long width, long height);

/// How a picture is put on a canvas of another size: scaled alike in both axes, in the middle, its edges on
/// the edges of pixels.
///
/// \param fill Nothing of the canvas stays free; else nothing of the picture is lost.
AffineMap AffineOnto(const vfILVector2l& canvas, bool fill, long width, long height);

} // namespace vfil::catalogue

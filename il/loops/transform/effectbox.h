/// \file
/// The box arithmetic of the transforms: which part of the source counts, and which output pixels it can
/// reach. Pure functions of numbers.
#pragma once

#include <vfil/transform.h>

namespace vfil {

/// Pixels that are removed at the four edges.
struct Crop {
    unsigned long left, right, top, bottom;
};

/// What a crop leaves of a picture; null when nothing remains.
vfILBbox2l SourceBox(long width, long height, const Crop& crop);

/// How far beyond the source an interpolation still sees it, in pixels.
float ReachOf(vfILInterpolationType type);

/// The reach to the lower and to the upper side of the x axis.
struct Margins {
    float low, high;
};

/// A pair of pixels that share their chroma pulls its neighbour in.
Margins MarginsOf(const vfILBbox2l& source, float reach, bool sharesChroma);

/// The corners of the source with its margins, in order around it.
void SourceCorners(const vfILBbox2l& source, const Margins& margins, vfILVector2f corners[4]);

/// The part of the region of interest that a quadrilateral can reach: all of it, where the quadrilateral's
/// diagonals do not cross within it, as a projection has folded it then.
vfILBbox2l EffectBox(const vfILVector2f corners[4], const vfILBbox2l& roi);

/// Widens a box and its place in the output to whole pairs of pixels.
void AlignToPairs(vfILBbox2l& effect, vfILBbox2l& effectAtOutput, const vfILBbox2l& output);

} // namespace vfil

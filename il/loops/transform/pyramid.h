/// \file
/// A picture at halves of its size: which levels there are, how one becomes the next, and how a place of the
/// first is sampled between two of them.
#pragma once

#include "il/rows/transform/samplerows.h"

#include <vfil/transform.h>

namespace vfil {

/// The levels of a picture of a size: squares by powers of two, the largest of which covers it. None for a
/// picture of no size.
///
/// \return How many; the first has 2 to the power of (count - 1) pixels on a side.
long CountLevels(long width, long height);

/// The mean of each 2 x 2 pixels, rounded up from half. Each level is half as large as the one before.
void DownScale(const vfILPictureView& from, const vfILPictureView& to);

/// The size of a footprint, as the levels are chosen by: its longer diagonal by that of a pixel.
///
/// \param rising, falling  The squares of the diagonals' lengths.
double FootprintSize(double rising, double falling);

/// Two neighbouring levels, and the share of the smaller one.
struct LevelChoice {
    long level;
    double fraction; ///< 0 for one level alone
};

/// The levels for footprints of a size: up to a pixel the first, of two pixels the second, and so on.
///
/// \param size  As FootprintSize gives it. Of NaN it is the last level.
LevelChoice ChooseLevel(double size, long count);

/// Samples some pixels of the pyramid's first level, bilinearly on two levels that are mixed.
///
/// \param u, v  Places on the first level, at most kSampleBlock of them.
void SampleLevels(const vfILTransformLevels& levels, const vfILTransformRun& run, bool useVectors,
                  const LevelChoice& choice, const double* u, const double* v, long count,
                  unsigned char* out);

} // namespace vfil

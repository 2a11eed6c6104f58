/// \file
/// How near a matte is to the true one.
///
/// The mean squared error and the mean error on the edge are in 8-bit units, 0 .. 255; mattes of 16 bits
/// count with their fractions. The edge band is where the truth lies strictly between 5 and 95 per cent; a
/// screen pixel has a truth of nothing, and is left when the matte lies above 2 per cent; a solid pixel has a
/// truth of all, and is lost when the matte lies below 98 per cent.
#pragma once

#include "score/matte.h"

#include <optional>

namespace vfil::score {

/// What comparing mattes adds up to, of one frame or of many.
struct Score {
    std::uint64_t pixels = 0;
    double squares = 0;     ///< of differences, in 8-bit units
    double differences = 0; ///< without their signs, in 8-bit units
    std::uint64_t edgePixels = 0;
    double edgeDifferences = 0; ///< without their signs, in 8-bit units
    std::uint64_t screenPixels = 0;
    std::uint64_t screenLeft = 0; ///< screen pixels that are left
    std::uint64_t solidPixels = 0;
    std::uint64_t solidLost = 0; ///< solid pixels that are lost

    Score& operator+=(const Score& other);

    // Each is absent where there is no pixel of its kind.
    std::optional<double> MeanSquaredError() const;
    /// In pixels of full coverage: a pixel that is all wrong adds 1.
    double SumOfAbsoluteDifferences() const { return differences / 255; }
    std::optional<double> EdgeError() const;
    std::optional<double> ScreenLeftShare() const; ///< 0 .. 1
    std::optional<double> SolidLostShare() const;  ///< 0 .. 1
};

/// Compares a matte with the truth.
///
/// \throws std::invalid_argument when the sizes differ
Score Compare(const Matte& matte, const Matte& truth);

/// A Mono8 picture of matte minus truth: 128 where they are equal and only there, 255 where the matte is
/// solid over true screen, 1 where solid subject was keyed away, and steps of 1/127 between, rounded away
/// from 128.
///
/// \throws std::invalid_argument when the sizes differ
host::PicturePtr Differences(const Matte& matte, const Matte& truth);

} // namespace vfil::score

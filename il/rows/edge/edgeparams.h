/// \file
/// What the row kernels of the edge filters take. Types only, as in compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// What is measured in a window of 3 x 3 samples. Each compass pair gives the larger of two opposite
/// responses, of which one is never above 0.
enum class EdgeOp {
    East,
    NorthEast,
    North,
    NorthWest,
    West,
    SouthWest,
    South,
    SouthEast,
    EastWest,
    NorthEastSouthWest,
    NorthSouth,
    NorthWestSouthEast,
    SquareLaplace,
    DiamondLaplace,
    Roberts,
    Sobel
};
inline constexpr std::size_t kEdgeOps = 16;
/// From a compass response to the opposite one, and to their pair, which only the first four have.
inline constexpr std::size_t kToOpposite = 4;
inline constexpr std::size_t kToPair = 8;

/// A response in one of the eight directions.
constexpr bool IsCompass(EdgeOp op)
{
    return static_cast<std::size_t>(op) < kToPair;
}

/// The larger of two opposite responses.
constexpr bool IsCompassPair(EdgeOp op)
{
    return !IsCompass(op) && static_cast<std::size_t>(op) < kToPair + kToOpposite;
}

enum class AngleOp { Roberts, Sobel };
inline constexpr std::size_t kAngleOps = 2;

/// Three neighbouring rows, from the first column of the first window on. 2 * pixelSamples more samples of
/// each are read than results are written.
template <class Sample>
struct EdgeWindow {
    const Sample* south;
    const Sample* middle;
    const Sample* north;
    std::size_t pixelSamples; ///< from a sample to the same channel of the next pixel
};

template <class Sample>
struct EdgeParams {
    Sample threshold; ///< a response, limited to full, has to be above it, else the result is 0
    Sample bias;      ///< is added to those that are, up to full
    bool raise;       ///< a result that the output holds stays where it is larger
};

/// The output is not in the window's memory. Rows need no alignment.
template <class Sample>
using EdgeRow = void (*)(const EdgeWindow<Sample>& window, Sample* out, std::size_t samples,
                         const EdgeParams<Sample>& params);

/// The angle of the gradient: the full turn is full.
template <class Sample>
using AngleRow = void (*)(const EdgeWindow<Sample>& window, Sample* out, std::size_t samples);

/// The kernels of the edge filters, for one level.
struct EdgeRows {
    EdgeRow<std::uint8_t> edge8[kEdgeOps];
    EdgeRow<std::uint16_t> edge16[kEdgeOps];
    AngleRow<std::uint8_t> angle8[kAngleOps];
    AngleRow<std::uint16_t> angle16[kAngleOps];
};

// The arc tangent is the library's own, and the same sums in the same order at every level: those of the
// systems' libraries differ in the last bits, which would show where an angle lies between two results.

/// atan(z) / z in degrees, by powers of z * z, for |z| up to tan 22.5 degrees. The polynomial that meets the
/// function at the 11 Chebyshev nodes of 0 .. tan(22.5 degrees) squared; it is off by 2e-15 degrees at most.
constexpr double kArcTangent[] = {57.295779513082316, -19.098593171024635, 11.459155901960491,
                                  -8.185111299001411, 6.366194898618501,   -5.208629296976883,
                                  4.406018799902542,  -3.804573791931714,  3.2591840309266136,
                                  -2.491250410630595, 1.2109676803699105};
constexpr int kArcTangentTerms = 11;
/// Where that polynomial ends, and the difference to the tangent of 45 degrees begins.
constexpr double kTangent22 = 0.41421356237309503;

/// Results a degree: full / 360, of which 8 bits take the nearest float.
template <class Sample>
constexpr double kResultsPerDegree = sizeof(Sample) == 1 ? double{255.0F / 360.0F} : 65535.0 / 360.0;

} // namespace vfil

/// \file
/// The row loops of the edge filters.
#pragma once

#include "il/loops/frame/windowloop.h"
#include "il/rows/edge/edgerows.h"

#include <vfil/edges.h>

namespace vfil {

/// A run of a filter, as the filter knows it.
struct EdgeRun {
    const vfILProcessor& processor;
    vfILWindowRun& windows;
    GUID format;
    bool useVectors;
};

/// Responses of which the largest counts.
struct EdgeOps {
    EdgeOp op[4];
    std::size_t count = 1;
};

/// The compass responses of a set of directions.
///
/// \param directions  Bits of vfILDirection; others are ignored.
EdgeOps CompassOps(unsigned long directions);

/// The windows of a row of results, the first of which has its corner where the walk's row starts.
template <class Format>
EdgeWindow<typename Format::Sample> WindowsOfRow(const vfILRowWalk& corners, long row)
{
    using Sample = typename Format::Sample;
    const auto from = [&](long up) { return RowOf<const Sample>(corners, row + up); };
    return {from(0), from(1), from(2), std::size_t{Format::kChannels}};
}

/// \param sensitivity,bias  May be anything.
template <class Sample>
EdgeParams<Sample> ThresholdOf(double sensitivity, double bias)
{
    constexpr double kFull = Arith<Sample>::kFull;
    return {RoundToSample<Sample>((1.0 - sensitivity) * kFull), RoundToSample<Sample>(bias * kFull), false};
}

vfILStatus RunEdges(const EdgeRun& run, const EdgeOps& ops, double sensitivity, double bias);
vfILStatus RunAngle(const EdgeRun& run, AngleOp op);
/// Writes sharpened samples where the input has an edge, and the input elsewhere. The windows are at least 3
/// x 3.
///
/// \param sharpened  The effect box in rows of its own.
void SelectAtEdges(const EdgeRun& run, const vfILRowWalk& sharpened, double sensitivity);

} // namespace vfil

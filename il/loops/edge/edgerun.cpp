/// \file
/// The row loops of the edge filters.

#include "il/loops/edge/edgerun.h"

namespace vfil {

namespace {

/// Two opposite directions, and what measures the one, the other, or both.
struct CompassAxis {
    vfILDirection ahead, back;
    EdgeOp aheadOp, backOp, bothOp;
};

constexpr CompassAxis kAxes[] = {
    {VFIL_DIRECTION_EAST, VFIL_DIRECTION_WEST, EdgeOp::East, EdgeOp::West, EdgeOp::EastWest},
    {VFIL_DIRECTION_NORTH_EAST, VFIL_DIRECTION_SOUTH_WEST, EdgeOp::NorthEast, EdgeOp::SouthWest,
     EdgeOp::NorthEastSouthWest},
    {VFIL_DIRECTION_NORTH, VFIL_DIRECTION_SOUTH, EdgeOp::North, EdgeOp::South, EdgeOp::NorthSouth},
    {VFIL_DIRECTION_NORTH_WEST, VFIL_DIRECTION_SOUTH_EAST, EdgeOp::NorthWest, EdgeOp::SouthEast,
     EdgeOp::NorthWestSouthEast}};

} // namespace

EdgeOps CompassOps(unsigned long directions)
{
    EdgeOps ops{{}, 0};
    for (const CompassAxis& axis : kAxes) {
        const bool ahead = (directions & axis.ahead) != 0;
        const bool back = (directions & axis.back) != 0;
        if (ahead || back) ops.op[ops.count++] = !ahead ? axis.backOp : back ? axis.bothOp : axis.aheadOp;
    }
    return ops;
}

namespace {

/// \p makeRow(windows, results, samples) for each row, the windows being of the format's sample.
template <class MakeRow>
void RunRows(const EdgeRun& run, MakeRow makeRow)
{
    PointFormats::Visit(run.format, [&](auto format) {
        using Format = decltype(format);
        const auto samples =
            static_cast<std::size_t>(run.windows.processBox.GetSizeX()) * std::size_t{Format::kChannels};
        RunWindowRows<Format>(run.processor, run.windows, [&](long row, typename Format::Sample* results) {
            makeRow(WindowsOfRow<Format>(run.windows.windows, row), results, samples);
        });
    });
}

/// Puts the sharpened sample where the result so far is an edge, and the centre elsewhere. Both are read
/// before the choice, so that the loop becomes one of vectors.
template <class Sample>
void TakeAtEdges(const Sample* sharpened, const Sample* centres, Sample* results, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        const Sample sharp = sharpened[i];
        const Sample centre = centres[i];
        results[i] = results[i] != 0 ? sharp : centre;
    }
}

} // namespace

vfILStatus RunEdges(const EdgeRun& run, const EdgeOps& ops, double sensitivity, double bias)
{
    RunRows(run, [&]<class Sample>(const EdgeWindow<Sample>& windows, Sample* results, std::size_t samples) {
        EdgeParams<Sample> params = ThresholdOf<Sample>(sensitivity, bias);
        params.raise = ops.count != 1;
        if (params.raise) std::fill_n(results, samples, Sample{0});
        for (std::size_t i = 0; i < ops.count; ++i)
            FindEdgeRow<Sample>(run.useVectors, ops.op[i])(windows, results, samples, params);
    });
    return VFIL_SUCCESS;
}

vfILStatus RunAngle(const EdgeRun& run, AngleOp op)
{
    RunRows(run, [&]<class Sample>(const EdgeWindow<Sample>& windows, Sample* results, std::size_t samples) {
        FindAngleRow<Sample>(run.useVectors, op)(windows, results, samples);
    });
    return VFIL_SUCCESS;
}

void SelectAtEdges(const EdgeRun& run, const vfILRowWalk& sharpened, double sensitivity)
{
    PointFormats::Visit(run.format, [&](auto format) {
        using Format = decltype(format);
        using Sample = typename Format::Sample;
        vfILWindowRun& windows = run.windows;
        vfILRowWalk corners = windows.centres; // of the windows of 3 x 3
        corners.first -= corners.step + std::ptrdiff_t{sizeof(Sample)} * Format::kChannels;
        const auto findEdges = FindEdgeRow<Sample>(run.useVectors, EdgeOp::Sobel);
        const auto threshold = ThresholdOf<Sample>(sensitivity, 0.0);
        const auto samples = static_cast<std::size_t>(windows.processBox.GetSizeX() * Format::kChannels);
        RunWindowRows<Format>(run.processor, windows, [&](long row, Sample* results) {
            findEdges(WindowsOfRow<Format>(corners, row), results, samples, threshold);
            TakeAtEdges(RowOf<const Sample>(sharpened, row), RowOf<const Sample>(windows.centres, row),
                        results, samples);
        });
    });
}

} // namespace vfil

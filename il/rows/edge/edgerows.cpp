/// \file
/// The plain forms of the edge filters' kernels, and the table of their levels.
#include "il/rows/edge/edgerows.h"

#include "il/rows/pixarith.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <utility>

namespace vfil {

namespace {

/// A window's samples of one channel, by their steps from its middle: east and north are up.
template <class Sample>
struct Around {
    int operator()(int east, int north) const
    {
        const Sample* const rows[] = {window.south, window.middle, window.north};
        return rows[north + 1][at + static_cast<std::size_t>(east + 1) * window.pixelSamples];
    }

    const EdgeWindow<Sample>& window;
    std::size_t at;
};

/// The steps of the directions, in the order of EdgeOp.
constexpr int kSteps[][2] = {{1, 0}, {1, 1}, {0, 1}, {-1, 1}, {-1, 0}, {-1, -1}, {0, -1}, {1, -1}};

/// What lies in the direction less what lies opposite: each weight is the sign of its place's way there.
template <class Sample>
int Compass(const Around<Sample>& around, std::size_t direction)
{
    const auto [dx, dy] = kSteps[direction];
    int sum = 0;
    for (int j = -1; j <= 1; ++j)
        for (int i = -1; i <= 1; ++i) {
            const int way = i * dx + j * dy;
            sum += ((way > 0) - (way < 0)) * around(i, j);
        }
    return sum;
}

struct Gradient {
    int x, y;
};

/// Between the outer columns and between the outer rows. Roberts' y points south; Sobel's samples in the
/// middle of their row or column count half, rounded down.
template <AngleOp op, class Sample>
Gradient GradientOf(const Around<Sample>& around)
{
    constexpr auto kEast = static_cast<std::size_t>(EdgeOp::East);
    constexpr auto kNorth = static_cast<std::size_t>(EdgeOp::North);
    if constexpr (op == AngleOp::Roberts) {
        return {Compass(around, kEast), -Compass(around, kNorth)};
    } else {
        const auto column = [&](int i) { return around(i, -1) + (around(i, 0) >> 1) + around(i, 1); };
        const auto row = [&](int j) { return around(-1, j) + (around(0, j) >> 1) + around(1, j); };
        return {column(1) - column(-1), row(1) - row(-1)};
    }
}

template <class Sample>
int SquareLaplace(const Around<Sample>& around)
{
    int sum = 9 * around(0, 0);
    for (int j = -1; j <= 1; ++j)
        for (int i = -1; i <= 1; ++i)
            sum -= around(i, j);
    return sum;
}

template <class Sample>
int DiamondLaplace(const Around<Sample>& around)
{
    return 4 * around(0, 0) - around(-1, 0) - around(1, 0) - around(0, -1) - around(0, 1);
}

template <AngleOp op, class Sample>
int Magnitude(const Around<Sample>& around)
{
    const Gradient gradient = GradientOf<op>(around);
    return std::abs(gradient.x) + std::abs(gradient.y);
}

template <EdgeOp op, class Sample>
int Response(const Around<Sample>& around)
{
    constexpr auto kIndex = static_cast<std::size_t>(op);
    if constexpr (IsCompass(op)) return Compass(around, kIndex);
    if constexpr (op == EdgeOp::SquareLaplace) return SquareLaplace(around);
    if constexpr (op == EdgeOp::DiamondLaplace) return DiamondLaplace(around);
    if constexpr (op == EdgeOp::Roberts) return Magnitude<AngleOp::Roberts>(around);
    if constexpr (op == EdgeOp::Sobel) return Magnitude<AngleOp::Sobel>(around);
    return std::abs(Compass(around, kIndex % kToPair));
}

template <EdgeOp op, class Sample>
void PlainEdgeRow(const EdgeWindow<Sample>& window, Sample* out, std::size_t samples,
                  const EdgeParams<Sample>& params)
{
    constexpr int kFull = std::numeric_limits<Sample>::max();
    for (std::size_t at = 0; at < samples; ++at) {
        const int response = std::min(Response<op>(Around<Sample>{window, at}), kFull);
        const int result = response > params.threshold ? std::min(response + params.bias, kFull) : 0;
        if (!params.raise || result > out[at]) out[at] = static_cast<Sample>(result);
    }
}

/// The angle of a gradient, from 0 on to below 360; 0 of none.
double Degrees(double x, double y)
{
    const double low = std::min(std::abs(x), std::abs(y));
    const double high = std::max(std::abs(x), std::abs(y));
    const bool beyond = low > kTangent22 * high;
    const double z = beyond ? (low - high) / (low + high) : low / std::max(high, 1.0);
    double sum = kArcTangent[kArcTangentTerms - 1];
    for (int i = kArcTangentTerms - 2; i >= 0; --i)
        sum = sum * (z * z) + kArcTangent[i];
    double degrees = (beyond ? 45.0 : 0.0) + z * sum;
    if (std::abs(x) < std::abs(y)) degrees = 90.0 - degrees;
    if (x < 0) degrees = 180.0 - degrees;
    return y < 0 ? 360.0 - degrees : degrees;
}

template <AngleOp op, class Sample>
void PlainAngleRow(const EdgeWindow<Sample>& window, Sample* out, std::size_t samples)
{
    for (std::size_t at = 0; at < samples; ++at) {
        const Gradient gradient = GradientOf<op>(Around<Sample>{window, at});
        out[at] = RoundToSample<Sample>(Degrees(gradient.x, gradient.y) * kResultsPerDegree<Sample>);
    }
}

template <std::size_t... op>
EdgeRows PlainRows(std::index_sequence<op...>)
{
    return {
        .edge8 = {PlainEdgeRow<static_cast<EdgeOp>(op), std::uint8_t>...},
        .edge16 = {PlainEdgeRow<static_cast<EdgeOp>(op), std::uint16_t>...},
        .angle8 = {PlainAngleRow<AngleOp::Roberts, std::uint8_t>,
                   PlainAngleRow<AngleOp::Sobel, std::uint8_t>},
        .angle16 = {PlainAngleRow<AngleOp::Roberts, std::uint16_t>,
                    PlainAngleRow<AngleOp::Sobel, std::uint16_t>},
    };
}

const EdgeRows& Rows(bool useVectors)
{
    return EdgeRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace

const EdgeRows& EdgeRowsAt(Level level)
{
    static const LevelTables<EdgeRows> tables(PlainRows(std::make_index_sequence<kEdgeOps>()), VFIL_FILLS);
    return tables.At(level);
}

template <>
EdgeRow<std::uint8_t> FindEdgeRow(bool useVectors, EdgeOp op)
{
    return Rows(useVectors).edge8[static_cast<std::size_t>(op)];
}

template <>
EdgeRow<std::uint16_t> FindEdgeRow(bool useVectors, EdgeOp op)
{
    return Rows(useVectors).edge16[static_cast<std::size_t>(op)];
}

template <>
AngleRow<std::uint8_t> FindAngleRow(bool useVectors, AngleOp op)
{
    return Rows(useVectors).angle8[static_cast<std::size_t>(op)];
}

template <>
AngleRow<std::uint16_t> FindAngleRow(bool useVectors, AngleOp op)
{
    return Rows(useVectors).angle16[static_cast<std::size_t>(op)];
}

} // namespace vfil

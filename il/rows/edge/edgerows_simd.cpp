/// \file
/// The vector forms of the edge filters' kernels, for the level VFIL_LEVEL. The responses are straight-line
/// sums, written once for the lanes of both depths: 8 times 255 fits 16 bits, 8 times 65535 fits 32.
#include "il/rows/edge/edgeparams.h"
#include "il/rows/layer/compparams.h"
#include "il/rows/vec32.h"
#include "il/rows/vec64.h"
#include "il/rows/vecmove.h"

namespace vfil {
namespace {

/// Windows side by side, one a lane.
template <class Lanes>
struct Nine {
    Lanes southWest, south, southEast, west, centre, east, northWest, north, northEast;
};

/// Makes the nine of what load(p) gives for each place.
template <class Lanes, class Sample, class LoadLanes>
Nine<Lanes> LoadNine(const EdgeWindow<Sample>& window, std::size_t at, LoadLanes load)
{
    const std::size_t middle = at + window.pixelSamples;
    const std::size_t end = middle + window.pixelSamples;
    return {load(window.south + at),  load(window.south + middle),  load(window.south + end),
            load(window.middle + at), load(window.middle + middle), load(window.middle + end),
            load(window.north + at),  load(window.north + middle),  load(window.north + end)};
}

inline U16 Half(U16 v)
{
    return ShiftRight<1>(v);
}

inline S32 Half(S32 v)
{
    return ShiftDown<1>(v);
}

inline U16 TimesFour(U16 v)
{
    const U16 two = v + v;
    return two + two;
}

inline S32 TimesFour(S32 v)
{
    return ShiftUp<2>(v);
}

template <class Lanes>
struct Gradient {
    Lanes x, y;
};

template <AngleOp op, class Lanes>
Gradient<Lanes> GradientOf(const Nine<Lanes>& n)
{
    const Lanes rising = n.northEast - n.southWest; // both gradients have the diagonals
    const Lanes falling = n.southEast - n.northWest;
    if constexpr (op == AngleOp::Roberts) {
        return {(rising + falling) + (n.east - n.west), (falling - rising) + (n.south - n.north)};
    } else {
        return {(rising + falling) + (Half(n.east) - Half(n.west)),
                (rising - falling) + (Half(n.north) - Half(n.south))};
    }
}

template <AngleOp op, class Lanes>
Lanes Magnitude(const Nine<Lanes>& n)
{
    const Gradient<Lanes> gradient = GradientOf<op>(n);
    return Abs(gradient.x) + Abs(gradient.y);
}

template <EdgeOp op, class Lanes>
Lanes Response(const Nine<Lanes>& n)
{
    constexpr auto kIndex = static_cast<std::size_t>(op);
    if constexpr (op == EdgeOp::East)
        return (n.southEast + n.east + n.northEast) - (n.southWest + n.west + n.northWest);
    else if constexpr (op == EdgeOp::NorthEast)
        return (n.north + n.northEast + n.east) - (n.south + n.southWest + n.west);
    else if constexpr (op == EdgeOp::North)
        return (n.northWest + n.north + n.northEast) - (n.southWest + n.south + n.southEast);
    else if constexpr (op == EdgeOp::NorthWest)
        return (n.north + n.northWest + n.west) - (n.south + n.southEast + n.east);
    else if constexpr (IsCompass(op))
        return (n.centre - n.centre) - Response<static_cast<EdgeOp>(kIndex - kToOpposite)>(n);
    else if constexpr (IsCompassPair(op))
        return Abs(Response<static_cast<EdgeOp>(kIndex - kToPair)>(n));
    else if constexpr (op == EdgeOp::SquareLaplace)
        return (TimesFour(n.centre + n.centre) - (n.southWest + n.south + n.southEast)) -
               ((n.west + n.east) + (n.northWest + n.north + n.northEast));
    else if constexpr (op == EdgeOp::DiamondLaplace)
        return TimesFour(n.centre) - ((n.west + n.east) + (n.south + n.north));
    else if constexpr (op == EdgeOp::Roberts)
        return Magnitude<AngleOp::Roberts>(n);
    else
        return Magnitude<AngleOp::Sobel>(n);
}

inline U8 LoadSamples(const std::uint8_t* p)
{
    return Load(p);
}

inline U16 LoadSamples(const std::uint16_t* p)
{
    return {Load(reinterpret_cast<const std::uint8_t*>(p)).bits};
}

inline void StoreSamples(std::uint8_t* p, U8 v)
{
    Store(p, v);
}

inline void StoreSamples(std::uint16_t* p, U16 v)
{
    Store(reinterpret_cast<std::uint8_t*>(p), {v.bits});
}

/// The responses of a vector of samples, limited to 0 .. full.
template <EdgeOp op>
U8 LimitedResponse(const EdgeWindow<std::uint8_t>& window, std::size_t at)
{
    const auto low = [](const std::uint8_t* p) { return Widen(Load(p)).lo; };
    const auto high = [](const std::uint8_t* p) { return Widen(Load(p)).hi; };
    return Narrow(
        {Response<op>(LoadNine<U16>(window, at, low)), Response<op>(LoadNine<U16>(window, at, high))});
}

template <EdgeOp op>
U16 LimitedResponse(const EdgeWindow<std::uint16_t>& window, std::size_t at)
{
    const auto low = [](const std::uint16_t* p) { return WidenFull(LoadSamples(p)).lo; };
    const auto high = [](const std::uint16_t* p) { return WidenFull(LoadSamples(p)).hi; };
    return NarrowFull(
        {Response<op>(LoadNine<S32>(window, at, low)), Response<op>(LoadNine<S32>(window, at, high))});
}

inline U8 SplatSample(std::uint8_t v)
{
    return SplatU32(v * 0x01010101U);
}

inline U16 SplatSample(std::uint16_t v)
{
    return Splat(v);
}

inline U8 AddLimited(U8 a, U8 b)
{
    return AddClip(a, b);
}

inline U16 AddLimited(U16 a, U16 b)
{
    return AddClip(a, b);
}

inline U8 Larger(U8 a, U8 b)
{
    return Max(a, b);
}

inline U16 Larger(U16 a, U16 b)
{
    return Max(a, b);
}

/// Calls makeVector(window, at, out) for each vector of the row. The ragged end goes through the same in
/// buffers.
template <class Sample, class MakeVector>
void MapWindows(const EdgeWindow<Sample>& window, Sample* out, std::size_t samples, MakeVector makeVector)
{
    constexpr std::size_t lanes = kBytes / sizeof(Sample);
    constexpr std::size_t mostPixelSamples = 4;
    std::size_t at = 0;
    for (; samples - at >= lanes; at += lanes)
        makeVector(window, at, out + at);
    const std::size_t rest = samples - at;
    if (rest == 0) return;
    Sample rows[3][lanes + 2 * mostPixelSamples] = {};
    Sample results[lanes];
    const std::size_t bytes = (rest + 2 * window.pixelSamples) * sizeof(Sample);
    std::memcpy(rows[0], window.south + at, bytes);
    std::memcpy(rows[1], window.middle + at, bytes);
    std::memcpy(rows[2], window.north + at, bytes);
    std::memcpy(results, out + at, rest * sizeof(Sample));
    makeVector(EdgeWindow<Sample>{rows[0], rows[1], rows[2], window.pixelSamples}, 0, results);
    std::memcpy(out + at, results, rest * sizeof(Sample));
}

template <EdgeOp op, class Sample>
void VectorEdgeRow(const EdgeWindow<Sample>& window, Sample* out, std::size_t samples,
                   const EdgeParams<Sample>& params)
{
    const auto threshold = SplatSample(params.threshold);
    const auto bias = SplatSample(params.bias);
    const bool raise = params.raise;
    MapWindows(window, out, samples, [=](const EdgeWindow<Sample>& part, std::size_t at, Sample* to) {
        const auto response = LimitedResponse<op>(part, at);
        const auto result = KeepAbove(AddLimited(response, bias), response, threshold);
        StoreSamples(to, raise ? Larger(result, LoadSamples(to)) : result);
    });
}

inline F64 AbsDouble(F64 v)
{
    return Max(v, SplatDouble(0.0) - v);
}

/// As the plain form has it.
F64 Degrees(F64 x, F64 y)
{
    const F64 zero = SplatDouble(0.0);
    const F64 lengthX = AbsDouble(x);
    const F64 lengthY = AbsDouble(y);
    const F64 low = Min(lengthX, lengthY);
    const F64 high = Max(lengthX, lengthY);
    const Mask64 beyond = SplatDouble(kTangent22) * high < low;
    const F64 z = Select(beyond, low - high, low) / Select(beyond, low + high, Max(high, SplatDouble(1.0)));
    const F64 square = z * z;
    F64 sum = SplatDouble(kArcTangent[kArcTangentTerms - 1]);
    for (int i = kArcTangentTerms - 2; i >= 0; --i)
        sum = sum * square + SplatDouble(kArcTangent[i]);
    F64 degrees = Select(beyond, SplatDouble(45.0), zero) + z * sum;
    degrees = Select(lengthX < lengthY, SplatDouble(90.0) - degrees, degrees);
    degrees = Select(x < zero, SplatDouble(180.0) - degrees, degrees);
    return Select(y < zero, SplatDouble(360.0) - degrees, degrees);
}

/// The angles of a vector of 32-bit lanes.
template <AngleOp op, class Sample>
S32 AngleLanes(const EdgeWindow<Sample>& window, std::size_t at)
{
    const auto n = LoadNine<S32>(window, at, [](const Sample* p) -> S32 {
        const auto* bytes = reinterpret_cast<const std::uint8_t*>(p);
        if constexpr (sizeof(Sample) == 1)
            return {LoadEachAs32(bytes).bits};
        else
            return {LoadPairsAs32(bytes).bits};
    });
    const Gradient<S32> g = GradientOf<op>(n);
    const F64 low = Degrees(HalfToDouble<0>(g.x.bits), HalfToDouble<0>(g.y.bits));
    const F64 high = Degrees(HalfToDouble<1>(g.x.bits), HalfToDouble<1>(g.y.bits));
    const F64 scale = SplatDouble(kResultsPerDegree<Sample>);
    const F64 half = SplatDouble(0.5);
    return {HalvesToInt32(low * scale + half, high * scale + half)};
}

template <AngleOp op>
void VectorAngleRow8(const EdgeWindow<std::uint8_t>& window, std::uint8_t* out, std::size_t samples)
{
    MapWindows(window, out, samples,
               [](const EdgeWindow<std::uint8_t>& part, std::size_t at, std::uint8_t* to) {
                   S32 angles[4];
                   for (std::size_t i = 0; i < 4; ++i)
                       angles[i] = AngleLanes<op>(part, at + i * kLanes32);
                   Store(to, NarrowLanes(angles[0], angles[1], angles[2], angles[3]));
               });
}

template <AngleOp op>
void VectorAngleRow16(const EdgeWindow<std::uint16_t>& window, std::uint16_t* out, std::size_t samples)
{
    MapWindows(window, out, samples,
               [](const EdgeWindow<std::uint16_t>& part, std::size_t at, std::uint16_t* to) {
                   const S32 first = AngleLanes<op>(part, at);
                   const S32 second = AngleLanes<op>(part, at + kLanes32);
                   const U8 mixed{NarrowFull({first, second}).bits};
                   Store(reinterpret_cast<std::uint8_t*>(to), OrderNarrowed(mixed));
               });
}

template <std::size_t op>
void FillFrom(EdgeRows& rows)
{
    rows.edge8[op] = VectorEdgeRow<static_cast<EdgeOp>(op), std::uint8_t>;
    rows.edge16[op] = VectorEdgeRow<static_cast<EdgeOp>(op), std::uint16_t>;
    if constexpr (op + 1 < kEdgeOps) FillFrom<op + 1>(rows);
}

} // namespace

namespace VFIL_LEVEL {

void Fill(EdgeRows& rows)
{
    FillFrom<0>(rows);
    rows.angle8[0] = VectorAngleRow8<AngleOp::Roberts>;
    rows.angle8[1] = VectorAngleRow8<AngleOp::Sobel>;
    rows.angle16[0] = VectorAngleRow16<AngleOp::Roberts>;
    rows.angle16[1] = VectorAngleRow16<AngleOp::Sobel>;
}

} // namespace VFIL_LEVEL
} // namespace vfil

/// \file
/// The box arithmetic of the transforms.

#include "il/loops/transform/effectbox.h"

#include "il/loops/frame/saturate.h"

#include <algorithm>
#include <cmath>

namespace vfil {

namespace {

/// The first and the last pixel along one axis.
struct Range {
    std::int64_t low, high;
};

/// What the axis has of the corners, generously: a whole number counts one pixel more on either side.
Range PixelRange(const vfILVector2f corners[4], int axis)
{
    double low = corners[0][axis];
    double high = low;
    for (int i = 1; i < 4; ++i) {
        low = std::min<double>(low, corners[i][axis]);
        high = std::max<double>(high, corners[i][axis]);
    }
    return {TruncateToInt32(low < 0 ? low - 1.0 : low), TruncateToInt32(high < 0 ? high : high + 1.0)};
}

Range Common(const Range& range, long offset, long size)
{
    return {std::max<std::int64_t>(range.low, offset),
            std::min<std::int64_t>(range.high, std::int64_t{offset} + size - 1)};
}

/// Whether the lines through corners 0 and 2 and through 1 and 3 cross strictly within both segments.
bool DiagonalsCross(const vfILVector2f corners[4])
{
    constexpr double kParallel = 1e-10;
    const auto way = [corners](int to, int from, int axis) {
        return double{corners[to][axis]} - double{corners[from][axis]};
    };
    const double denominator = way(2, 0, 0) * way(3, 1, 1) - way(2, 0, 1) * way(3, 1, 0);
    if (!(std::abs(denominator) > kParallel)) return false;
    const double s = (way(1, 0, 0) * way(3, 1, 1) - way(1, 0, 1) * way(3, 1, 0)) / denominator;
    const double t = (way(1, 0, 0) * way(2, 0, 1) - way(1, 0, 1) * way(2, 0, 0)) / denominator;
    return s > 0 && s < 1 && t > 0 && t < 1;
}

} // namespace

vfILBbox2l SourceBox(long width, long height, const Crop& crop)
{
    const auto rest = [](long size, unsigned long low, unsigned long high) {
        const auto room = static_cast<unsigned long>(std::max(size, 0L));
        return low >= room || high >= room - low ? 0L
                                                 : size - static_cast<long>(low) - static_cast<long>(high);
    };
    const long w = rest(width, crop.left, crop.right);
    const long h = rest(height, crop.top, crop.bottom);
    if (w == 0 || h == 0) return {};
    return {static_cast<long>(crop.left), static_cast<long>(crop.top), w, h};
}

float ReachOf(vfILInterpolationType type)
{
    switch (type) {
    case VFIL_INTERP_NEAREST:
    case VFIL_INTERP_SUM_NEAREST:
        return 0.5F;
    case VFIL_INTERP_BICUBIC:
    case VFIL_INTERP_SUM_BICUBIC:
        return 3.0F;
    default:
        return 1.0F;
    }
}

Margins MarginsOf(const vfILBbox2l& source, float reach, bool sharesChroma)
{
    Margins margins{reach, reach};
    if (!sharesChroma) return margins;
    if ((source.GetOffsetX() & 1) == 0) margins.low *= 2;
    if (((source.GetOffsetX() + source.GetSizeX()) & 1) != 0) margins.high *= 2;
    return margins;
}

void SourceCorners(const vfILBbox2l& source, const Margins& margins, vfILVector2f corners[4])
{
    const auto x = static_cast<float>(source.GetOffsetX());
    const auto y = static_cast<float>(source.GetOffsetY());
    const float left = x - margins.low;
    const float right = x + static_cast<float>(source.GetSizeX()) - 1 + margins.high;
    const float bottom = y - margins.low;
    const float top = y + static_cast<float>(source.GetSizeY()) - 1 + margins.high;
    corners[0] = vfILVector2f(left, bottom);
    corners[1] = vfILVector2f(right, bottom);
    corners[2] = vfILVector2f(right, top);
    corners[3] = vfILVector2f(left, top);
}

vfILBbox2l EffectBox(const vfILVector2f corners[4], const vfILBbox2l& roi)
{
    if (roi.IsNull() != 0) return {};
    if (!DiagonalsCross(corners)) return roi;
    const Range x = Common(PixelRange(corners, 0), roi.GetOffsetX(), roi.GetSizeX());
    const Range y = Common(PixelRange(corners, 1), roi.GetOffsetY(), roi.GetSizeY());
    if (x.low > x.high || y.low > y.high) return {};
    return {static_cast<long>(x.low), static_cast<long>(y.low), static_cast<long>(x.high - x.low + 1),
            static_cast<long>(y.high - y.low + 1)};
}

void AlignToPairs(vfILBbox2l& effect, vfILBbox2l& effectAtOutput, const vfILBbox2l& output)
{
    long width = effect.GetSizeX();
    if ((effectAtOutput.GetOffsetX() & 1) != 0) {
        effect.SetOffset(effect.GetOffsetX() - 1, effect.GetOffsetY());
        effectAtOutput.SetOffset(effectAtOutput.GetOffsetX() - 1, effectAtOutput.GetOffsetY());
        ++width;
    }
    if ((width & 1) != 0) {
        const std::int64_t end = std::int64_t{effectAtOutput.GetOffsetX()} + width;
        width += end < std::int64_t{output.GetOffsetX()} + output.GetSizeX() ? 1 : -1;
    }
    effect.SetSize(width, effect.GetSizeY());
    effectAtOutput.SetSize(width, effectAtOutput.GetSizeY());
}

} // namespace vfil

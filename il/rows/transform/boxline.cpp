/// \file
/// Lines of boxes: whether their sums are exact, and blocks whose columns fit the stack.
#include "il/rows/transform/boxline.h"

#include "il/rows/transform/footprintrows.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace vfil {
namespace {

/// Binary places of a double, all of which a sum may have.
constexpr int kPlaces = 53;

/// Binary places behind the point, at least one: the sides of pixels have that.
int PlacesOf(double v)
{
    const auto bits = std::bit_cast<std::uint64_t>(v);
    const int exponent = static_cast<int>(bits >> 52 & 0x7FF);
    const std::uint64_t digits = (bits & 0xF'FFFF'FFFF'FFFF) | 0x10'0000'0000'0000;
    return v == 0 ? 1 : std::max(1075 - exponent - std::countr_zero(digits), 1);
}

/// What the boxes have in common.
struct Extents {
    double first, last; ///< of all
    double widest, narrowest;
};

Extents ExtentsOf(const double* left, const double* right, std::size_t count)
{
    Extents all{std::min(left[0], right[0]), std::max(left[0], right[0]), 0, HUGE_VAL};
    for (std::size_t i = 0; i < count; ++i) {
        all.first = std::min({all.first, left[i], right[i]});
        all.last = std::max({all.last, left[i], right[i]});
        all.widest = std::max(all.widest, std::fabs(right[i] - left[i]));
        all.narrowest = std::min(all.narrowest, std::fabs(right[i] - left[i]));
    }
    return all;
}

/// Whether all sums of samples of so many bits by the boxes' areas are exact.
bool AreExact(const double* left, const double* right, std::size_t count, double low, double high,
              double largest, int sampleBits)
{
    const int rowPlaces = std::max(PlacesOf(low), PlacesOf(high));
    const int places = kPlaces - sampleBits - (std::ilogb(largest) + 1) - rowPlaces;
    if (places < 1) return false;
    // Adding it leaves a number as it is if it has no more places, and rounds any other.
    const double rounding = std::ldexp(1.5, kPlaces - 1 - places);
    unsigned changed = 0;
    for (std::size_t i = 0; i < count; ++i) {
        changed |= left[i] + rounding - rounding != left[i] ? 1U : 0U;
        changed |= right[i] + rounding - rounding != right[i] ? 1U : 0U;
    }
    return changed == 0;
}

/// The pixel that a side of -0.5 or more is in.
std::int32_t PixelAt(double side)
{
    const double fromEdge = side + 0.5;
    return static_cast<std::int32_t>(fromEdge);
}

/// The columns of boxes from one side to another: some more where that makes a whole vector.
struct Columns {
    std::int32_t first, last;

    template <class Source>
    Columns(double from, double to, const Source& source)
        : first(std::min(PixelAt(from), source.right - kFewestBoxColumns + 1)),
          last(std::min(std::max(PixelAt(to), first + kFewestBoxColumns - 1), source.right))
    {}
};

} // namespace

template <class Source>
bool SumBoxes(const double* left, const double* right, std::size_t count, double low, double high,
              const Source& source, bool useVectors, typename Source::Sample* out)
{
    using Sample = typename Source::Sample;
    constexpr int kChannels = Source::kChannels;
    if (count == 0) return true;
    const double top = std::min(low, high);
    const double bottom = std::max(low, high);
    const Extents extents = ExtentsOf(left, right, count);
    const bool isInside = source.left - 0.5 <= extents.first && extents.last <= source.right + 0.5 &&
                          source.top - 0.5 <= top && bottom <= source.bottom + 0.5;
    const double height = bottom - top;
    if (!isInside || !(extents.narrowest * height >= 1) || 2 * extents.widest > kMostBoxColumns) return false;
    if (source.right - source.left + 1 < kFewestBoxColumns) return false;
    if (!AreExact(left, right, count, top, bottom, extents.widest * height, 8 * int{sizeof(Sample)}))
        return false;

    const BoxLineKernel kernel = FindFootprintRows(useVectors).boxLines[sizeof(Sample) - 1][kChannels == 4];
    const FootprintPicture picture{source.base, source.rowBytes, source.left,
                                   source.top,  source.right,    source.bottom};
    for (std::size_t start = 0; start < count;) {
        // As many as fit; the first one does.
        std::size_t end = start;
        double first = HUGE_VAL;
        double last = -HUGE_VAL;
        for (; end < count; ++end) {
            const double from = std::min({first, left[end], right[end]});
            const double to = std::max({last, left[end], right[end]});
            if (to - from > kMostBoxColumns - kFewestBoxColumns) break;
            first = from;
            last = to;
        }
        const Columns columns(first, last, source);
        kernel({left + start, right + start, end - start, columns.first, columns.last, top, bottom}, picture,
               out + start * kChannels);
        start = end;
    }
    return true;
}

template bool SumBoxes(const double*, const double*, std::size_t, double, double,
                       const FootprintSource<std::uint8_t, 1>&, bool, std::uint8_t*);
template bool SumBoxes(const double*, const double*, std::size_t, double, double,
                       const FootprintSource<std::uint8_t, 4>&, bool, std::uint8_t*);
template bool SumBoxes(const double*, const double*, std::size_t, double, double,
                       const FootprintSource<std::uint16_t, 1>&, bool, std::uint16_t*);
template bool SumBoxes(const double*, const double*, std::size_t, double, double,
                       const FootprintSource<std::uint16_t, 4>&, bool, std::uint16_t*);

} // namespace vfil

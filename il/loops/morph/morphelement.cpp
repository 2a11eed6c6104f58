/// \file
/// The shape of a window as runs of its rows.

#include "il/loops/morph/morphelement.h"

#include "il/loops/frame/saturate.h"

#include <algorithm>

namespace vfil {

ElementRuns EllipseRuns(double rx, double ry)
{
    const long radiusX = TruncateToInt32(rx);
    const long radiusY = TruncateToInt32(ry);
    // Squares first: the ends of the axes are in the ellipse only if both sides are rounded alike.
    const auto square = [](double v) { return v * v; };
    const auto isIn = [&](long x, long y) {
        return square(static_cast<double>(x)) * square(ry) + square(static_cast<double>(y)) * square(rx) <=
               square(rx) * square(ry);
    };
    std::vector<long> halfWidths; // of the rows from the middle on; they never grow
    for (long y = 0, x = radiusX; y <= radiusY; ++y) {
        while (x >= 0 && !isIn(x, y))
            --x;
        halfWidths.push_back(x);
    }
    ElementRuns runs;
    for (long y = -radiusY; y <= radiusY; ++y) {
        const long x = halfWidths[static_cast<std::size_t>(std::max(y, -y))];
        if (x >= 0) runs.push_back({radiusY + y, radiusX - x, 2 * x + 1});
    }
    return runs;
}

ElementRuns RectangleRuns(long width, long height)
{
    ElementRuns runs;
    for (long y = 0; y < height; ++y)
        runs.push_back({y, 0, width});
    return runs;
}

ElementRuns NonZeroRuns(const long* entries, long width, long height)
{
    ElementRuns runs;
    for (long y = 0; y < height; ++y, entries += width) {
        const auto isEmpty = [](long entry) { return entry == 0; };
        for (const long *at = entries, *end = entries + width; at != end;) {
            const long* const first = std::find_if_not(at, end, isEmpty);
            at = std::find_if(first, end, isEmpty);
            if (first != at) runs.push_back({y, static_cast<long>(first - entries), at - first});
        }
    }
    return runs;
}

bool IsWholeWindow(const ElementRuns& runs, long width, long height)
{
    return runs.size() == static_cast<std::size_t>(height) &&
           std::ranges::all_of(runs, [width](const ElementRun& run) { return run.length == width; });
}

} // namespace vfil

/// \file
/// What a convex polygon covers of a pixel, cut by brute force in long doubles; and polygons to be cut.
#pragma once

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace vfil::test {

struct Outline {
    std::vector<double> x, y;

    long Size() const { return static_cast<long>(x.size()); }
    double SignedArea() const
    {
        double sum = 0;
        for (std::size_t i = 0, next = 1; i < x.size(); ++i, next = (i + 1) % x.size())
            sum += x[i] * y[next] - x[next] * y[i];
        return sum / 2;
    }
};

/// Cuts by the four sides of the pixel in turn.
inline long double CellArea(const Outline& outline, long column, long row)
{
    struct Point {
        long double x, y;
    };
    std::vector<Point> points;
    for (std::size_t i = 0; i < outline.x.size(); ++i)
        points.push_back(
            {outline.x[i] - static_cast<double>(column), outline.y[i] - static_cast<double>(row)});
    for (int side = 0; side < 4; ++side) {
        const auto inside = [&](const Point& p) {
            return 0.5L + (side % 2 == 0 ? 1 : -1) * (side < 2 ? p.x : p.y);
        };
        std::vector<Point> kept;
        for (std::size_t i = 0; i < points.size(); ++i) {
            const Point& from = points[i];
            const Point& to = points[(i + 1) % points.size()];
            const long double a = inside(from);
            const long double b = inside(to);
            if (a >= 0) kept.push_back(from);
            if ((a < 0) != (b < 0))
                kept.push_back(
                    {from.x + (to.x - from.x) * a / (a - b), from.y + (to.y - from.y) * a / (a - b)});
        }
        points = kept;
    }
    long double sum = 0;
    for (std::size_t i = 0; i < points.size(); ++i) {
        const Point& next = points[(i + 1) % points.size()];
        sum += points[i].x * next.y - next.x * points[i].y;
    }
    return std::fabs(sum) / 2;
}

/// Up to so many vertices on an ellipse, in either order, moved to multiples of 1/1024, or of 1/2 so that
/// many lie on the sides of pixels; the convex hull is what counts of them.
inline Outline RandomOutline(std::mt19937& random, int vertices, double size)
{
    const auto any = [&](double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random);
    };
    const double grid = random() % 3 == 0 ? 2 : 1024;
    std::vector<double> angles;
    for (int i = 0; i < vertices; ++i)
        angles.push_back(any(0, 6.283));
    std::sort(angles.begin(), angles.end());
    if (random() % 2 == 0) std::reverse(angles.begin(), angles.end());
    const double atX = any(0, size);
    const double atY = any(0, size);
    const double a = any(0.1, size / 2);
    const double b = any(0.1, size / 2);
    Outline all;
    for (const double angle : angles) {
        all.x.push_back(std::round((atX + a * std::cos(angle)) * grid) / grid);
        all.y.push_back(std::round((atY + b * std::sin(angle)) * grid) / grid);
    }
    // Rounding bends: drop a vertex that turns the other way, until none does.
    for (bool bent = true; bent && all.Size() > 2;) {
        bent = false;
        const std::size_t n = all.x.size();
        const double order = all.SignedArea();
        for (std::size_t i = 0; i < n && !bent; ++i) {
            const std::size_t p = (i + n - 1) % n;
            const std::size_t q = (i + 1) % n;
            const double turn =
                (all.x[i] - all.x[p]) * (all.y[q] - all.y[i]) - (all.x[q] - all.x[i]) * (all.y[i] - all.y[p]);
            if (turn * order > 0) continue;
            all.x.erase(all.x.begin() + static_cast<std::ptrdiff_t>(i));
            all.y.erase(all.y.begin() + static_cast<std::ptrdiff_t>(i));
            bent = true;
        }
    }
    return all;
}

} // namespace vfil::test

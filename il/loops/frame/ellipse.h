/// \file
/// The ellipse of a window's radii, and how many entries a window has: for the filters with a shape or a
/// kernel.
#pragma once

#include <vfil/geometry.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace vfil {

/// The places (x, y), from a window's middle, with x^2 ry^2 + y^2 rx^2 <= rx^2 ry^2. Discs compare in float,
/// the shapes of ranks and morphology in double: it decides about places on the rim, so neither may change.
/// None are in it when a radius is no number.
template <class Real>
class Ellipse {
public:
    Ellipse(Real rx, Real ry) : m_squareX(rx * rx), m_squareY(ry * ry) {}

    bool Holds(long x, long y) const
    {
        // Squares first: the ends of the axes are in the ellipse only if both sides are rounded alike.
        const auto fx = static_cast<Real>(x);
        const auto fy = static_cast<Real>(y);
        return fx * fx * m_squareY + fy * fy * m_squareX <= m_squareX * m_squareY;
    }
    /// How far the row \p y reaches to both sides, but at most so far; -1 without a place. It never grows
    /// with the distance from the middle.
    long HalfWidth(long y, long most) const
    {
        long held = -1;
        for (long beyond = most + 1; beyond - held > 1;) {
            const long between = held + (beyond - held) / 2;
            (Holds(between, y) ? held : beyond) = between;
        }
        return held;
    }

private:
    Real m_squareX, m_squareY;
};

/// The entries of a window of whole radii, which are not negative. 0 when memory could not be addressed for
/// so many.
inline std::size_t CountWindow(const vfILVector2l& radius, std::size_t entryBytes)
{
    const std::size_t width = 2 * static_cast<std::size_t>(radius[0]) + 1;
    const std::size_t height = 2 * static_cast<std::size_t>(radius[1]) + 1;
    const auto most = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) / entryBytes;
    return width <= most / height ? width * height : 0;
}

/// Sets a window's entries to \p inside in the ellipse and to 0 outside. How many are inside.
inline std::int64_t FillEllipse(float* window, const vfILVector2l& radius, const Ellipse<float>& ellipse,
                                float inside)
{
    const long width = 2 * long{radius[0]} + 1;
    std::int64_t count = 0;
    for (long y = -long{radius[1]}; y <= radius[1]; ++y, window += width) {
        const long half = ellipse.HalfWidth(y, radius[0]);
        std::fill_n(window, width, 0.0F);
        std::fill_n(window + (radius[0] - half), 2 * half + 1, inside);
        count += std::max(2 * half + 1, 0L);
    }
    return count;
}

} // namespace vfil

/// \file
/// Mappings solved.
#include <catalogue/mapping.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace vfil::catalogue {

namespace {

// Cosine and sine, exact where they are whole.
MapPoint Direction(double degrees)
{
    const double turn = std::remainder(degrees, 360.0);
    if (turn == 0) return {1, 0};
    if (turn == 90) return {0, 1};
    if (turn == -90) return {0, -1};
    if (std::abs(turn) == 180) return {-1, 0};
    const double radians = turn * std::numbers::pi / 180;
    return {std::cos(radians), std::sin(radians)};
}

MapPoint Middle(long width, long height)
{
    return {static_cast<double>(width - 1) / 2, static_cast<double>(height - 1) / 2};
}

bool IsWhole(double number)
{
    return number == std::trunc(number);
}

// Whether whole coordinates stay whole in a picture of the same scale, but for the translation.
bool IsQuarterTurn(const AffineMap& map)
{
    return IsWhole(map.a) && IsWhole(map.b) && IsWhole(map.d) && IsWhole(map.e) &&
           std::abs(map.a * map.e - map.b * map.d) == 1;
}

class Bounds {
public:
    void Add(const MapPoint& point)
    {
        m_extent.left = std::min(m_extent.left, point.x);
        m_extent.right = std::max(m_extent.right, point.x);
        m_extent.bottom = std::min(m_extent.bottom, point.y);
        m_extent.top = std::max(m_extent.top, point.y);
    }
    const Extent& Get() const { return m_extent; }

private:
    static constexpr double kFar = std::numeric_limits<double>::infinity();
    Extent m_extent{kFar, kFar, -kFar, -kFar};
};

// The corners of the picture's area, which lie half a pixel beyond the centres of its pixels.
std::array<MapPoint, 4> AreaCorners(long width, long height)
{
    const double right = static_cast<double>(width) - 0.5;
    const double top = static_cast<double>(height) - 0.5;
    return {{{-0.5, -0.5}, {right, -0.5}, {right, top}, {-0.5, top}}};
}

MapPoint CornerOf(const Corners& corners, std::size_t index)
{
    const std::size_t i = index % 4 * 2;
    return {corners[i], corners[i + 1]};
}

// Twice the area of the triangle.
double Turn(const MapPoint& a, const MapPoint& b, const MapPoint& c)
{
    return (b.x - a.x) * (c.y - a.y) - (b.y - a.y) * (c.x - a.x);
}

} // namespace

AffineMap AffineOf(const AffineParts& parts, long width, long height)
{
    const auto [cosine, sine] = Direction(parts.rotation);
    const MapPoint about = parts.about.value_or(Middle(width, height));
    const double a = parts.scale.x;
    const double b = parts.shear.x * parts.scale.y;
    const double d = parts.shear.y * parts.scale.x;
    const double e = parts.scale.y;
    AffineMap map{cosine * a - sine * d, cosine * b - sine * e, 0,
                  sine * a + cosine * d, sine * b + cosine * e, 0};
    map.c = about.x - (map.a * about.x + map.b * about.y);
    map.f = about.y - (map.d * about.x + map.e * about.y);
    if (!parts.about && IsQuarterTurn(map)) {
        map.c = std::floor(map.c);
        map.f = std::floor(map.f);
    }
    map.c += parts.translation.x;
    map.f += parts.translation.y;
    return map;
}

double LeastScale(const AffineMap& map)
{
    const double sum = std::hypot(map.a + map.e, map.d - map.b);
    const double difference = std::hypot(map.a - map.e, map.d + map.b);
    return std::abs(sum - difference) / 2;
}

Extent ExtentOf(const AffineMap& map, long width, long height)
{
    Bounds bounds;
    for (const auto& [x, y] : AreaCorners(width, height))
        bounds.Add({map.a * x + map.b * y + map.c, map.d * x + map.e * y + map.f});
    return bounds.Get();
}

bool AreConvex(const Corners& corners)
{
    bool left = false;
    bool right = false;
    for (std::size_t i = 0; i < 4; ++i) {
        const double turn = Turn(CornerOf(corners, i), CornerOf(corners, i + 1), CornerOf(corners, i + 2));
        if (turn == 0) return false;
        (turn > 0 ? left : right) = true;
    }
    // Four turns to one side are one round: a second one takes five.
    return left != right;
}

std::optional<Homography> HomographyOf(const Corners& corners, long width, long height)
{
    if (width < 2 || height < 2) return std::nullopt;
    const auto [x0, y0] = CornerOf(corners, 0);
    const auto [x1, y1] = CornerOf(corners, 1);
    const auto [x2, y2] = CornerOf(corners, 2);
    const auto [x3, y3] = CornerOf(corners, 3);
    // From the unit square: its far corner fixes g and h, the others the rest.
    const MapPoint sum{x0 - x1 + x2 - x3, y0 - y1 + y2 - y3};
    const double determinant = Turn({x2, y2}, {x1, y1}, {x3, y3});
    const double g = ((x3 - x2) * -sum.y + (y3 - y2) * sum.x) / determinant;
    const double h = ((x1 - x2) * sum.y - (y1 - y2) * sum.x) / determinant;
    const double across = 1 / static_cast<double>(width - 1);
    const double up = 1 / static_cast<double>(height - 1);
    return Homography{(x1 - x0 + g * x1) * across,
                      (x3 - x0 + h * x3) * up,
                      x0, //
                      (y1 - y0 + g * y1) * across,
                      (y3 - y0 + h * y3) * up,
                      y0, //
                      g * across,
                      h * up,
                      1};
}

Homography Normalized(const Homography& map)
{
    constexpr double kNextToNothing = 1e-6;
    double largest = 0;
    for (const double number : map)
        largest = std::max(largest, std::abs(number));
    const double unit = std::abs(map[8]) > kNextToNothing * largest ? map[8] : largest;
    Homography scaled = map;
    if (unit != 0)
        for (double& number : scaled)
            number /= unit;
    return scaled;
}

double Determinant(const Homography& m)
{
    return m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
           m[2] * (m[3] * m[7] - m[4] * m[6]);
}

std::optional<Extent> ExtentOf(const Homography& m, long width, long height)
{
    Bounds bounds;
    for (const auto& [x, y] : AreaCorners(width, height)) {
        const double w = m[6] * x + m[7] * y + m[8];
        if (w <= 0) return std::nullopt;
        bounds.Add({(m[0] * x + m[1] * y + m[2]) / w, (m[3] * x + m[4] * y + m[5]) / w});
    }
    return bounds.Get();
}

Extent ExtentOf(const Corners& corners, long width, long height)
{
    const double across = static_cast<double>(std::max(width - 1, 1L));
    const double up = static_cast<double>(std::max(height - 1, 1L));
    Bounds bounds;
    for (const auto& [x, y] : AreaCorners(width, height)) {
        const double s = x / across;
        const double t = y / up;
        const auto mixed = [&](std::size_t i) {
            const double low = corners[i] + (corners[i + 2] - corners[i]) * s;
            const double high = corners[i + 6] + (corners[i + 4] - corners[i + 6]) * s;
            return low + (high - low) * t;
        };
        bounds.Add({mixed(0), mixed(1)});
    }
    return bounds.Get();
}

AffineMap AffineOnto(const vfILVector2l& canvas, bool fill, long width, long height)
{
    const double across = static_cast<double>(canvas[0]) / static_cast<double>(width);
    const double up = static_cast<double>(canvas[1]) / static_cast<double>(height);
    const double scale = fill ? std::max(across, up) : std::min(across, up);
    const auto place = [scale](long from, long to, double& factor, double& offset) {
        const double side = std::max(1.0, std::round(static_cast<double>(from) * scale));
        const double edge = std::floor((static_cast<double>(to) - side) / 2);
        factor = side / static_cast<double>(from);
        offset = edge + (factor - 1) / 2;
    };
    AffineMap map;
    place(width, canvas[0], map.a, map.c);
    place(height, canvas[1], map.e, map.f);
    return map;
}

} // namespace vfil::catalogue

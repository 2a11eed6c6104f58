/// \file
/// The kernel that projects the pixels of a line: the vector form. The sums are made one by one, since each
/// is rounded; vectors divide.
#include "il/rows/transform/projectparams.h"
#include "il/rows/vecdouble.h"

namespace vfil {

namespace {

Mask64 AreBefore(F64 w, ProjectSign sign)
{
    const F64 zero = SplatDouble(0);
    if (sign == ProjectSign::Negative) return w < zero;
    if (sign == ProjectSign::Positive) return zero < w;
    return Without(w == w, w == zero);
}

/// Divides a vector of points.
void Divide(F64 x, F64 y, F64 w, ProjectSign sign, double* u, double* v)
{
    const F64 scale = Select(AreBefore(w, sign), SplatDouble(1) / w, SplatDouble(__builtin_nan("")));
    StoreDoubles(u, x * scale);
    StoreDoubles(v, y * scale);
}

/// A number as a multiple of a power of two that is below another one. 0 is one of every power.
struct Places {
    int lowest, end;
};

Places PlacesOf(double v)
{
    constexpr int kMostExponent = 5000;
    std::uint64_t bits;
    std::memcpy(&bits, &v, sizeof bits);
    const int exponent = static_cast<int>(bits >> 52 & 0x7FF);
    const std::uint64_t fraction = bits & 0xFFFFFFFFFFFFF;
    if ((bits << 1) == 0) return {kMostExponent, -kMostExponent};
    // A subnormal, infinity or NaN is never exact.
    if (exponent == 0 || exponent == 0x7FF) return {-kMostExponent, kMostExponent};
    const int zeros = fraction == 0 ? 52 : __builtin_ctzll(fraction);
    return {exponent - 1075 + zeros, exponent - 1022};
}

/// Whether no sum of the line is rounded, so that it does not matter how it is made: a multiple of a power of
/// two has 53 places above that.
bool IsExact(double start, double step, std::size_t points)
{
    const Places first = PlacesOf(start);
    const Places each = PlacesOf(step);
    const int carries = 64 - __builtin_clzll(points + kLanes64);
    const int end = (first.end > each.end + carries ? first.end : each.end + carries) + 1;
    const int lowest = first.lowest < each.lowest ? first.lowest : each.lowest;
    return end - lowest <= 53 || each.end < -4000;
}

/// A coordinate of a vector of points, of exact sums.
struct Exact {
    Exact(double start, double step)
        : points(SplatDouble(start) + CountFrom(0) * SplatDouble(step)), move(SplatDouble(step * kLanes64))
    {}
    void Move() { points = points + move; }

    F64 points, move;
};

/// The points of whole vectors; tells how many.
std::size_t ProjectExact(ProjectLine& line, std::size_t points, double* u, double* v)
{
    Exact x(line.x, line.stepX);
    Exact y(line.y, line.stepY);
    Exact w(line.w, line.stepW);
    std::size_t done = 0;
    for (; done + kLanes64 <= points; done += kLanes64) {
        Divide(x.points, y.points, w.points, line.sign, u + done, v + done);
        x.Move();
        y.Move();
        w.Move();
    }
    line.x += line.stepX * static_cast<double>(done);
    line.y += line.stepY * static_cast<double>(done);
    line.w += line.stepW * static_cast<double>(done);
    return done;
}

/// At most a vector of points, sum by sum.
void ProjectStepwise(ProjectLine& line, std::size_t points, double* u, double* v)
{
    double x[kLanes64] = {};
    double y[kLanes64] = {};
    double w[kLanes64] = {};
    for (std::size_t i = 0; i < points; ++i) {
        x[i] = line.x;
        y[i] = line.y;
        w[i] = line.w;
        line.x += line.stepX;
        line.y += line.stepY;
        line.w += line.stepW;
    }
    Divide(LoadDoubles(x), LoadDoubles(y), LoadDoubles(w), line.sign, x, y);
    std::memcpy(u, x, points * sizeof *u);
    std::memcpy(v, y, points * sizeof *v);
}

void Project(ProjectLine& line, std::size_t points, double* u, double* v)
{
    std::size_t done = 0;
    if (IsExact(line.x, line.stepX, points) && IsExact(line.y, line.stepY, points) &&
        IsExact(line.w, line.stepW, points))
        done = ProjectExact(line, points, u, v);
    for (; done < points; done += kLanes64) {
        const std::size_t left = points - done;
        ProjectStepwise(line, left < kLanes64 ? left : kLanes64, u + done, v + done);
    }
}

} // namespace

namespace VFIL_LEVEL {

void Fill(ProjectRows& rows)
{
    rows = {.project = Project};
}

} // namespace VFIL_LEVEL
} // namespace vfil

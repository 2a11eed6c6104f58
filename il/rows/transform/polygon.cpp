/// \file
/// Convex polygons in homogeneous coordinates: cut by planes, and measured.
#include "il/rows/transform/polygon.h"

#include <algorithm>
#include <cmath>

namespace vfil {
namespace {

/// What is as near as this to a plane lies on it.
constexpr double kOnPlane = 0.001;

struct Vertex {
    double x, y, z;
};

/// A polygon in the making, in arrays of the caller's.
struct Polygon {
    double *x, *y, *z;
    long count, capacity;

    /// Goes on counting what does not fit.
    void Add(const Vertex& v)
    {
        if (count < capacity) {
            x[count] = v.x;
            y[count] = v.y;
            z[count] = v.z;
        }
        ++count;
    }
};

Vertex PointBetween(const Vertex& a, const Vertex& b, double share)
{
    return {a.x + (b.x - a.x) * share, a.y + (b.y - a.y) * share, a.z + (b.z - a.z) * share};
}

double Distance(const Vertex& v, const double plane[4])
{
    return plane[0] * v.x + plane[1] * v.y + plane[2] * v.z + plane[3];
}

/// Keeps the side of the plane on which the distance is positive.
long CutByPlane(const Vertex* vertices, const double* distances, long count, Polygon polygon)
{
    polygon.count = 0;
    for (long i = 0; i < count; ++i) {
        const long before = i == 0 ? count - 1 : i - 1;
        const double previous = distances[before];
        const double current = distances[i];
        const bool leaves = previous > kOnPlane && current < -kOnPlane;
        const bool enters = previous < -kOnPlane && current > kOnPlane;
        if (leaves || enters)
            polygon.Add(PointBetween(vertices[before], vertices[i], previous / (previous - current)));
        if (current >= -kOnPlane) polygon.Add(vertices[i]);
    }
    return polygon.count <= polygon.capacity ? polygon.count : 0;
}

} // namespace

bool ClipPolygon(long& count, double x[], double y[], double z[], const double (*planes)[4], long planeCount,
                 long capacity)
{
    bool changed = false;
    for (long plane = 0; plane < planeCount; ++plane) {
        if (count < 0 || count > std::min(capacity, kMostClipVertices)) count = 0;
        Vertex vertices[kMostClipVertices];
        double distances[kMostClipVertices];
        for (long i = 0; i < count; ++i) {
            vertices[i] = {x[i], y[i], z[i]};
            distances[i] = Distance(vertices[i], planes[plane]);
        }
        if (std::all_of(distances, distances + count, [](double s) { return s <= kOnPlane; })) {
            count = 0;
            return true;
        }
        if (std::all_of(distances, distances + count, [](double s) { return s >= -kOnPlane; })) continue;
        count = CutByPlane(vertices, distances, count, {x, y, z, 0, capacity});
        changed = true;
    }
    return changed;
}

double PolygonArea(long count, const double x[], const double y[], const double z[])
{
    if (count < 3) return 0;
    Vertex sum{0, 0, 0};
    for (long i = 0; i < count; ++i) {
        const long next = i + 1 == count ? 0 : i + 1;
        sum.x += y[i] * z[next] - z[i] * y[next];
        sum.y += z[i] * x[next] - x[i] * z[next];
        sum.z += x[i] * y[next] - y[i] * x[next];
    }
    return 0.5 * std::sqrt(sum.x * sum.x + sum.y * sum.y + sum.z * sum.z);
}

} // namespace vfil

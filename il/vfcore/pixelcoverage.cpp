/// \file
/// The exact cut of a convex polygon by rows, and by rows and columns. An edge is cut once for two bands: the
/// point where it leaves the one is carried into the next.

#include <vfil/pixelcoverage.h>

#include "il/rows/transform/polygon.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

/// Half away from zero.
long RoundToLong(double v)
{
    using Limits = std::numeric_limits<long>;
    if (!(v > static_cast<double>(Limits::min()))) return Limits::min();
    if (v >= static_cast<double>(Limits::max())) return Limits::max();
    return std::lround(v);
}

/// The extreme vertices of a polygon.
struct Corners {
    long topLeft = 0, topRight = 0, bottomLeft = 0, bottomRight = 0;

    Corners(long n, const double x[], const double y[])
    {
        for (long i = 1; i < n; ++i) {
            if (y[i] < y[topLeft] || (y[i] == y[topLeft] && x[i] < x[topLeft])) topLeft = i;
            if (y[i] < y[topRight] || (y[i] == y[topRight] && x[i] > x[topRight])) topRight = i;
            if (y[i] > y[bottomLeft] || (y[i] == y[bottomLeft] && x[i] < x[bottomLeft])) bottomLeft = i;
            if (y[i] > y[bottomRight] || (y[i] == y[bottomRight] && x[i] > x[bottomRight])) bottomRight = i;
        }
    }
};

/// A list of vertices that is written from its front.
struct VertexList {
    double *x, *y;
    long count = 0;

    void Add(double atX, double atY)
    {
        x[count] = atX;
        y[count] = atY;
        ++count;
    }
};

/// The area of a polygon of a pixel's size, from the differences of its vertices: products of the coordinates
/// themselves would cancel, and leave a millionth of the digits.
double Area(long count, const double x[], const double y[])
{
    if (count < 3) return 0;
    // Exact for boxes, of which each product of sides is rounded once.
    if (count == 4) return std::fabs((y[1] - y[3]) * (x[2] - x[0]) + (y[2] - y[0]) * (x[3] - x[1])) * 0.5;
    double sum = 0;
    for (long i = 2; i < count; ++i)
        sum += (x[i - 1] - x[0]) * (y[i] - y[0]) - (x[i] - x[0]) * (y[i - 1] - y[0]);
    return std::fabs(sum) * 0.5;
}

} // namespace

struct IncrementalPixelCoverage1D::Side {
    std::int32_t& count;
    double* x;
    double* y;
    std::int32_t& index;
    std::int32_t& carry;
    double& carryX;

    bool HasNext() const { return index < count - 1; }

    /// Where the edge behind the index crosses the scan line.
    double CutAt(double scan) const
    {
        const double fromX = x[index];
        const double toX = x[index + 1];
        if (fromX == toX) return fromX;
        return fromX + (toX - fromX) * (scan - y[index]) / (y[index + 1] - y[index]);
    }

    /// The vertices from one to another, in steps of +1 or -1 around the polygon. False for fewer than two,
    /// or too many.
    bool Copy(long n, const double fromX[], const double fromY[], long first, long last, long step)
    {
        count = 0;
        for (long i = first; count < kChain; i = (i + step + n) % n) {
            x[count] = fromX[i];
            y[count] = fromY[i];
            ++count;
            if (i == last) return count >= 2;
        }
        return false;
    }

    void GoTo(double scan)
    {
        index = 0;
        while (HasNext() && y[index + 1] <= scan)
            ++index;
        carry = HasNext() && y[index] < scan ? 1 : 0;
        if (carry != 0) carryX = CutAt(scan);
    }

    /// Adds what the side has between two scan lines, but for the vertices that the other side shares.
    void AddBand(VertexList& list, double from, double to, bool leaveFirst, bool leaveLast)
    {
        if (carry != 0) {
            list.Add(carryX, from);
            ++index;
        }
        for (; index < count && y[index] <= to; ++index) {
            const bool shared = (leaveFirst && index == 0) || (leaveLast && index == count - 1);
            if (!shared) list.Add(x[index], y[index]);
        }
        --index;
        carry = HasNext() ? 1 : 0;
        if (carry == 0) return;
        carryX = CutAt(to);
        list.Add(carryX, to);
    }
};

IncrementalPixelCoverage1D::Side IncrementalPixelCoverage1D::Left()
{
    return {m_leftCount, m_leftX, m_leftY, m_leftIndex, m_leftCarry, m_leftCarryX};
}

IncrementalPixelCoverage1D::Side IncrementalPixelCoverage1D::Right()
{
    return {m_rightCount, m_rightX, m_rightY, m_rightIndex, m_rightCarry, m_rightCarryX};
}

void IncrementalPixelCoverage1D::Initialize(long n, const double x[], const double y[], int reversed,
                                            long start)
{
    InitializeBand(n > kMaxVertices ? 0 : n, x, y, reversed, start);
}

void IncrementalPixelCoverage1D::InitializeBand(long n, const double x[], const double y[], int reversed,
                                                long start)
{
    m_empty = 1;
    m_previousScan = static_cast<double>(start) - 1.5;
    m_currentScan = m_previousScan + 1.0;
    if (n < 3) return;
    // A vertex that compares with nothing would lead the walk out of the chains.
    const auto isFinite = [](double v) { return std::isfinite(v); };
    if (!std::all_of(x, x + n, isFinite) || !std::all_of(y, y + n, isFinite)) return;

    const Corners corners(n, x, y);
    m_singleBottom = corners.bottomLeft == corners.bottomRight ? 1 : 0;
    m_singleTop = corners.topLeft == corners.topRight ? 1 : 0;
    const long step = reversed != 0 ? -1 : 1;
    if (!Left().Copy(n, x, y, corners.topLeft, corners.bottomLeft, step)) return;
    if (!Right().Copy(n, x, y, corners.topRight, corners.bottomRight, -step)) return;
    Left().GoTo(m_currentScan);
    Right().GoTo(m_currentScan);
    m_empty = 0;
}

long IncrementalPixelCoverage1D::GetPolygonAndIncrement(double outX[], double outY[])
{
    m_previousScan = m_currentScan;
    m_currentScan += 1.0;
    if (m_empty != 0) return 0;
    if (m_leftIndex == 0 && m_leftY[0] >= m_currentScan) return 0;
    if (m_leftIndex == m_leftCount - 1 && m_leftY[m_leftIndex] <= m_previousScan) return 0;

    VertexList list{outX, outY};
    Left().AddBand(list, m_previousScan, m_currentScan, false, false);
    std::reverse(outX, outX + list.count);
    std::reverse(outY, outY + list.count);
    Right().AddBand(list, m_previousScan, m_currentScan, m_singleTop != 0, m_singleBottom != 0);
    return list.count;
}

long IncrementalPixelCoverage1D::GetCurrentY() const
{
    return RoundToLong(m_currentScan + 0.5);
}

void IncrementalPixelCoverage2D::Initialize(long n, const double x[], const double y[], int reversed,
                                            long start)
{
    m_rows.Initialize(n, x, y, reversed, start);
}

void IncrementalPixelCoverage2D::StartHorizontalPass(long startX)
{
    double x[IncrementalPixelCoverage1D::kMaxBandVertices];
    double y[IncrementalPixelCoverage1D::kMaxBandVertices];
    const long count = m_rows.GetPolygonAndIncrement(x, y);
    m_columns.InitializeBand(count, y, x, 0, startX);
}

double IncrementalPixelCoverage2D::GetAreaAndAdvance()
{
    double x[IncrementalPixelCoverage1D::kMaxBandVertices];
    double y[IncrementalPixelCoverage1D::kMaxBandVertices];
    const long count = m_columns.GetPolygonAndIncrement(x, y);
    return Area(count, x, y);
}

long IncrementalPixelCoverage2D::GetCurrentX() const
{
    return m_columns.GetCurrentY();
}

long IncrementalPixelCoverage2D::GetCurrentY() const
{
    return m_rows.GetCurrentY();
}

int vfILClipPolygon(long& n, double x[], double y[], double z[], const double planes[][4], long planeCount)
{
    const long before = std::clamp(n, 0L, vfil::kMostClipVertices);
    const long capacity =
        std::min(before + std::clamp(planeCount, 0L, vfil::kMostClipVertices), vfil::kMostClipVertices);
    return vfil::ClipPolygon(n, x, y, z, planes, planeCount, capacity) ? 1 : 0;
}

double vfILPolygonArea(long n, const double x[], const double y[], const double z[])
{
    return vfil::PolygonArea(n, x, y, z);
}

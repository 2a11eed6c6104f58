/// \file
/// The kernels of a mesh warp: the plain forms.
#include "il/rows/transform/warprows.h"

#include <cmath>

namespace vfil {

namespace {

/// No cell is regular to the plain form: each goes pixel by pixel.
std::size_t TakeNone(const WarpCells& cells, std::size_t first, WarpHits& hits)
{
    static_cast<void>(cells);
    static_cast<void>(hits);
    return first;
}

void TestPixels(const WarpCell& cell, double x, double y, std::size_t pixels, WarpHits& hits)
{
    for (; pixels != 0; --pixels, x += 1) {
        double s = 0;
        double t = 0;
        if (!InverseBilinearTransform(cell, x, y, s, t)) continue;
        hits.x[hits.count] = x;
        hits.y[hits.count] = y;
        hits.u[hits.count] = BilinearInterp(s, t, cell.sourceX);
        hits.v[hits.count] = BilinearInterp(s, t, cell.sourceY);
        ++hits.count;
    }
}

void Shift(const double* vectorsX, const double* vectorsY, double factor, double x, double y,
           std::size_t pixels, double* u, double* v)
{
    for (std::size_t i = 0; i < pixels; ++i) {
        u[i] = x + static_cast<double>(i) + vectorsX[i] * factor;
        v[i] = y + vectorsY[i] * factor;
    }
}

} // namespace

WarpCell CellOf(const WarpCells& cells, std::size_t index)
{
    WarpCell cell{};
    for (std::size_t corner = 0; corner < 4; ++corner) {
        const std::size_t right = corner % 2;
        const std::size_t above = corner / 2;
        const double x = static_cast<double>(index + right);
        const double y = cells.row + static_cast<double>(above);
        const double vectorX = cells.x[above][index + right];
        const double vectorY = cells.y[above][index + right];
        cell.targetX[corner] = x + vectorX * cells.target;
        cell.targetY[corner] = y + vectorY * cells.target;
        cell.sourceX[corner] = x + vectorX * cells.source;
        cell.sourceY[corner] = y + vectorY * cells.source;
    }
    return cell;
}

int SolveQuadratic(double a, double b, double c, double (&roots)[2])
{
    if (a == 0) {
        if (b == 0) return 0;
        roots[0] = -c / b;
        return 1;
    }
    const double h = 0.5 * b;
    const double d = h * h - c * a;
    if (d < 0) return 0;
    const double root = std::sqrt(d);
    roots[0] = h < 0 ? c / (root - h) : -(root + h) / a;
    if (!(root > 0)) return 1;
    roots[1] = h < 0 ? (root - h) / a : -c / (root + h);
    return 2;
}

bool InverseBilinearTransform(const WarpCell& cell, double x, double y, double& s, double& t)
{
    const auto& px = cell.targetX;
    const auto& py = cell.targetY;
    const double ax = px[1] - px[0];
    const double ay = py[1] - py[0];
    const double bx = px[2] - px[0];
    const double by = py[2] - py[0];
    const double cx = px[0] - px[1] - px[2] + px[3];
    const double cy = py[0] - py[1] - py[2] + py[3];
    const double a = bx * cy - cx * by;
    const double b = (y - py[0]) * cx + cy * (px[0] - x) - by * ax + ay * bx;
    const double c = ay * (px[0] - x) + ax * (y - py[0]);
    double roots[2];
    const int count = SolveQuadratic(a, b, c, roots);
    for (int i = 0; i < count; ++i) {
        t = roots[i];
        if (!(t >= 0 && t <= 1)) continue;
        const double extent = t * cx + ax;
        if (extent == 0) continue;
        s = ((x - px[0]) - bx * t) / extent;
        if (s >= 0 && s <= 1) return true;
    }
    return false;
}

double BilinearInterp(double t, double a, double b)
{
    return (b - a) * t + a;
}

double BilinearInterp(double s, double t, const double (&corners)[4])
{
    return BilinearInterp(t, BilinearInterp(s, corners[0], corners[1]),
                          BilinearInterp(s, corners[2], corners[3]));
}

VFIL_DECLARE_FILL(WarpRows)

const WarpRows& WarpRowsAt(Level level)
{
    static const LevelTables<WarpRows> tables({.cells = TakeNone, .pixels = TestPixels, .shift = Shift},
                                              VFIL_FILLS);
    return tables.At(level);
}

const WarpRows& FindWarpRows(bool useVectors)
{
    return WarpRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace vfil

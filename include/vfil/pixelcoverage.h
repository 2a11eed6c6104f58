/// \file
/// Exact areas: what a convex polygon covers of each pixel of a grid, without supersampling, and the two
/// operations that prepare a polygon for it.
///
/// Pixel i reaches from i - 0.5 to i + 0.5 on each axis, so that pixel centres have whole coordinates. A row
/// is above another one here when its y is smaller. To draw a polygon with exact edges:
///
///     IncrementalPixelCoverage2D coverage;
///     coverage.Initialize(n, x, y, reversed, firstRow);
///     for (each row from firstRow) {
///         coverage.StartHorizontalPass(firstColumn);
///         for (each column from firstColumn) alpha = coverage.GetAreaAndAdvance();
///     }
#pragma once

#include <vfil/export.h>

#include <cstdint>

/// Cuts a convex polygon into bands one pixel high. An object holds one walk, and belongs to one thread.
class VFIL_API IncrementalPixelCoverage1D {
public:
    /// Vertices that a polygon may have.
    static constexpr long kMaxVertices = 22;
    /// What a band of such a polygon may have.
    static constexpr long kMaxBandVertices = 2 * (kMaxVertices + 4);

    /// Begins a walk. Fewer than 3 vertices, more than kMaxVertices, or one that is not finite make it empty:
    /// every band then has no vertices.
    ///
    /// \param n         Vertices of a convex polygon, in order around it. With others the walk is of no use.
    /// \param reversed  Non-zero when the sum of x(i) y(i + 1) - x(i + 1) y(i) is positive, else 0.
    /// \param start     The first row to cover.
    void Initialize(long n, const double x[], const double y[], int reversed, long start);

    /// Writes what the polygon has within the current row, from the largest y on its left side to the
    /// smallest, and back on its right side, and moves one row on.
    ///
    /// \param outX  Room for kMaxBandVertices.
    /// \param outY  The same.
    /// \return The count of vertices, of which some may coincide; 0 above and below the polygon.
    long GetPolygonAndIncrement(double outX[], double outY[]);

    /// The row that GetPolygonAndIncrement covers next.
    long GetCurrentY() const;

private:
    friend class IncrementalPixelCoverage2D;

    /// Cutting by the two sides of a row may add two vertices to the polygon whose columns are walked next.
    static constexpr std::int32_t kChain = kMaxVertices + 2;
    /// The vertices of one side, from top to bottom, and how far the walk has come.
    struct Side;

    void InitializeBand(long n, const double x[], const double y[], int reversed, long start);
    Side Left();
    Side Right();

    std::int32_t m_empty = 1;
    std::int32_t m_leftCount = 0;
    std::int32_t m_rightCount = 0;
    double m_leftX[kChain] = {};
    double m_leftY[kChain] = {};
    double m_rightX[kChain] = {};
    double m_rightY[kChain] = {};
    std::int32_t m_singleBottom = 0;
    std::int32_t m_singleTop = 0;
    std::int32_t m_leftIndex = 0; // the last vertex at or above the scan line
    std::int32_t m_rightIndex = 0;
    std::int32_t m_leftCarry = 0; // the row before ended with a cut of this side, which begins the next one
    std::int32_t m_rightCarry = 0;
    double m_leftCarryX = 0;
    double m_rightCarryX = 0;
    double m_previousScan = 0;
    double m_currentScan = 0;
};

/// Cuts a convex polygon into bands one pixel high and these into pixels, and measures the pieces. Initialize
/// once, then for each row StartHorizontalPass, and GetAreaAndAdvance for each column. An object holds one
/// walk, and belongs to one thread.
class VFIL_API IncrementalPixelCoverage2D {
public:
    /// As IncrementalPixelCoverage1D::Initialize.
    void Initialize(long n, const double x[], const double y[], int reversed, long start);

    /// Takes the next row, and goes to a column of it.
    void StartHorizontalPass(long startX);

    /// The polygon's area within the current pixel, 0 .. 1. Moves one column to the right.
    double GetAreaAndAdvance();

    /// The column that GetAreaAndAdvance measures next.
    long GetCurrentX() const;
    /// The row that StartHorizontalPass takes next.
    long GetCurrentY() const;

private:
    IncrementalPixelCoverage1D m_rows;
    IncrementalPixelCoverage1D m_columns; // x and y exchanged
};

/// Cuts a polygon by planes, in their order. Of each plane (a, b, c, d) the side stays on which a x + b y +
/// c z + d is positive; a vertex within 0.001 of 0 counts as on the plane. Nothing stays of a polygon that is
/// on a plane or behind it.
///
/// Each plane adds a vertex to a convex polygon at most, for which there must be room: n + planeCount
/// vertices, or kMaxVertices of IncrementalPixelCoverage1D when that is less. What has more is emptied.
///
/// \param n In: the count of vertices. Out: that of what is left.
/// \param x The first coordinates of the vertices, in order around the polygon.
/// \param y The second ones.
/// \param z The third ones.
/// \return 1 if the polygon was changed, else 0.
VFIL_API int vfILClipPolygon(long& n, double x[], double y[], double z[], const double planes[][4],
                             long planeCount);

/// The area of a plane polygon in space: half the length of the sum of the cross products of successive
/// vertices. 0 for fewer than 3 vertices.
VFIL_API double vfILPolygonArea(long n, const double x[], const double y[], const double z[]);

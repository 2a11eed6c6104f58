/// \file
/// The shape of a window as runs of its rows, and how much of a large window a picture can fill. Included by
/// the filters that look for extremes or ranks in a window.
#pragma once

#include "il/loops/frame/ellipse.h"
#include "il/loops/frame/runarray.h"

#include <vfil/spatial.h>

namespace vfil {

/// What windows lie on: a picture, which goes on beyond its edges by a mode.
struct WindowGround {
    WindowGround(vfILEdgeMode edges, long pixels, long rows) : mode(edges), width(pixels), height(rows) {}

    vfILEdgeMode mode;
    long width, height; ///< 0 for no picture
};

/// The radius up to which a window around a pixel of the picture can meet samples that smaller ones do not:
/// \p radius, or less. Of an ellipse, too, all that is beyond only repeats what is nearer to its middle.
vfILVector2l TaughtRadius(const WindowGround& ground, const vfILVector2l& radius);

/// Neighbouring entries of one row of a window.
struct ShapeRun {
    long row, first, length;
};

/// The entries of a window that count.
class WindowShape {
public:
    // Each makes a new shape in a window of whole radii, and is false when memory is short.

    /// All entries.
    bool SetRectangle(const vfILVector2l& radius);
    /// The ellipse of the radii \p rx and \p ry, as far as it is in the window. None for NaN.
    bool SetEllipse(double rx, double ry, const vfILVector2l& radius);
    /// The entries that are not 0.
    bool SetEntries(const long* entries, const vfILVector2l& radius);
    /// The ellipse of the radii, without what meets a sample of the picture that was met before: a search by
    /// rows for the first of something finds the same, whatever its pixel. Rows and columns are moved to
    /// where they show the same samples, so that the window is not much larger than the picture: the runs are
    /// in the order of the search, but their rows then are not.
    bool SetFirstMeetings(double rx, double ry, const WindowGround& ground);

    const ShapeRun* begin() const { return m_runs.Data(); }
    const ShapeRun* end() const { return m_runs.Data() + m_count; }
    const ShapeRun& operator[](std::size_t index) const { return m_runs[index]; }
    /// Runs.
    std::size_t Count() const { return m_count; }
    bool IsEmpty() const { return m_count == 0; }
    /// The entries of all runs.
    std::size_t Entries() const;
    /// Of the window.
    const vfILVector2l& Radius() const { return m_radius; }
    bool IsWholeWindow() const;

private:
    bool Reserve(std::size_t runs);
    void Add(const ShapeRun& run) { m_runs[m_count++] = run; }
    void MoveRows(const WindowGround& ground);
    void Enclose();

    RunArray<ShapeRun> m_runs;
    std::size_t m_count = 0;
    vfILVector2l m_radius;
};

} // namespace vfil

/// \file
/// Nearest, bilinear and bicubic sampling where a row and a column of the input lie along those of the
/// output: bit for bit what sampling point by point gives, with what the points of a row, or of a column,
/// share done once.
#pragma once

#include "il/loops/transform/axistaps.h"

#include <vfil/transform.h>

#include <memory>

namespace vfil {

/// The lines of one run.
class PanZoomLines {
public:
    virtual ~PanZoomLines() = default;
    /// Writes row y, in the plane of the region of interest, of the run's effect box.
    virtual void MakeLine(long y, unsigned char* output) = 0;
    /// Ends the run.
    void Finish() const;

    /// \param type One of the types 1 to 3; others, and formats that are neither RGBA nor mono, give lines
    ///             that write nothing.
    /// \return Null when memory is short.
    static std::unique_ptr<PanZoomLines> Create(const vfILTransformRun& run, vfILInterpolationType type,
                                                const AxisMap& x, const AxisMap& y, bool useVectors);

protected:
    explicit PanZoomLines(bool streams) : m_streams(streams) {}
    PanZoomLines(const PanZoomLines&) = default;
    PanZoomLines& operator=(const PanZoomLines&) = default;
    /// The result is large: it may go around the cache.
    bool Streams() const { return m_streams; }

private:
    bool m_streams;
};

} // namespace vfil

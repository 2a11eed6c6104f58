/// \file
/// Footprint sums where each footprint is a box: bit for bit those of footprint.h, with what the boxes of a
/// row, or of a column, share made once.
#pragma once

#include "il/loops/transform/axistaps.h"

#include <vfil/transform.h>

#include <memory>

namespace vfil {

/// The lines of one run, of pictures that do not grow.
class PanZoomSums {
public:
    virtual ~PanZoomSums() = default;
    /// Writes the pixels of First() up to Behind() of a row of the effect box; false, and nothing, for a row
    /// whose footprints hang over the input, or of which some are smaller than a pixel.
    virtual bool MakeLine(long y, unsigned char* output) = 0;
    /// The columns of the effect box whose footprints lie within the input.
    std::size_t First() const { return m_first; }
    std::size_t Behind() const { return m_behind; }

    /// \param half Half of a footprint's width, in output pixels.
    /// \return Null where there are no such lines, and when memory is short: they are a help only.
    static std::unique_ptr<PanZoomSums> Create(const vfILTransformRun& run, double half, const AxisMap& x,
                                               const AxisMap& y, bool useVectors);

protected:
    PanZoomSums() = default;
    PanZoomSums(const PanZoomSums&) = default;
    PanZoomSums& operator=(const PanZoomSums&) = default;

    std::size_t m_first = 0, m_behind = 0;
};

} // namespace vfil

/// \file
/// A random picture under a filter whose result is known pixel by pixel, and the run that has to give it:
/// with regions, mask, field rows, edge modes, and in place.
#pragma once

#include "support/layermodel.h"
#include "support/spatialmodel.h"

#include <memory>

namespace vfil::test {

/// A picture that has pixels everywhere, by its edge mode.
struct EdgedPicture {
    const Snapshot& picture;
    vfILEdgeMode edgeMode;
    Pixel edgePixel;

    Pixel operator()(long x, long y) const
    {
        const long sx = EdgeIndex(edgeMode, x, picture.width);
        const long sy = EdgeIndex(edgeMode, y, picture.height);
        return sx < 0 || sy < 0 ? edgePixel : picture.At(sx, sy);
    }
};

/// filter(picture, x, y) of every pixel.
template <class Filter>
Snapshot Filtered(const EdgedPicture& picture, Filter filter)
{
    Snapshot result = picture.picture;
    for (long y = 0; y < result.height; ++y)
        for (long x = 0; x < result.width; ++x)
            result.At(x, y) = filter(picture, x, y);
    return result;
}

struct FilterScene {
    /// \param keys  How many values a sample may have: few make equal ones frequent.
    FilterScene(std::mt19937& random, long width, long height, int keys);
    EdgedPicture Picture() const { return {before, edgeMode, edgePixel}; }
    /// Runs the processor, and expects what the frame makes of the input and the filtered picture.
    void Check(vfILMonadicSpatialProc& processor, const Snapshot& filtered);

    const FormatCase& format;
    GuardedImage input, separateOutput;
    GuardedImage* output;
    vfILEdgeMode edgeMode;
    Pixel edgePixel{};
    FrameCase regions;
    std::unique_ptr<GuardedImage> mask;
    Snapshot before;
};

} // namespace vfil::test

/// \file
/// A random picture under a filter whose result is known sample by sample, and the run that has to give it:
/// with regions, mask, channels, field rows, edge modes, and in place.
#pragma once

#include "support/framemodel.h"

#include <vfil/spatial.h>

#include <memory>

namespace vfil::test {

/// The formats that all filters take.
inline constexpr const GUID* kFilterFormats[] = {&PXFormat_RGBA32, &PXFormat_Mono8, &PXFormat_RGBA64,
                                                 &PXFormat_Mono16};

/// The position in 0 .. size - 1 that \p i stands for, -1 for the edge colour.
long EdgeIndex(vfILEdgeMode mode, long i, long size);

/// A picture that has pixels everywhere, by its edge mode.
struct EdgedPicture {
    Snapshot picture;
    vfILEdgeMode edgeMode;
    Pixel edgePixel;

    const Pixel& operator()(long x, long y) const
    {
        const long sx = EdgeIndex(edgeMode, x, picture.width);
        const long sy = EdgeIndex(edgeMode, y, picture.height);
        return sx < 0 || sy < 0 ? edgePixel : picture.At(sx, sy);
    }
};

/// filter(x, y) of every pixel.
template <class Filter>
Snapshot Filtered(const EdgedPicture& picture, Filter filter)
{
    Snapshot result = picture.picture;
    for (long y = 0; y < result.height; ++y)
        for (long x = 0; x < result.width; ++x)
            result.At(x, y) = filter(x, y);
    return result;
}

/// A sample of one channel's window, by its distance from the window's top-left corner.
using WindowSample = std::function<int(long x, long y)>;
/// What becomes of a window.
using WindowRule = std::function<int(const WindowSample&)>;

struct FilterScene {
    /// \param keys  How many values a sample may have: few make equal ones frequent. 0 for noise.
    FilterScene(std::mt19937& random, const GUID& id, long width, long height, int keys = 0);

    EdgedPicture Picture() const { return {Snapshot(input), edgeMode, edgePixel}; }
    void DropMask();
    /// Gives the filter all but its radius.
    void Arrange(vfILMonadicSpatialProc& filter);
    /// What the frame makes of the input and the filtered picture.
    Snapshot Expected(const Snapshot& filtered) const;
    Snapshot Expected(long radiusX, long radiusY, const WindowRule& rule) const;
    /// Runs the filter.
    void Check(vfILMonadicSpatialProc& filter, const Snapshot& expected);

    const FormatCase& format;
    GuardedImage input, separateOutput;
    GuardedImage* output;
    vfILEdgeMode edgeMode;
    Pixel edgePixel;
    bool isFixed = false; ///< results mix by the rule of sums in fixed point
    FrameCase regions;
    std::unique_ptr<GuardedImage> mask;

private:
    void PlaceRegions(std::mt19937& random);
    void PlaceMask(std::mt19937& random);
};

/// What Verify says: 0 or an error's code.
unsigned long CodeOf(vfILMonadicSpatialProc& filter);
/// Of the filter from a picture to itself.
unsigned long CodeOf(vfILMonadicSpatialProc& filter, GuardedImage& image);

/// An interrupt function that fires once, after so many polls.
inline int g_pollsToStop = 0;
inline int StopOnce()
{
    return --g_pollsToStop == 0;
}

} // namespace vfil::test

/// \file
/// A host picture, read once for a run: format, size, base, and the addresses of its rows.
#pragma once

#include <vfil/frame.h>

#include <initializer_list>

namespace vfil {

/// What a run knows of one host picture, and how to reach its rows.
struct ImageView : vfILPictureView {
    /// Asks the picture. Not explicit: a picture may stand where a view is wanted.
    ImageView(IPXImage* asked);
    ImageView(const vfILPictureView& view);

    bool HasPixels() const { return pixels != nullptr; }
    vfILBbox2l Box() const { return {0, 0, width, height}; }
    /// Bytes of a pixel in a row: the pixel bytes, without the alpha plane's.
    long RowPixelBytes() const { return format->alphaPlane ? 2 : pixelBytes; }
    std::ptrdiff_t RowBytes() const { return std::ptrdiff_t{width} * RowPixelBytes(); }
    /// The memory row of image row y.
    long MemoryRow(long y) const { return format->MemoryRow(height, y); }
    unsigned char* Pixel(long x, long memoryRow) const;
    /// The alpha plane's byte; null for a format without one.
    unsigned char* PlanePixel(long x, long memoryRow) const;
    /// The rows of a part whose first pixel is (x, memoryRow).
    vfILRowWalk Walk(long x, long memoryRow) const;
};

/// The view of a picture, which is not asked again when a known view is of the same one.
ImageView ViewOf(IPXImage* image, std::initializer_list<ImageView> known);

/// The format of a picture; all zero for null.
GUID FormatOf(IPXImage* image);

} // namespace vfil

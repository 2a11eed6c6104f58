/// \file
/// What the frames know of a run: its pictures, where their rows lie, its boxes, its memory.
#pragma once

#include <vfil/export.h>
#include <vfil/geometry.h>
#include <vfil/image.h>
#include <vfil/pxformat.h>

#include <cstddef>

/// What a run knows of one host picture, which it asks once. Empty, without pixels, for a null picture.
struct vfILPictureView {
    IPXImage* image = nullptr;
    const vfILFormatInfo* format = nullptr; ///< for a format of the host's own a record without properties
    long width = 0;
    long height = 0;
    long pixelBytes = 0;
    long channelBytes = 0;
    unsigned char* pixels = nullptr;
};

/// Where the rows of one picture lie in a run.
struct vfILRowWalk {
    unsigned char* first = nullptr; ///< first byte of the first treated row
    std::ptrdiff_t step = 0;        ///< bytes from a treated row to the next
    unsigned char* plane = nullptr; ///< the same for the alpha plane of a 4:2:2 format, null without one
    std::ptrdiff_t planeStep = 0;
};

/// Memory of one run, owned by its processor. A copy is empty, and so stays what is assigned to. When memory
/// is short, Allocate says so and nothing is thrown.
class VFIL_API vfILRunBuffer {
public:
    vfILRunBuffer() = default;
    vfILRunBuffer(const vfILRunBuffer& other);
    vfILRunBuffer& operator=(const vfILRunBuffer& other);
    ~vfILRunBuffer();
    /// Gives back what there was. The new memory is not set to anything, and begins with a line of the cache,
    /// so that no vector of it lies across two. Null when memory is short.
    unsigned char* Allocate(std::size_t bytes);
    void Free();

private:
    unsigned char* m_memory = nullptr;
};

/// What both pixel frames know of a run, from PrepareData to CleanData.
struct vfILPixelRun {
    vfILPictureView picture;    ///< the output
    vfILBbox2l validBox;        ///< the part of the ROI that has a source, in input coordinates
    vfILBbox2l maskedBox;       ///< the part of it that gets the operation
    vfILBbox2l targetBox;       ///< the ROI's size at the output offset
    vfILBbox2l shiftedValidBox; ///< validBox in output coordinates
    vfILBbox2l processBox;      ///< maskedBox in output coordinates
    long rows = 0;              ///< treated rows of processBox, after field selection
    bool streaming = false;     ///< the result is large and in no input's place: it may go around the cache
    vfILRowWalk output;
    vfILRowWalk mask;                ///< null without a mask picture
    long maskPixelStep = 0;          ///< bytes between mask samples
    unsigned char* source = nullptr; ///< pixels of validBox outside the mask, null when nothing of it remains
    unsigned long sourceStride = 0;
};

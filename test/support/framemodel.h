/// \file
/// What a run of a pixel frame makes of each output pixel, decided pixel by pixel from the boxes alone.
#pragma once

#include "support/guardedimage.h"

#include <vfil/frame.h>

#include <functional>
#include <string>

namespace vfil::test {

/// The pixels of a picture at one moment.
struct Snapshot {
    long width = 0;
    long height = 0;
    std::vector<Pixel> pixels;

    explicit Snapshot(const GuardedImage& image);
    const Pixel& At(long x, long y) const { return pixels[static_cast<std::size_t>(y * width + x)]; }
    Pixel& At(long x, long y) { return pixels[static_cast<std::size_t>(y * width + x)]; }
};

/// The regions of a run. \p maskBox lies in input coordinates, a mask sample is read from channel \p
/// maskChannel.
struct FrameCase {
    vfILBbox2l roi;
    vfILVector2l outputOffset;
    vfILVector2l inputOffset; ///< of B
    bool dominantB = false;
    vfILBbox2l maskBox{0, 0, 0x7FFFFFFF, 0x7FFFFFFF};
    const GuardedImage* mask = nullptr;
    std::size_t maskChannel = 0;
    unsigned long mode = VFIL_MODE_RGB;
    Pixel defaultPixel{};
};

/// What becomes of a pixel of A and one of B under a mask sample, -1 without a mask.
using PixelRule = std::function<Pixel(const Pixel& a, const Pixel& b, int mask)>;

/// The output after a run on two inputs. All inputs are read before anything is written.
Snapshot ModelRun(const FrameCase& run, const GuardedImage& a, const GuardedImage& b,
                  const GuardedImage& output, const PixelRule& rule);

/// Rows with this y are treated under the mode's field bits.
bool IsRowTreated(unsigned long mode, long y);

/// The class of a processor, for a failure to tell.
std::string ClassOf(const vfILProcessor& processor);

/// "" when the picture is as expected and wrote nothing around its pixels, else what differs first.
std::string Difference(const Snapshot& expected, const GuardedImage& actual);

} // namespace vfil::test

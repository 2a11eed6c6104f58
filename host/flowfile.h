/// \file
/// Files of vectors, as programs for optical flow write them (.flo).
#pragma once

#include <vfil/host/picturefile.h>

#include <vector>

namespace vfil::host {

/// Where each pixel of a picture goes, in pixels: x to the right and y up, row by row from the lowest.
struct Flow {
    long width = 0;
    long height = 0;
    std::vector<double> x;
    std::vector<double> y;
};

/// Reads "PIEH", width and height as 32-bit integers, and two 32-bit floats a pixel, x to the right and y
/// down, by rows from the top; the low byte of each comes first.
///
/// \throws FileError  The file is missing, unreadable, truncated or too long, none of that kind, or has a
///                    vector that is not known: NaN, infinite, or above 1e9.
Flow ReadFlow(const std::filesystem::path& path);

} // namespace vfil::host

/// \file
/// A colour as one pixel of a format, for constant fills.
#pragma once

#include <vfil/color.h>
#include <vfil/pxformat.h>

namespace vfil {

/// One pixel in a format's own layout; for 4:2:2 the four bytes of a two-pixel group, then the alpha.
struct ColourPixel {
    /// False for a format that no colour can be turned into.
    bool Set(const vfILFormatInfo& format, const vfILColor& color);

    alignas(8) unsigned char bytes[8] = {};
};

} // namespace vfil

/// \file
/// Filling parts of a picture that a run or a host names: the fills of the frames, which ask no picture.
#pragma once

#include "il/loops/frame/imageview.h"

namespace vfil {

/// How a fill goes about its rows.
struct FillRule {
    unsigned long mode; ///< its field bits choose the rows; with both set nothing is written
    bool useVectors;    ///< as in MoveRow
};

/// Fills a box with one pixel value. Does nothing for a null pixel or box, and for a box that is not inside
/// the picture.
///
/// \param pixel  In the picture's layout, as vfILProcessor::FillRegion has it.
void FillBox(const ImageView& picture, const vfILBbox2l& box, const void* pixel, const FillRule& rule);

/// Copies a block of pixels to a box. Does nothing when the box is null or not inside the picture, and when
/// the source, placed at \p offset, does not cover it.
///
/// \param premultiply  Multiply the colour of 8-bit four-channel pixels by their alpha.
void FillBox(const ImageView& picture, const vfILBbox2l& box, const ImageView& source, bool premultiply,
             const vfILVector2l& offset, const FillRule& rule);

// All of a box but what is excluded, which may be a null box.

void FillAround(const ImageView& picture, const vfILBbox2l& excluded, const vfILBbox2l& whole,
                const vfILColor& colour, const FillRule& rule);
/// \param pixel  As in FillBox.
void FillAround(const ImageView& picture, const vfILBbox2l& excluded, const vfILBbox2l& whole,
                const void* pixel, const FillRule& rule);
/// \param source  First pixel of a block of rows that covers \p whole, lowest y first, \p stride bytes apart.
///                Null does nothing.
void FillAround(const ImageView& picture, const vfILBbox2l& excluded, const vfILBbox2l& whole,
                const void* source, unsigned long stride, const FillRule& rule);

} // namespace vfil

/// \file
/// The rows of a part of a frame in turn, whichever order they have in memory.
#pragma once

#include "il/loops/frame/imageview.h"

#include <vfil/fields.h>

namespace vfil {

/// The image row that comes at some place from the first in memory on, in a split-field format from the
/// uppermost on; and the other way round.
inline long WalkedRow(const ImageView& picture, long at)
{
    return picture.format->topDown ? picture.height - 1 - at : at;
}

/// The place in that order of the first row of a part that is not empty.
inline long FirstWalked(const ImageView& picture, const vfILBbox2l& part)
{
    return WalkedRow(picture, part.GetOffsetY() + (picture.format->topDown ? part.GetSizeY() - 1 : 0));
}

/// The rows of a part of a picture that is not empty.
inline vfILFieldWalk WalkOf(const ImageView& picture, const vfILBbox2l& part)
{
    const long first = FirstWalked(picture, part);
    vfILFieldWalk walk;
    for (long row = 0; row < 2 && row < part.GetSizeY(); ++row)
        walk.first[row] =
            picture.Pixel(part.GetOffsetX(), picture.MemoryRow(WalkedRow(picture, first + row)));
    walk.step = picture.format->splitField ? picture.RowBytes() : 2 * picture.RowBytes();
    return walk;
}

/// The walk of rows that follow one another.
inline vfILFieldWalk WalkOf(unsigned char* rows, std::size_t rowBytes)
{
    return {{rows, rows + rowBytes}, 2 * static_cast<std::ptrdiff_t>(rowBytes)};
}

inline unsigned char* RowAt(const vfILFieldWalk& walk, long row)
{
    return walk.first[row & 1] + (row >> 1) * walk.step;
}

} // namespace vfil

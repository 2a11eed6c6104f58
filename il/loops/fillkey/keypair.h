/// \file
/// What the two directions between picture, and fill and key, share.
#pragma once

#include "il/loops/frame/imageview.h"

namespace vfil {

/// 4:2:2 pictures, and no others, may be fill or key.
inline bool IsSubsampled(const ImageView& view)
{
    return view.HasPixels() && view.format->subsampled;
}

/// True when the picture may be the fill or the key of one with an alpha plane: of its standard, without a
/// plane of its own.
inline bool IsOfStandard(const ImageView& fillOrKey, const ImageView& picture)
{
    return fillOrKey.format->model == picture.format->model && !fillOrKey.format->alphaPlane;
}

/// False for a host that gives its pixels other sizes than their format has: its rows are not where they are
/// looked for.
inline bool HasFormatBytes(const ImageView& view)
{
    return !view.HasPixels() || view.pixelBytes == view.format->pixelBytes;
}

/// The memory row of a fill or key that shows what a picture with an alpha plane has in its memory row
/// \p row: only the one side may be split in fields.
inline unsigned char* RowBeside(const ImageView& fillOrKey, long row)
{
    return fillOrKey.Pixel(0, fillOrKey.MemoryRow(fillOrKey.height - 1 - row));
}

} // namespace vfil

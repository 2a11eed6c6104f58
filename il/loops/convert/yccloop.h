/// \file
/// What the conversions between RGB and YCC share: where pixels and rows lie.
#pragma once

#include "il/loops/frame/imageview.h"

#include "il/rows/convert/yccparams.h"

#include <vfil/convert.h>

struct vfILRGBFormats {
    const wchar_t* className;
    const GUID& pixels32;
    const GUID& pixels24;
    bool words; ///< PXFormat_RGBA64 too

    bool Contains(const GUID& format) const
    {
        return format == pixels32 || format == pixels24 || (words && format == PXFormat_RGBA64);
    }

    /// Whether there is a conversion between an RGB and a YCC format, in either direction: deep samples go
    /// with deep ones, and an alpha plane with pixels of four bytes.
    bool Pairs(const GUID& rgb, const GUID& ycc) const
    {
        const vfILFormatInfo* format = vfILFindFormat(ycc);
        if (format == nullptr || !format->ycc) return false;
        if (rgb == PXFormat_RGBA64) return words && format->sampleBytes == 2;
        return format->sampleBytes == 1 && (rgb == pixels32 || (rgb == pixels24 && !format->alphaPlane));
    }
};

namespace vfil {

/// The byte layout of a run. \p alternate says that chroma comes before luma.
inline YccLayout LayoutOf(PXColorModel model, const GUID& rgb, int alternate)
{
    const vfILFormatInfo* format = vfILFindFormat(rgb);
    return {model == PXColorModel_YCC ? YccWeights::Bt601 : YccWeights::Bt709,
            format != nullptr && format->blueFirst, alternate != 0};
}

/// The weights of a YCC format: what is not BT.601 counts as BT.709.
inline PXColorModel WeightsOf(const GUID& format)
{
    return IsFormat601(format) != 0 ? PXColorModel_YCC : PXColorModel_YCC709;
}

/// Row \p row of the alpha plane of a walk.
inline unsigned char* PlaneRowAt(const vfILRowWalk& walk, long row)
{
    return walk.plane + row * walk.planeStep;
}

} // namespace vfil

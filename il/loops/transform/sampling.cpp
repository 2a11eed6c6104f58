/// \file
/// Sampling of pictures by the kernels.

#include "il/loops/transform/sampling.h"

#include "il/loops/frame/imageview.h"

#include <cstring>

namespace vfil {

SamplePixel SamplePixelOf(const vfILPictureView& picture)
{
    const bool words = picture.format->sampleBytes == 2;
    if (picture.format->channels == 1) return words ? SamplePixel::Word : SamplePixel::Byte;
    return words ? SamplePixel::FourWords : SamplePixel::FourBytes;
}

SampleSource SourceOf(const vfILPictureView& picture, const vfILTransformRun& run)
{
    SampleSource source{};
    source.pixels = picture.pixels;
    source.rowBytes = ImageView(picture).RowBytes();
    source.right = static_cast<std::int32_t>(picture.width);
    source.top = static_cast<std::int32_t>(picture.height);
    std::memcpy(source.defaultPixel, run.defaultPixel, sizeof source.defaultPixel);
    return source;
}

SampleSource SourceOf(const vfILTransformRun& run)
{
    SampleSource source = SourceOf(run.input, run);
    const vfILBbox2l& box = run.sourceBox;
    source.left = static_cast<std::int32_t>(box.GetOffsetX());
    source.bottom = static_cast<std::int32_t>(box.GetOffsetY());
    source.right = static_cast<std::int32_t>(box.GetOffsetX() + box.GetSizeX());
    source.top = static_cast<std::int32_t>(box.GetOffsetY() + box.GetSizeY());
    return source;
}

SampleForm SampleFormOf(vfILInterpolationType type)
{
    switch (type) {
    case VFIL_INTERP_NEAREST:
    case VFIL_INTERP_SUM_NEAREST:
        return SampleForm::Nearest;
    case VFIL_INTERP_BICUBIC:
    case VFIL_INTERP_SUM_BICUBIC:
        return SampleForm::Bicubic;
    default:
        return SampleForm::Bilinear;
    }
}

} // namespace vfil

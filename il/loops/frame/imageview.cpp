/// \file
/// A host picture, read once for a run.

#include "il/loops/frame/imageview.h"

namespace vfil {

namespace {

constexpr vfILFormatInfo kUnknownFormat{};

} // namespace

GUID FormatOf(IPXImage* image)
{
    GUID format{};
    if (image != nullptr) image->GetFormat(&format);
    return format;
}

ImageView::ImageView(IPXImage* asked)
{
    image = asked;
    format = vfILFindFormat(FormatOf(image));
    if (format == nullptr) format = &kUnknownFormat;
    if (image == nullptr) return;
    image->GetDimensions(&width, &height);
    image->GetPixelBytes(&pixelBytes);
    image->GetChannelBytes(&channelBytes);
    void* base = nullptr;
    image->GetPixelArray(&base);
    pixels = static_cast<unsigned char*>(base);
}

ImageView::ImageView(const vfILPictureView& view) : vfILPictureView(view)
{
    if (format == nullptr) format = &kUnknownFormat;
}

ImageView ViewOf(IPXImage* image, std::initializer_list<ImageView> known)
{
    for (const ImageView& view : known)
        if (view.image == image) return view;
    return image;
}

unsigned char* ImageView::Pixel(long x, long memoryRow) const
{
    return pixels + memoryRow * RowBytes() + std::ptrdiff_t{x} * RowPixelBytes();
}

unsigned char* ImageView::PlanePixel(long x, long memoryRow) const
{
    if (!format->alphaPlane) return nullptr;
    return pixels + RowBytes() * height + std::ptrdiff_t{memoryRow} * width + x;
}

vfILRowWalk ImageView::Walk(long x, long memoryRow) const
{
    return {Pixel(x, memoryRow), RowBytes(), PlanePixel(x, memoryRow),
            format->alphaPlane ? std::ptrdiff_t{width} : 0};
}

} // namespace vfil

/// \file
/// Filling parts of a picture.

#include "il/loops/frame/fills.h"

#include "il/loops/frame/colourpixel.h"
#include "il/loops/frame/regions.h"
#include "il/loops/frame/rowcopy.h"

#include "il/rows/pixarith.h"

namespace vfil {

namespace {

/// Calls treatRow(y) for the box's rows that the mode's field bits allow.
template <class TreatRow>
void ForEachFieldRow(unsigned long mode, const vfILBbox2l& box, TreatRow treatRow)
{
    const RowSelection rows = SelectField(mode, box.GetOffsetY(), box.GetSizeY());
    for (long i = 0; i < rows.count; ++i)
        treatRow(box.GetOffsetY() + rows.skip + i * rows.step);
}

void PremultiplyRow(const unsigned char* in, unsigned char* out, std::size_t pixels)
{
    for (std::size_t i = 0; i < pixels; ++i, in += 4, out += 4) {
        const unsigned char alpha = in[3];
        for (int c = 0; c < 3; ++c)
            out[c] = Arith<std::uint8_t>::Mult(in[c], alpha);
        out[3] = alpha;
    }
}

} // namespace

void FillBox(const ImageView& picture, const vfILBbox2l& box, const void* pixel, const FillRule& rule)
{
    if (!picture.HasPixels() || pixel == nullptr || box.IsNull() || !Covers(picture.Box(), box)) return;

    const auto* value = static_cast<const unsigned char*>(pixel);
    const long x = box.GetOffsetX();
    const auto width = static_cast<std::size_t>(box.GetSizeX());
    const std::size_t bytes = width * static_cast<std::size_t>(picture.RowPixelBytes());
    const std::size_t group =
        picture.format->subsampled ? 4 : static_cast<std::size_t>(picture.RowPixelBytes());
    unsigned char turned[4]; // a 4:2:2 group that starts with its second pixel
    if (picture.format->subsampled && (x & 1) != 0) {
        const unsigned char secondFirst[4] = {value[2], value[3], value[0], value[1]};
        value = static_cast<const unsigned char*>(std::memcpy(turned, secondFirst, sizeof turned));
    }
    ForEachFieldRow(rule.mode, box, [&](long y) {
        const vfILRowWalk out = picture.Walk(x, picture.MemoryRow(y));
        FillRow(out.first, bytes, value, group);
        if (out.plane != nullptr) std::memset(out.plane, static_cast<const unsigned char*>(pixel)[4], width);
    });
}

void FillBox(const ImageView& picture, const vfILBbox2l& box, const ImageView& source, bool premultiply,
             const vfILVector2l& offset, const FillRule& rule)
{
    if (!picture.HasPixels() || !source.HasPixels() || source.RowPixelBytes() != picture.RowPixelBytes())
        return;
    if (box.IsNull() || !Covers(picture.Box(), box) ||
        !Covers(Moved(source.Box(), offset[0], offset[1]), box))
        return;

    const bool multiply = premultiply && source.format->channels == 4 && source.pixelBytes == 4;
    const bool plane = picture.format->alphaPlane && source.format->alphaPlane;
    const long x = box.GetOffsetX();
    const auto width = static_cast<std::size_t>(box.GetSizeX());
    const std::size_t bytes = width * static_cast<std::size_t>(picture.RowPixelBytes());
    ForEachFieldRow(rule.mode, box, [&](long y) {
        const vfILRowWalk in = source.Walk(x - offset[0], source.MemoryRow(y - offset[1]));
        const vfILRowWalk out = picture.Walk(x, picture.MemoryRow(y));
        if (multiply) {
            PremultiplyRow(in.first, out.first, width);
        } else {
            MoveRow(rule.useVectors, in.first, out.first, bytes);
        }
        if (plane) MoveRow(rule.useVectors, in.plane, out.plane, width);
    });
}

void FillAround(const ImageView& picture, const vfILBbox2l& excluded, const vfILBbox2l& whole,
                const vfILColor& colour, const FillRule& rule)
{
    ColourPixel pixel;
    if (pixel.Set(*picture.format, colour)) FillAround(picture, excluded, whole, pixel.bytes, rule);
}

void FillAround(const ImageView& picture, const vfILBbox2l& excluded, const vfILBbox2l& whole,
                const void* pixel, const FillRule& rule)
{
    for (const vfILBbox2l& band : BandsAround(excluded, whole).band)
        FillBox(picture, band, pixel, rule);
}

void FillAround(const ImageView& picture, const vfILBbox2l& excluded, const vfILBbox2l& whole,
                const void* source, unsigned long stride, const FillRule& rule)
{
    if (source == nullptr || !picture.HasPixels() || !Covers(picture.Box(), whole)) return;
    for (const vfILBbox2l& band : BandsAround(excluded, whole).band) {
        if (band.IsNull()) continue;
        const std::ptrdiff_t pixelBytes = picture.RowPixelBytes();
        const auto bytes = static_cast<std::size_t>(band.GetSizeX() * pixelBytes);
        const auto* from =
            static_cast<const unsigned char*>(source) + (band.GetOffsetX() - whole.GetOffsetX()) * pixelBytes;
        ForEachFieldRow(rule.mode, band, [&](long y) {
            MoveRow(rule.useVectors, from + (y - whole.GetOffsetY()) * static_cast<std::ptrdiff_t>(stride),
                    picture.Pixel(band.GetOffsetX(), picture.MemoryRow(y)), bytes);
        });
    }
}

} // namespace vfil

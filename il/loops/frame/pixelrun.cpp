/// \file
/// What the two pixel frames share: how an input, the mask and the output of a run are laid out.

#include "il/loops/frame/pixelrun.h"

#include "il/rows/levels.h"

#include <new>

namespace vfil {

namespace {

/// Index of a mask channel in its pixel.
long ChannelIndex(PXImageChannel channel)
{
    switch (channel) {
    case PXImageChannel_GREEN:
        return 1;
    case PXImageChannel_BLUE:
        return 2;
    case PXImageChannel_ALPHA:
        return 3;
    default:
        return 0;
    }
}

/// Reads a box of the input into the buffer. Null when memory is short.
unsigned char* ReadToBuffer(IPXImage* image, const vfILBbox2l& box, long pixelBytes, vfILRunBuffer& buffer)
{
    unsigned char* bytes =
        buffer.Allocate(static_cast<std::size_t>(pixelBytes) * static_cast<std::size_t>(box.GetSizeX()) *
                        static_cast<std::size_t>(box.GetSizeY()));
    if (bytes == nullptr) return nullptr;
    image->ReadRegion(bytes, box.GetOffsetX(), box.GetOffsetY(), box.GetSizeX(), box.GetSizeY());
    return bytes;
}

/// Moves a walk onto the selected rows.
void MoveOnto(vfILRowWalk& walk, const RowSelection& rows)
{
    if (walk.first != nullptr) walk.first += rows.skip * walk.step;
    walk.step *= rows.step;
    if (walk.plane != nullptr) walk.plane += rows.skip * walk.planeStep;
    walk.planeStep *= rows.step;
}

} // namespace

bool PrepareInput(const InputPart& input, vfILPixelRun& run, vfILRowWalk& walk, vfILRunBuffer& buffer)
{
    const ImageView view(input.image);
    const vfILBbox2l& read = input.showsOutside ? input.valid : input.part;
    if (read.IsNull()) return true;

    // The rows that hold `read`, in the picture or in a copy of just that box.
    vfILRowWalk rows = view.Walk(read.GetOffsetX(), read.GetOffsetY());
    if (input.isOutput && !input.hazard) run.streaming = false; // what is written has just been read
    if (input.hazard) {
        rows.first = ReadToBuffer(input.image, read, view.pixelBytes, buffer);
        rows.step = std::ptrdiff_t{view.RowPixelBytes()} * read.GetSizeX();
        if (rows.first == nullptr) return false;
    }
    if (input.showsOutside) {
        run.source = rows.first;
        run.sourceStride = static_cast<unsigned long>(rows.step);
    }
    const long dx = input.part.GetOffsetX() - read.GetOffsetX();
    const long dy = input.part.GetOffsetY() - read.GetOffsetY();
    if (input.part.IsNull()) return true;
    walk = rows;
    walk.first += dy * rows.step + std::ptrdiff_t{dx} * view.RowPixelBytes();
    if (walk.plane != nullptr) walk.plane += dy * rows.planeStep + dx;
    return true;
}

bool PrepareMaskAndOutput(vfILPixelRun& run, IPXImage* output, IPXImage* mask, const vfILBbox2l& maskBox,
                          PXImageChannel channel)
{
    run.rows = run.processBox.GetSizeY();
    const ImageView to(output);
    if (!Covers(to.Box(), run.processBox)) return false;
    const std::int64_t bytes = std::int64_t{to.RowPixelBytes()} * run.processBox.GetSizeX() * run.rows;
    run.streaming = bytes >= static_cast<std::int64_t>(kStreamingBytes);
    run.output = to.Walk(run.processBox.GetOffsetX(), run.processBox.GetOffsetY());
    if (mask == nullptr) return true;

    const ImageView from(mask);
    const vfILBbox2l sampled = Moved(run.maskedBox, -maskBox.GetOffsetX(), -maskBox.GetOffsetY());
    if (!from.HasPixels() || !Covers(from.Box(), sampled) || from.channelBytes != to.channelBytes)
        return false;
    run.mask = from.Walk(sampled.GetOffsetX(), sampled.GetOffsetY());
    run.mask.first += ChannelIndex(channel) * from.channelBytes;
    run.maskPixelStep = from.pixelBytes;
    return true;
}

bool AreConnected(IPXImage* input, IPXImage* output)
{
    const ImageView from(input);
    const ImageView to(output);
    if (input == nullptr || !to.HasPixels()) return false;
    return from.Box().IsNull() || (from.HasPixels() && from.RowPixelBytes() == to.RowPixelBytes());
}

unsigned long WhyUnconnected(IPXImage* input, IPXImage* output, unsigned long noInput, unsigned long noPixels)
{
    if (output == nullptr) return 0x10002;
    if (!ImageView(output).HasPixels()) return 0x10003;
    if (input == nullptr) return noInput;
    return ImageView(input).HasPixels() ? 0x1000E : noPixels;
}

unsigned long WhyUnprepared(const vfILPixelRun& run, IPXImage* output, IPXImage* mask)
{
    const ImageView to(output);
    const ImageView from(mask);
    if (!Covers(to.Box(), run.processBox)) return 0x1000A;
    if (!from.HasPixels()) return 0x10005;
    return from.channelBytes != to.channelBytes ? 0x10009 : 0x10006;
}

void SelectRows(vfILPixelRun& run, unsigned long mode, IPXImage* output,
                std::initializer_list<vfILRowWalk*> inputs)
{
    const vfILBbox2l& box = run.processBox;
    const vfILFormatInfo& format = *ImageView(output).format;
    const RowSelection rows = SelectMemoryRows(mode, format, box.GetOffsetY(), box.GetSizeY());
    run.rows = rows.count;
    for (vfILRowWalk* input : inputs)
        MoveOnto(*input, rows);
    MoveOnto(run.mask, rows);
    MoveOnto(run.output, rows);
}

} // namespace vfil

unsigned char* vfILRunBuffer::Allocate(std::size_t bytes)
{
    m_bytes.reset(new (std::nothrow) unsigned char[bytes]);
    return m_bytes.get();
}

/// \file
/// What the two pixel frames share: how an input, the mask and the output of a run are laid out.

#include "il/loops/frame/pixelrun.h"

#include "il/rows/levels.h"

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

/// Reads a box of the input into the buffer, of which \p bytes tells the place.
InputState ReadToBuffer(const ImageView& view, const vfILBbox2l& box, vfILRunBuffer& buffer,
                        unsigned char*& bytes)
{
    bytes =
        buffer.Allocate(static_cast<std::size_t>(view.pixelBytes) * static_cast<std::size_t>(box.GetSizeX()) *
                        static_cast<std::size_t>(box.GetSizeY()));
    if (bytes == nullptr) return InputState::OutOfMemory;
    const HRESULT result =
        view.image->ReadRegion(bytes, box.GetOffsetX(), box.GetOffsetY(), box.GetSizeX(), box.GetSizeY());
    return FAILED(result) ? InputState::Unreadable : InputState::Ready;
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

InputState PrepareInput(const InputPart& input, vfILPixelRun& run, vfILRowWalk& walk, vfILRunBuffer& buffer)
{
    const ImageView& view = input.picture;
    const vfILBbox2l& read = input.showsOutside ? input.valid : input.part;
    if (read.IsNull()) return InputState::Ready;

    // The rows that hold `read`, in the picture or in a copy of just that box.
    vfILRowWalk rows = view.Walk(read.GetOffsetX(), read.GetOffsetY());
    if (input.isOutput && !input.hazard) run.streaming = false; // what is written has just been read
    if (input.hazard) {
        const InputState state = ReadToBuffer(view, read, buffer, rows.first);
        if (state != InputState::Ready) return state;
        rows.step = std::ptrdiff_t{view.RowPixelBytes()} * read.GetSizeX();
    }
    if (input.showsOutside) {
        run.source = rows.first;
        run.sourceStride = static_cast<unsigned long>(rows.step);
    }
    const long dx = input.part.GetOffsetX() - read.GetOffsetX();
    const long dy = input.part.GetOffsetY() - read.GetOffsetY();
    if (input.part.IsNull()) return InputState::Ready;
    walk = rows;
    walk.first += dy * rows.step + std::ptrdiff_t{dx} * view.RowPixelBytes();
    if (walk.plane != nullptr) walk.plane += dy * rows.planeStep + dx;
    return InputState::Ready;
}

bool PrepareMaskAndOutput(vfILPixelRun& run, const ImageView& output, const ImageView& mask,
                          const vfILBbox2l& maskBox, PXImageChannel channel)
{
    run.picture = output;
    run.rows = run.processBox.GetSizeY();
    if (!Covers(output.Box(), run.processBox)) return false;
    const std::int64_t bytes = std::int64_t{output.RowPixelBytes()} * run.processBox.GetSizeX() * run.rows;
    run.streaming = bytes >= static_cast<std::int64_t>(kStreamingBytes);
    run.output = output.Walk(run.processBox.GetOffsetX(), run.processBox.GetOffsetY());
    if (mask.image == nullptr) return true;

    const vfILBbox2l sampled = Moved(run.maskedBox, -maskBox.GetOffsetX(), -maskBox.GetOffsetY());
    if (!mask.HasPixels() || !Covers(mask.Box(), sampled) || mask.channelBytes != output.channelBytes)
        return false;
    run.mask = mask.Walk(sampled.GetOffsetX(), sampled.GetOffsetY());
    run.mask.first += ChannelIndex(channel) * mask.channelBytes;
    run.maskPixelStep = mask.pixelBytes;
    return true;
}

bool AreConnected(const ImageView& input, const ImageView& output)
{
    if (input.image == nullptr || !output.HasPixels()) return false;
    return input.Box().IsNull() || (input.HasPixels() && input.RowPixelBytes() == output.RowPixelBytes());
}

unsigned long WhyUnconnected(const ImageView& input, const ImageView& output, unsigned long noInput,
                             unsigned long noPixels)
{
    if (output.image == nullptr) return 0x10002;
    if (!output.HasPixels()) return 0x10003;
    if (input.image == nullptr) return noInput;
    return input.HasPixels() ? 0x1000E : noPixels;
}

unsigned long WhyUnprepared(const vfILPixelRun& run, const ImageView& mask)
{
    const ImageView output(run.picture);
    if (!Covers(output.Box(), run.processBox)) return 0x1000A;
    if (!mask.HasPixels()) return 0x10005;
    return mask.channelBytes != output.channelBytes ? 0x10009 : 0x10006;
}

void SelectRows(vfILPixelRun& run, unsigned long mode, std::initializer_list<vfILRowWalk*> inputs)
{
    const vfILBbox2l& box = run.processBox;
    const RowSelection rows = SelectMemoryRows(mode, *run.picture.format, box.GetOffsetY(), box.GetSizeY());
    run.rows = rows.count;
    for (vfILRowWalk* input : inputs)
        MoveOnto(*input, rows);
    MoveOnto(run.mask, rows);
    MoveOnto(run.output, rows);
}

void FillUntreated(const vfILPixelRun& run, const vfILColor& defaultColour, const FillRule& rule)
{
    FillAround(run.picture, run.shiftedValidBox, run.targetBox, defaultColour, rule);
    FillAround(run.picture, run.processBox, run.shiftedValidBox, run.source, run.sourceStride, rule);
}

} // namespace vfil

/// \file
/// The frame of the 4:2:2 keyers.
#include "il/loops/keyer/videokey.h"

#include "il/loops/frame/imageview.h"

#include <algorithm>

namespace vfil {

KeyedColumns WholeMacropixels(const vfILKeyerCrop& crop, long width)
{
    const long even = width & ~1L;
    const long left = std::clamp(crop.leftSkip, 0L, width) & ~1L;
    const long right = std::min(std::clamp(crop.rightSkip, 0L, width) & ~1L, even - left);
    return {left, (even - left - right) / 2, right, false, false};
}

KeyedColumns HalvedMacropixels(const vfILKeyerCrop& crop, long width)
{
    long left = std::clamp(crop.leftSkip, 0L, width);
    long right = std::clamp(crop.rightSkip, 0L, width - left);
    long keyed = width - left - right;
    // Of nothing no half is left either.
    if (keyed == 0) return {width, 0, 0, false, false};
    const bool head = (left & 1) != 0;
    if (head) {
        --left;
        ++keyed;
    }
    const bool tail = (keyed & 1) != 0 && right > 0;
    if (tail) {
        --right;
        ++keyed;
    } else if ((keyed & 1) != 0) {
        ++right;
        --keyed;
    }
    return {left, keyed / 2, right, head, tail};
}

const vfILFormatInfo* VideoFormatOf(IPXImage* image)
{
    const vfILFormatInfo* format = vfILFindFormat(FormatOf(image));
    return format != nullptr && format->subsampled ? format : nullptr;
}

bool IsKeyableVideo(const GUID& format)
{
    const vfILFormatInfo* info = vfILFindFormat(format);
    return info != nullptr && info->subsampled && !info->alphaPlane;
}

void PassThrough(const VideoKeyRun& run, const unsigned char* b, unsigned char* out, long pixels)
{
    const auto bytes = static_cast<std::size_t>(2 * pixels);
    if (run.which.result == KeyResult::Matte) {
        const unsigned char black[] = {16, 128, 16};
        FillRow(out, bytes, black + (run.which.chromaFirst ? 1 : 0), 2);
    } else {
        MoveRow(run.which.useVectors, b, out, bytes, run.which.streaming);
    }
}

} // namespace vfil

/// \file
/// A drawn scene that moves, and frames of it whose two fields are of one moment or of two.
#pragma once

#include <vfil/host/video.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <filesystem>

namespace vfil {

/// Detail in all directions around grey, moving by so many pixels a field.
struct FieldScene {
    double right = 0;
    double down = 0;

    /// 0 .. 255
    double At(long x, long fromTop, long time) const
    {
        const double u = static_cast<double>(x) - right * static_cast<double>(time);
        const double v = static_cast<double>(fromTop) - down * static_cast<double>(time);
        return 128 + 40 * std::sin(0.07 * u + 0.05 * v) + 30 * std::sin(0.31 * u - 0.21 * v) +
               25 * std::sin(0.17 * u + 0.43 * v + 1);
    }
};

/// The field at which a row of a frame is taken; rows count from the top.
inline long TimeOfRow(long frame, long fromTop, host::FieldOrder order)
{
    if (order == host::FieldOrder::Progressive) return 2 * frame;
    const bool isBottom = fromTop % 2 != 0;
    return 2 * frame + (isBottom == (order == host::FieldOrder::TopFirst) ? 1 : 0);
}

/// A grey picture of any format, by its value 0 .. 255 at a column and a row from the top.
template <class Value>
host::PicturePtr DrawGrey(const vfILGuid& format, long width, long height, Value value)
{
    const host::PicturePtr picture = host::Picture::Create(format, width, height);
    const vfILFormatInfo& info = picture->FormatInfo();
    const auto sample = static_cast<std::size_t>(info.sampleBytes);
    const std::size_t pixel = info.subsampled ? 2 : static_cast<std::size_t>(info.pixelBytes);
    for (long y = 0; y < height; ++y) {
        std::uint8_t* row = picture->Row(y);
        std::memset(row, info.ycc ? 128 : 255, picture->RowBytes());
        for (long x = 0; x < width; ++x) {
            const auto byte =
                static_cast<std::uint8_t>(std::lround(std::clamp<double>(value(x, height - 1 - y), 0, 255)));
            // Luma, or red, green and blue; words repeat their byte.
            const std::size_t first = info.ycc && (info.chromaFirst || info.alphaPlane) ? sample : 0;
            const std::size_t count = info.ycc || pixel == sample ? sample : 3 * sample;
            std::memset(row + static_cast<std::size_t>(x) * pixel + first, byte, count);
        }
    }
    return picture;
}

/// A frame of a scene.
inline host::PicturePtr DrawFrame(const FieldScene& scene, const vfILGuid& format, long width, long height,
                                  long frame, host::FieldOrder order)
{
    return DrawGrey(format, width, height,
                    [&](long x, long row) { return scene.At(x, row, TimeOfRow(frame, row, order)); });
}

/// Writes a lossless clip of a scene in 4:2:2.
inline void WriteScene(const std::filesystem::path& path, const FieldScene& scene, long width, long height,
                       long frames, host::FieldOrder order, host::FieldOrder said)
{
    host::VideoSettings settings;
    settings.format = PXFormat_YUV422_601;
    settings.width = width;
    settings.height = height;
    settings.codec = "ffv1";
    settings.fieldOrder = said;
    host::VideoWriter writer(path, settings);
    for (long i = 0; i < frames; ++i)
        writer.Write(*DrawFrame(scene, settings.format, width, height, i, order));
    writer.Finish();
}

} // namespace vfil

/// \file
/// Keys of 4:2:2 by FFmpeg, on one thread: a key that writes alpha in place, and the same under an overlay.
#include "bench/peers/avgraph.h"

#include <array>
#include <map>
#include <memory>

namespace bench {

namespace {

/// Y, Cb, Cr and alpha of 4:2:2, one behind the other.
std::vector<std::uint8_t> Planes(const vfil::host::Picture& packed)
{
    std::vector<std::uint8_t> planes(3 * kPixels, 255);
    const std::uint8_t* in = packed.Pixels();
    for (std::size_t i = 0; i < kPixels / 2; ++i, in += 4) {
        planes[2 * i] = in[0];
        planes[2 * i + 1] = in[2];
        planes[kPixels + i] = in[1];
        planes[kPixels * 3 / 2 + i] = in[3];
    }
    return planes;
}

AvPicture PictureOf(std::vector<std::uint8_t>& planes)
{
    constexpr int kRow = kWidth;
    std::uint8_t* const first = planes.data();
    return {{first, first + kPixels, first + kPixels * 3 / 2, first + 2 * kPixels},
            {kRow, kRow / 2, kRow / 2, kRow}};
}

/// The pictures of a frame as planes, made when they are first asked for.
class VideoPlanes {
public:
    struct Both {
        std::vector<std::uint8_t> plate, back;
    };
    Both& Of(const Frame& frame)
    {
        Both& both = m_planes[&frame];
        if (both.plate.empty()) both = {Planes(*frame.videoPlate), Planes(frame.In(PXFormat_YCC422_601))};
        return both;
    }

private:
    std::map<const Frame*, Both> m_planes;
};

void AddAvVideoKeyers()
{
    const std::string hue = "chromakey=color=0x28A54B:similarity=0.15:blend=0.1";
    const auto planes = std::make_shared<VideoPlanes>();
    const auto add = [&](const char* operation, const char* who, const std::string& filter, bool hasBack) {
        const auto graph = std::make_shared<AvGraph>(filter, AV_PIX_FMT_YUVA422P,
                                                     hasBack ? AV_PIX_FMT_YUV422P : AV_PIX_FMT_NONE);
        Add(operation, who, [=](const Frame& frame) {
            VideoPlanes::Both& both = planes->Of(frame);
            if (hasBack)
                graph->Run(PictureOf(both.plate), false, PictureOf(both.back));
            else
                graph->Run(PictureOf(both.plate), false);
        });
    };
    add(kVideoHueMatte, "FFmpeg, in place", hue, false);
    add(kVideoHue, "FFmpeg", "[in]" + hue + "[keyed];[back][keyed]overlay=format=yuv422", true);
    add(kVideoLuma, "FFmpeg",
        "[in]lumakey=threshold=0.5:tolerance=0.2:softness=0.2[keyed];[back][keyed]overlay=format=yuv422",
        true);
}

const Source s_source(AddAvVideoKeyers);

} // namespace
} // namespace bench

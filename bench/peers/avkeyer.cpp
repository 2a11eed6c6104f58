/// \file
/// Keys by FFmpeg: alpha alone, written in place, where ours write whole pixels of another picture.
#include "bench/peers/avgraph.h"

#include <map>
#include <memory>

namespace bench {

namespace {

/// A plane of luma to read and one of alpha to write for each frame, made when it is first asked for.
class LumaPlanes {
public:
    std::uint8_t* Of(const Frame& frame)
    {
        std::vector<std::uint8_t>& planes = m_planes[&frame];
        if (planes.empty())
            planes.assign(frame.photoPlanes->Pixels(), frame.photoPlanes->Pixels() + 4 * kPixels);
        return planes.data();
    }

private:
    std::map<const Frame*, std::vector<std::uint8_t>> m_planes;
};

void AddAvKeyers()
{
    const auto hue =
        std::make_shared<AvGraph>("colorkey=color=0x28A54B:similarity=0.15:blend=0.1", AV_PIX_FMT_RGBA);
    Add(kKeyHue, "FFmpeg, in place", [hue](const Frame& frame) {
        hue->Run({{frame.plate->Pixels()}, {static_cast<int>(4 * kWidth)}}, false);
    });
    const auto luma =
        std::make_shared<AvGraph>("lumakey=threshold=0.5:tolerance=0.2:softness=0.2", AV_PIX_FMT_YUVA444P);
    Add(kKeyLuma, "FFmpeg, in place", [luma, planes = std::make_shared<LumaPlanes>()](const Frame& frame) {
        luma->Run(AvPlanes(planes->Of(frame)), false);
    });
}

const Source s_source(AddAvKeyers);

} // namespace
} // namespace bench

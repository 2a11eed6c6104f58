/// \file
/// Deinterlacing of 4:2:2 to two pictures a frame by FFmpeg, on one thread. Its filters look at the frames
/// before and behind: a frame's pictures come when the next one is there.
#include "bench/deinterlace.h"
#include "bench/peers/avgraph.h"

#include <memory>

namespace bench {

namespace {

void AddAvFields()
{
    const auto add = [](const char* who, const std::string& filter) {
        const auto graph = std::make_shared<AvGraph>(filter, AV_PIX_FMT_YUV422P);
        Add(Named(kAdaptive, kVideo), who, [graph](const Frame&) {
            // The bytes of a packed picture as three planes: the work is the same on any.
            std::uint8_t* const first = NextFieldFrame(kVideo).in->Pixels();
            constexpr int kRow = kWidth;
            graph->RunLate({{first, first + kPixels, first + kPixels * 3 / 2}, {kRow, kRow / 2, kRow / 2}});
        });
    };
    add("FFmpeg w3fdif", "w3fdif=mode=field:parity=tff:filter=complex");
    add("FFmpeg w3fdif simple", "w3fdif=mode=field:parity=tff:filter=simple");
    add("FFmpeg yadif", "yadif=mode=send_field:parity=tff");
    add("FFmpeg bwdif", "bwdif=mode=send_field:parity=tff");
}

const Source s_source(AddAvFields);

} // namespace
} // namespace bench

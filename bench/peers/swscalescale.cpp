/// \file
/// Scales by swscale.
#include "bench/scales.h"

#include <memory>

extern "C" {
#include <libswscale/swscale.h>
}

namespace bench {

namespace {

int FlagsOf(ScaleFilter filter)
{
    switch (filter) {
    case ScaleFilter::Nearest:
        return SWS_POINT;
    case ScaleFilter::Bilinear:
        return SWS_BILINEAR;
    case ScaleFilter::Bicubic:
        return SWS_BICUBIC;
    default:
        return SWS_AREA;
    }
}

void AddSwscaleScale(const Scale& scale, const Layout& layout, AVPixelFormat pixels, int pixelBytes)
{
    const std::shared_ptr<SwsContext> context(
        sws_getContext(scale.InWidth(), scale.InHeight(), pixels, scale.OutWidth(), scale.OutHeight(), pixels,
                       FlagsOf(scale.filter), nullptr, nullptr, nullptr),
        sws_freeContext);
    if (!context) return;
    Add(Named(scale.name, layout), "swscale", [=, format = layout.format](const Frame& frame) {
        const std::uint8_t* const in[] = {frame.Photo(format).Pixels(), nullptr, nullptr, nullptr};
        std::uint8_t* const out[] = {frame.Out(format).Pixels(), nullptr, nullptr, nullptr};
        const int stride[] = {static_cast<int>(kWidth) * pixelBytes, 0, 0, 0};
        sws_scale(context.get(), in, stride, 0, scale.InHeight(), out, stride);
    });
}

void AddSwscaleScales()
{
    for (const Scale& scale : kScales) {
        AddSwscaleScale(scale, kRgba8, AV_PIX_FMT_RGBA, 4);
        AddSwscaleScale(scale, kRgba16, AV_PIX_FMT_RGBA64LE, 8);
        AddSwscaleScale(scale, kMono8, AV_PIX_FMT_GRAY8, 1);
    }
}

const Source s_source(AddSwscaleScales);

} // namespace
} // namespace bench

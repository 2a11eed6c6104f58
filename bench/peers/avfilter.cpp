/// \file
/// Filters by FFmpeg, on one thread. They take a plane a channel, which the frames have ready, and write into
/// buffers that the filter's pool keeps. Nothing is copied.
#include "bench/filters.h"
#include "bench/peers/avgraph.h"

#include <memory>

namespace bench {

namespace {

AVPixelFormat PixelsOf(const Layout& layout)
{
    return layout.format == kMono8.format ? AV_PIX_FMT_GRAY8 : AV_PIX_FMT_GBRAP;
}

void AddGraph(const std::string& operation, const std::string& filter, const Layout& layout,
              const char* who = "FFmpeg")
{
    const AVPixelFormat pixels = PixelsOf(layout);
    Add(operation, who, [=, graph = std::make_shared<AvGraph>(filter, pixels)](const Frame& frame) {
        std::uint8_t* photo =
            (pixels == AV_PIX_FMT_GRAY8 ? frame.Photo(layout.format) : *frame.photoPlanes).Pixels();
        // The picture stays ours: no filter may work in place.
        graph->Run(AvPlanes(photo), true);
    });
}

std::string Box(const std::string& radius, const Layout& layout)
{
    std::string luma = "boxblur=luma_power=1:luma_radius=" + radius;
    if (layout.format == kMono8.format) return luma;
    return luma + ":chroma_power=1:chroma_radius=" + radius + ":alpha_power=1:alpha_radius=" + radius;
}

void AddAvFilters()
{
    for (const Layout& layout : {kRgba8, kMono8}) {
        for (const int radius : kBlurRadii) {
            const std::string text = std::to_string(radius);
            AddGraph(Sized(kBox, radius, layout), Box(text, layout), layout);
            // A recursion of all samples, of the same sigma: it does not end at the radius.
            AddGraph(Sized(kGauss, radius, layout), "gblur=sigma=" + text, layout, "FFmpeg, recursive");
        }
        for (const int radius : kMedianRadii)
            AddGraph(Sized(kMedian, radius, layout), "median=radius=" + std::to_string(radius), layout);
        AddGraph(Sized(kErode, 1, layout), "erosion", layout);
        AddGraph(Sized(kDilate, 1, layout), "dilation", layout);
        // The root of the sum of squares, and middle weights twice as much as the corners.
        AddGraph(Named(kSobel, layout), "sobel", layout);
    }
}

const Source s_source(AddAvFilters);

} // namespace
} // namespace bench

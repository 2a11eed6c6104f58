/// \file
/// Filters by FFmpeg, on one thread. They take a plane a channel, which the frames have ready, and write into
/// buffers that the filter's pool keeps. Nothing is copied.
#include "bench/filters.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/pixdesc.h>
}

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace bench {

namespace {

void Require(bool done, const std::string& filter)
{
    if (done) return;
    std::fprintf(stderr, "FFmpeg refused %s\n", filter.c_str());
    std::abort();
}

AVPixelFormat PixelsOf(const Layout& layout)
{
    return layout.format == kMono8.format ? AV_PIX_FMT_GRAY8 : AV_PIX_FMT_GBRAP;
}

/// One filter between a source and a sink.
class Graph {
public:
    Graph(const std::string& filter, const Layout& layout)
        : m_pixels(PixelsOf(layout)), m_format(layout.format), m_graph(avfilter_graph_alloc()),
          m_in(av_frame_alloc()), m_out(av_frame_alloc())
    {
        m_graph->nb_threads = 1;
        const std::string text =
            "buffer@in=video_size=" + std::to_string(kWidth) + "x" + std::to_string(kHeight) +
            ":time_base=1/25:pix_fmt=" + av_get_pix_fmt_name(m_pixels) + "," + filter + ",buffersink@out";
        AVFilterInOut* inputs = nullptr;
        AVFilterInOut* outputs = nullptr;
        Require(avfilter_graph_parse2(m_graph, text.c_str(), &inputs, &outputs) >= 0 &&
                    avfilter_graph_config(m_graph, nullptr) >= 0,
                filter);
        m_source = avfilter_graph_get_filter(m_graph, "buffer@in");
        m_sink = avfilter_graph_get_filter(m_graph, "buffersink@out");
        Require(m_source != nullptr && m_sink != nullptr && m_graph->nb_filters == 3, filter);
    }
    Graph(const Graph&) = delete;
    Graph& operator=(const Graph&) = delete;
    ~Graph()
    {
        av_frame_free(&m_in);
        av_frame_free(&m_out);
        avfilter_graph_free(&m_graph);
    }

    void Run(const Frame& frame)
    {
        vfil::host::Picture& photo =
            m_pixels == AV_PIX_FMT_GRAY8 ? frame.Photo(m_format) : *frame.photoPlanes;
        m_in->format = m_pixels;
        m_in->width = kWidth;
        m_in->height = kHeight;
        m_in->pts = m_count++;
        // The picture stays ours: nothing frees it, and no filter may work in place.
        m_in->buf[0] = av_buffer_create(
            photo.Pixels(), photo.Bytes(), [](void*, std::uint8_t*) {}, nullptr, AV_BUFFER_FLAG_READONLY);
        for (int i = 0; i < av_pix_fmt_count_planes(m_pixels); ++i) {
            m_in->data[i] = photo.Pixels() + static_cast<std::size_t>(i) * kPixels;
            m_in->linesize[i] = kWidth;
        }
        Require(av_buffersrc_add_frame(m_source, m_in) >= 0 && av_buffersink_get_frame(m_sink, m_out) >= 0,
                "a frame");
        av_frame_unref(m_out);
    }

private:
    AVPixelFormat m_pixels;
    GUID m_format;
    AVFilterGraph* m_graph;
    AVFrame* m_in;
    AVFrame* m_out;
    AVFilterContext* m_source = nullptr;
    AVFilterContext* m_sink = nullptr;
    std::int64_t m_count = 0;
};

void AddGraph(const std::string& operation, const std::string& filter, const Layout& layout,
              const char* who = "FFmpeg")
{
    Add(operation, who,
        [graph = std::make_shared<Graph>(filter, layout)](const Frame& frame) { graph->Run(frame); });
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

/// \file
/// One filter of FFmpeg on pictures of ours, on one thread. Nothing is copied on the way in, and the result
/// goes into buffers that the filter's pool keeps.
#pragma once

#include "bench/frames.h"

extern "C" {
#include <libavfilter/avfilter.h>
#include <libavfilter/buffersink.h>
#include <libavfilter/buffersrc.h>
#include <libavutil/pixdesc.h>
}

#include <array>

namespace bench {

/// Where the planes of a picture are, and the bytes of a row of each.
struct AvPicture {
    std::array<std::uint8_t*, 4> data{};
    std::array<int, 4> rowBytes{};
};

/// Planes of one byte a pixel of a frame, one below the other.
inline AvPicture AvPlanes(std::uint8_t* first)
{
    constexpr int kRow = kWidth;
    return {{first, first + kPixels, first + 2 * kPixels, first + 3 * kPixels}, {kRow, kRow, kRow, kRow}};
}

/// One filter between a source and a sink.
class AvGraph {
public:
    AvGraph(const std::string& filter, AVPixelFormat pixels)
        : m_pixels(pixels), m_graph(avfilter_graph_alloc()), m_in(av_frame_alloc()), m_out(av_frame_alloc())
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
    AvGraph(const AvGraph&) = delete;
    AvGraph& operator=(const AvGraph&) = delete;
    ~AvGraph()
    {
        av_frame_free(&m_in);
        av_frame_free(&m_out);
        avfilter_graph_free(&m_graph);
    }

    /// \param readOnly  False lets a filter work in place, if it can. Nobody frees the picture either way.
    void Run(const AvPicture& picture, bool readOnly)
    {
        m_in->format = m_pixels;
        m_in->width = kWidth;
        m_in->height = kHeight;
        m_in->pts = m_count++;
        m_in->buf[0] = av_buffer_create(
            picture.data[0], kPixels, [](void*, std::uint8_t*) {}, nullptr,
            readOnly ? AV_BUFFER_FLAG_READONLY : 0);
        for (std::size_t i = 0; i < static_cast<std::size_t>(av_pix_fmt_count_planes(m_pixels)); ++i) {
            m_in->data[i] = picture.data[i];
            m_in->linesize[i] = picture.rowBytes[i];
        }
        Require(av_buffersrc_add_frame(m_source, m_in) >= 0 && av_buffersink_get_frame(m_sink, m_out) >= 0,
                "a frame");
        av_frame_unref(m_out);
    }

private:
    static void Require(bool done, const std::string& filter)
    {
        if (done) return;
        std::fprintf(stderr, "FFmpeg refused %s\n", filter.c_str());
        std::abort();
    }

    AVPixelFormat m_pixels;
    AVFilterGraph* m_graph;
    AVFrame* m_in;
    AVFrame* m_out;
    AVFilterContext* m_source = nullptr;
    AVFilterContext* m_sink = nullptr;
    std::int64_t m_count = 0;
};

} // namespace bench

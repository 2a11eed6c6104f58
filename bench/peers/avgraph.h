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

/// A filter between a source and a sink; or filters with a second source, which text calls [in] and [back].
class AvGraph {
public:
    AvGraph(const std::string& filter, AVPixelFormat pixels, AVPixelFormat backPixels = AV_PIX_FMT_NONE)
        : m_graph(avfilter_graph_alloc()), m_out(av_frame_alloc())
    {
        m_graph->nb_threads = 1;
        const bool hasBack = backPixels != AV_PIX_FMT_NONE;
        const std::string text =
            hasBack ? Source("in", pixels) + "[in];" + Source("back", backPixels) + "[back];" + filter
                    : Source("in", pixels) + "," + filter;
        AVFilterInOut* inputs = nullptr;
        AVFilterInOut* outputs = nullptr;
        Require(avfilter_graph_parse2(m_graph, (text + ",buffersink@out").c_str(), &inputs, &outputs) >= 0 &&
                    avfilter_graph_config(m_graph, nullptr) >= 0,
                filter);
        m_input = {avfilter_graph_get_filter(m_graph, "buffer@in"), pixels, av_frame_alloc()};
        if (hasBack)
            m_back = {avfilter_graph_get_filter(m_graph, "buffer@back"), backPixels, av_frame_alloc()};
        m_sink = avfilter_graph_get_filter(m_graph, "buffersink@out");
        // No conversion came between.
        Require(m_input.source != nullptr && m_sink != nullptr && m_graph->nb_filters == (hasBack ? 5 : 3),
                filter);
    }
    AvGraph(const AvGraph&) = delete;
    AvGraph& operator=(const AvGraph&) = delete;
    ~AvGraph()
    {
        av_frame_free(&m_input.frame);
        av_frame_free(&m_back.frame);
        av_frame_free(&m_out);
        avfilter_graph_free(&m_graph);
    }

    /// \param readOnly  False lets a filter work in place, if it can. Nobody frees the picture either way.
    void Run(const AvPicture& picture, bool readOnly)
    {
        Put(m_input, picture, readOnly);
        Take();
    }

    /// \param back  What the second source gives.
    void Run(const AvPicture& picture, bool readOnly, const AvPicture& back)
    {
        Put(m_back, back, true);
        Put(m_input, picture, readOnly);
        Take();
    }

    /// For a filter whose results come later, or several at a time: takes all there are.
    void RunLate(const AvPicture& picture)
    {
        Put(m_input, picture, true);
        ++m_count;
        while (av_buffersink_get_frame(m_sink, m_out) >= 0)
            av_frame_unref(m_out);
    }

private:
    struct Input {
        AVFilterContext* source = nullptr;
        AVPixelFormat pixels = AV_PIX_FMT_NONE;
        AVFrame* frame = nullptr;
    };

    static std::string Source(const std::string& name, AVPixelFormat pixels)
    {
        return "buffer@" + name + "=video_size=" + std::to_string(kWidth) + "x" + std::to_string(kHeight) +
               ":time_base=1/25:pix_fmt=" + av_get_pix_fmt_name(pixels);
    }

    void Put(const Input& input, const AvPicture& picture, bool readOnly)
    {
        AVFrame* const frame = input.frame;
        frame->format = input.pixels;
        frame->width = kWidth;
        frame->height = kHeight;
        frame->pts = m_count;
        frame->buf[0] = av_buffer_create(
            picture.data[0], kPixels, [](void*, std::uint8_t*) {}, nullptr,
            readOnly ? AV_BUFFER_FLAG_READONLY : 0);
        for (std::size_t i = 0; i < static_cast<std::size_t>(av_pix_fmt_count_planes(input.pixels)); ++i) {
            frame->data[i] = picture.data[i];
            frame->linesize[i] = picture.rowBytes[i];
        }
        Require(av_buffersrc_add_frame(input.source, frame) >= 0, "a frame");
    }

    void Take()
    {
        ++m_count;
        Require(av_buffersink_get_frame(m_sink, m_out) >= 0, "a frame");
        av_frame_unref(m_out);
    }

    static void Require(bool done, const std::string& filter)
    {
        if (done) return;
        std::fprintf(stderr, "FFmpeg refused %s\n", filter.c_str());
        std::abort();
    }

    AVFilterGraph* m_graph;
    AVFrame* m_out;
    Input m_input;
    Input m_back;
    AVFilterContext* m_sink = nullptr;
    std::int64_t m_count = 0;
};

} // namespace bench

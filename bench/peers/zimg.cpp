/// \file
/// The 16-bit matrix by zimg. It works on planes, which are laid here over the same memory: three channels of
/// our four.
#include "bench/frames.h"

#include <cstdlib>
#include <memory>

#include <zimg.h>

namespace bench {

namespace {

zimg_image_format PlanesOf16Bits(zimg_color_family_e family, zimg_matrix_coefficients_e matrix,
                                 zimg_pixel_range_e range)
{
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = kWidth;
    format.height = kHeight;
    format.pixel_type = ZIMG_PIXEL_WORD;
    format.color_family = family;
    format.matrix_coefficients = matrix;
    format.pixel_range = range;
    return format;
}

void AddZimg()
{
    const zimg_image_format rgb = PlanesOf16Bits(ZIMG_COLOR_RGB, ZIMG_MATRIX_RGB, ZIMG_RANGE_FULL);
    const zimg_image_format ycc = PlanesOf16Bits(ZIMG_COLOR_YUV, ZIMG_MATRIX_BT470_BG, ZIMG_RANGE_LIMITED);
    const std::shared_ptr<zimg_filter_graph> graph(zimg_filter_graph_build(&rgb, &ycc, nullptr),
                                                   zimg_filter_graph_free);
    if (!graph) return;
    std::size_t bytes = 0;
    zimg_filter_graph_get_tmp_size(graph.get(), &bytes);
    const std::shared_ptr<void> scratch(std::aligned_alloc(64, (bytes + 63) / 64 * 64), std::free);
    Add(kToYcca64, "zimg", [graph, scratch](const Frame& frame) {
        constexpr std::size_t plane = kPixels * 2;
        zimg_image_buffer_const in = {ZIMG_API_VERSION, {}};
        zimg_image_buffer out = {ZIMG_API_VERSION, {}};
        for (std::size_t i = 0; i < 3; ++i) {
            in.plane[i] = {frame.In(PXFormat_RGBA64).Pixels() + i * plane, kWidth * 2, ZIMG_BUFFER_MAX};
            out.plane[i] = {frame.Out(PXFormat_YCCA64).Pixels() + i * plane, kWidth * 2, ZIMG_BUFFER_MAX};
        }
        zimg_filter_graph_process(graph.get(), &in, &out, scratch.get(), nullptr, nullptr, nullptr, nullptr);
    });
}

const Source s_source(AddZimg);

} // namespace
} // namespace bench

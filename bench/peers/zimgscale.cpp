/// \file
/// Scales by zimg, of four planes for a picture of four channels. Its bilinear filter takes in all that an
/// output covers when it shrinks.
#include "bench/scales.h"

#include <cstdlib>
#include <memory>

#include <zimg.h>

namespace bench {

namespace {

zimg_image_format PlaneOf(int width, int height)
{
    zimg_image_format format;
    zimg_image_format_default(&format, ZIMG_API_VERSION);
    format.width = static_cast<unsigned>(width);
    format.height = static_cast<unsigned>(height);
    format.pixel_type = ZIMG_PIXEL_BYTE;
    format.color_family = ZIMG_COLOR_GREY;
    return format;
}

void AddPlanes(const Scale& scale, const Layout& layout, std::size_t planes)
{
    const zimg_image_format from = PlaneOf(scale.InWidth(), scale.InHeight());
    const zimg_image_format to = PlaneOf(scale.OutWidth(), scale.OutHeight());
    zimg_graph_builder_params params;
    zimg_graph_builder_params_default(&params, ZIMG_API_VERSION);
    params.resample_filter =
        scale.filter == ScaleFilter::Bicubic ? ZIMG_RESIZE_BICUBIC : ZIMG_RESIZE_BILINEAR;
    params.filter_param_a = 0; // Catmull-Rom
    params.filter_param_b = 0.5;
    params.cpu_type = ZIMG_CPU_AUTO_64B;
    const std::shared_ptr<zimg_filter_graph> graph(zimg_filter_graph_build(&from, &to, &params),
                                                   zimg_filter_graph_free);
    if (!graph) return;
    std::size_t bytes = 0;
    zimg_filter_graph_get_tmp_size(graph.get(), &bytes);
    const std::shared_ptr<void> scratch(std::aligned_alloc(64, (bytes + 63) / 64 * 64), std::free);
    Add(Named(scale.name, layout), "zimg", [=](const Frame& frame) {
        for (std::size_t i = 0; i < planes; ++i) {
            zimg_image_buffer_const in = {ZIMG_API_VERSION, {}};
            zimg_image_buffer out = {ZIMG_API_VERSION, {}};
            in.plane[0] = {frame.photoPlanes->Pixels() + i * kPixels, kWidth, ZIMG_BUFFER_MAX};
            out.plane[0] = {frame.out->Pixels() + i * kPixels, kWidth, ZIMG_BUFFER_MAX};
            zimg_filter_graph_process(graph.get(), &in, &out, scratch.get(), nullptr, nullptr, nullptr,
                                      nullptr);
        }
    });
}

void AddZimgScales()
{
    for (const Scale& scale : kScales) {
        // It has no nearest pixels, and no areas.
        if (scale.filter == ScaleFilter::Nearest || scale.type == VFIL_INTERP_SUM_BILINEAR) continue;
        AddPlanes(scale, kRgba8, 4);
        AddPlanes(scale, kMono8, 1);
    }
}

const Source s_source(AddZimgScales);

} // namespace
} // namespace bench

/// \file
/// Scales by OpenCV, held to one thread.
#include "bench/scales.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace bench {

namespace {

int TypeOf(const Layout& layout)
{
    if (layout.format == kRgba8.format) return CV_8UC4;
    return layout.format == kMono8.format ? CV_8UC1 : CV_16UC4;
}

int FilterOf(ScaleFilter filter)
{
    switch (filter) {
    case ScaleFilter::Nearest:
        return cv::INTER_NEAREST;
    case ScaleFilter::Bilinear:
        return cv::INTER_LINEAR;
    case ScaleFilter::Bicubic:
        return cv::INTER_CUBIC;
    default:
        return cv::INTER_AREA;
    }
}

void AddOpencvScales()
{
    for (const Layout& layout : kLayouts)
        for (const Scale& scale : kScales)
            Add(Named(scale.name, layout), "OpenCV",
                [scale, format = layout.format, type = TypeOf(layout)](const Frame& frame) {
                    const int width = kWidth;
                    const int height = kHeight;
                    const cv::Mat in(height, width, type, frame.Photo(format).Pixels());
                    const cv::Mat out(height, width, type, frame.Out(format).Pixels());
                    const cv::Size size(scale.OutWidth(), scale.OutHeight());
                    cv::Mat part = out(cv::Rect({0, 0}, size));
                    cv::resize(in(cv::Rect(0, 0, scale.InWidth(), scale.InHeight())), part, size, 0, 0,
                               FilterOf(scale.filter));
                });
}

const Source s_source(AddOpencvScales);

} // namespace
} // namespace bench

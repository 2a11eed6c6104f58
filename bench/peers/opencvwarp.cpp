/// \file
/// Perspective, and maps of a position a pixel, by OpenCV, held to one thread.
#include "bench/warps.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace bench {

namespace {

using cv::Mat;

int TypeOf(const Layout& layout)
{
    if (layout.format == kRgba8.format) return CV_8UC4;
    return layout.format == kMono8.format ? CV_8UC1 : CV_16UC4;
}

/// call(in, out).
template <class Call>
void AddCall(const std::string& operation, const Layout& layout, Call call)
{
    Add(Named(operation, layout), "OpenCV",
        [format = layout.format, type = TypeOf(layout), call](const Frame& frame) {
            const int width = kWidth;
            const int height = kHeight;
            Mat out(height, width, type, frame.Out(format).Pixels());
            call(Mat(height, width, type, frame.Photo(format).Pixels()), out);
        });
}

void AddPerspective(const std::string& operation, const Layout& layout, int interpolation)
{
    const Mat matrix = Mat(std::vector<float>(kHomography.begin(), kHomography.end()), true).reshape(1, 3);
    AddCall(operation, layout, [matrix, interpolation](const Mat& in, Mat& out) {
        cv::warpPerspective(in, out, matrix, out.size(), interpolation);
    });
}

/// The map is made before: positions in single precision.
void AddRemap(const std::string& operation, const Layout& layout)
{
    const int width = kWidth;
    Mat x(kHeight, width, CV_32F), y(kHeight, width, CV_32F);
    for (std::size_t i = 0; i < kPixels; ++i) {
        const int row = static_cast<int>(i / kWidth);
        const int column = static_cast<int>(i % kWidth);
        x.at<float>(row, column) = static_cast<float>(column - Waves().x[i]);
        y.at<float>(row, column) = static_cast<float>(row - Waves().y[i]);
    }
    AddCall(operation, layout,
            [x, y](const Mat& in, Mat& out) { cv::remap(in, out, x, y, cv::INTER_LINEAR); });
}

void AddOpenCvWarps()
{
    cv::setNumThreads(1);
    for (const Layout& layout : kLayouts) {
        AddPerspective(kPerspectiveNearest, layout, cv::INTER_NEAREST);
        AddPerspective(kPerspectiveBilinear, layout, cv::INTER_LINEAR);
        AddPerspective(kPerspectiveBicubic, layout, cv::INTER_CUBIC);
    }
    for (const Layout& layout : {kRgba8, kMono8})
        AddRemap(kWarpBilinear, layout);
}

const Source s_source(AddOpenCvWarps);

} // namespace
} // namespace bench

/// \file
/// Filters and decompositions by OpenCV, held to one thread.
#include "bench/filters.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace bench {

namespace {

using cv::Mat;

constexpr int kEdge = cv::BORDER_REPLICATE;
const cv::Point kCentre(-1, -1);

int TypeOf(const Layout& layout)
{
    if (layout.format == kRgba8.format) return CV_8UC4;
    return layout.format == kMono8.format ? CV_8UC1 : CV_16UC4;
}

/// call(in, out).
template <class Call>
void AddCall(const std::string& operation, const Layout& layout, Call call)
{
    Add(operation, "OpenCV",
        [format = layout.format, type = TypeOf(layout), call](const Frame& frame) mutable {
            const int width = kWidth;
            const int height = kHeight;
            Mat out(height, width, type, frame.Out(format).Pixels());
            call(Mat(height, width, type, frame.Photo(format).Pixels()), out);
        });
}

/// call(in, out, radius).
template <class Radii, class Call>
void AddSizes(const char* filter, const Radii& radii, const Layout& layout, Call call)
{
    for (const int radius : radii)
        AddCall(Sized(filter, radius, layout), layout,
                [radius, call](const Mat& in, Mat& out) { call(in, out, radius); });
}

cv::Size Window(int radius)
{
    return {2 * radius + 1, 2 * radius + 1};
}

void AddConvolutions(const Layout& layout)
{
    for (const int radius : kConvolutionRadii) {
        const Mat kernel = Mat(NoiseKernel(radius).Scaled(), true).reshape(1, 2 * radius + 1);
        AddCall(Sized(kConvolve, radius, layout), layout,
                [kernel](const Mat& in, Mat& out) { cv::filter2D(in, out, -1, kernel, kCentre, 0, kEdge); });
        const Mat row(TriangleRow(radius).Scaled(), true);
        AddCall(Sized(kConvolveSeparable, radius, layout), layout, [row](const Mat& in, Mat& out) {
            cv::sepFilter2D(in, out, -1, row, row, kCentre, 0, kEdge);
        });
    }
}

void AddBlurs(const Layout& layout)
{
    // Ours ends at one sigma.
    AddSizes(kGauss, kBlurRadii, layout, [](const Mat& in, Mat& out, int radius) {
        cv::GaussianBlur(in, out, Window(radius), radius, radius, kEdge);
    });
    if (layout.format == kRgba16.format) return;
    AddSizes(kBox, kBlurRadii, layout,
             [](const Mat& in, Mat& out, int radius) { cv::blur(in, out, Window(radius), kCentre, kEdge); });
}

void AddMorphology(const Layout& layout)
{
    AddSizes(kErode, kMorphologyRadii, layout, [](const Mat& in, Mat& out, int radius) {
        cv::erode(in, out, Mat::ones(Window(radius), CV_8U), kCentre, 1, kEdge);
    });
    AddSizes(kDilate, kMorphologyRadii, layout, [](const Mat& in, Mat& out, int radius) {
        cv::dilate(in, out, Mat::ones(Window(radius), CV_8U), kCentre, 1, kEdge);
    });
}

/// |Gx| + |Gy|, whose middle weights are twice as much as the corners: ours are half as much.
void AddSobel(const Layout& layout)
{
    AddCall(Named(kSobel, layout), layout,
            [x = Mat(), y = Mat(), absolute = Mat()](const Mat& in, Mat& out) mutable {
                cv::Sobel(in, x, CV_16S, 1, 0, 3, 1, 0, kEdge);
                cv::Sobel(in, y, CV_16S, 0, 1, 3, 1, 0, kEdge);
                cv::convertScaleAbs(x, absolute);
                cv::convertScaleAbs(y, out);
                cv::add(out, absolute, out);
            });
}

/// The same bytes as ours but at the edge.
void AddLaplace(const Layout& layout)
{
    AddCall(Named(kLaplaceDiamond, layout), layout,
            [](const Mat& in, Mat& out) { cv::Laplacian(in, out, -1, 1, -1, 0, kEdge); });
    const Mat square = Mat(3, 3, CV_64F, const_cast<double*>(kSquareWeights.data()));
    AddCall(Named(kLaplaceSquare, layout), layout,
            [square](const Mat& in, Mat& out) { cv::filter2D(in, out, -1, square, kCentre, 0, kEdge); });
}

void AddSvd()
{
    for (const int size : kMatrixSizes) {
        const Mat matrix = Mat(NoiseMatrix(size), true).reshape(1, size);
        Add(SvdName(size), "OpenCV", [matrix](const Frame&) {
            Mat u, w, v;
            cv::SVD::compute(matrix, w, u, v);
        });
    }
}

void AddOpenCvFilters()
{
    cv::setNumThreads(1);
    for (const Layout& layout : kLayouts) {
        AddConvolutions(layout);
        AddBlurs(layout);
        AddMorphology(layout);
    }
    for (const Layout& layout : {kRgba8, kMono8}) {
        AddSobel(layout);
        AddLaplace(layout);
        AddSizes(kMedian, kMedianRadii, layout,
                 [](const Mat& in, Mat& out, int radius) { cv::medianBlur(in, out, 2 * radius + 1); });
    }
    AddSvd();
}

const Source s_source(AddOpenCvFilters);

} // namespace
} // namespace bench

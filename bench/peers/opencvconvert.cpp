/// \file
/// Conversions by OpenCV, held to one thread.
#include "bench/frames.h"

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

namespace bench {

namespace {

cv::Mat Wrap(vfil::host::Picture& picture, int type)
{
    return {static_cast<int>(kHeight), static_cast<int>(kWidth), type, picture.Pixels()};
}

struct Side {
    GUID format;
    int type;
};

void AddColour(const char* operation, Side from, Side to, int code)
{
    Add(operation, "OpenCV", [=](const Frame& frame) {
        cv::Mat out = Wrap(frame.Out(to.format), to.type);
        cv::cvtColor(Wrap(frame.In(from.format), from.type), out, code);
    });
}

void AddScaled(const char* operation, Side from, Side to, double factor)
{
    Add(operation, "OpenCV", [=](const Frame& frame) {
        cv::Mat out = Wrap(frame.Out(to.format), to.type);
        Wrap(frame.In(from.format), from.type).convertTo(out, to.type, factor);
    });
}

void AddOpenCvConversions()
{
    const Side rgba{PXFormat_RGBA32, CV_8UC4}, rgb{PXFormat_RGB24, CV_8UC3};
    const Side uyvy{PXFormat_YUV422_601, CV_8UC2}, yuyv{PXFormat_YCC422_601, CV_8UC2};
    const Side deep{PXFormat_RGBA64, CV_16UC4};
    AddColour(kFromUyvy601, uyvy, rgba, cv::COLOR_YUV2RGBA_UYVY);
    AddColour(kFromYuyv601, yuyv, rgba, cv::COLOR_YUV2RGBA_YUY2);
    AddColour(kUyvyToRgb24, uyvy, rgb, cv::COLOR_YUV2RGB_UYVY);
    AddColour(kSwap, rgba, {PXFormat_BGRA32, CV_8UC4}, cv::COLOR_RGBA2BGRA);
    AddColour(kExpand, rgb, rgba, cv::COLOR_RGB2RGBA);
    AddColour(kDrop, rgba, rgb, cv::COLOR_RGBA2RGB);
    // Of three channels: it has no form with alpha.
    AddColour(kToHls, rgb, rgb, cv::COLOR_RGB2HLS_FULL);
    AddColour(kFromHls, rgb, rgb, cv::COLOR_HLS2RGB_FULL);
    AddScaled(k16To8, deep, rgba, 1.0 / 257);
    AddScaled(k8To16, rgba, deep, 257);
}

const Source s_source(AddOpenCvConversions);

} // namespace
} // namespace bench

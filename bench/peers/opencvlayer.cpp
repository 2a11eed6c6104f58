/// \file
/// The same operators by OpenCV, held to one thread.
#include "bench/frames.h"

#include <opencv2/core.hpp>

namespace bench {

namespace {

cv::Mat Wrap(std::uint8_t* plane)
{
    return {static_cast<int>(kHeight), static_cast<int>(kWidth), CV_8UC4, plane};
}

/// call(back, front, out).
template <class Call>
void AddCall(const char* operation, Call call)
{
    Add(operation, "OpenCV", [call](const Frame& frame) {
        cv::Mat out = Wrap(frame.out->Pixels());
        call(Wrap(frame.back->Pixels()), Wrap(frame.front->Pixels()), out);
    });
}

void AddOpenCv()
{
    using Mat = cv::Mat;
    cv::setNumThreads(1);
    AddCall("add", [](const Mat& a, const Mat& b, Mat& out) { cv::add(a, b, out); });
    AddCall("diff", [](const Mat& a, const Mat& b, Mat& out) { cv::absdiff(a, b, out); });
    AddCall("lighter", [](const Mat& a, const Mat& b, Mat& out) { cv::max(a, b, out); });
    AddCall("darker", [](const Mat& a, const Mat& b, Mat& out) { cv::min(a, b, out); });
    AddCall("mult", [](const Mat& a, const Mat& b, Mat& out) { cv::multiply(a, b, out, 1.0 / 255); });
    AddCall("invert", [](const Mat& a, const Mat&, Mat& out) { cv::bitwise_not(a, out); });
    AddCall("copy", [](const Mat& a, const Mat&, Mat& out) { a.copyTo(out); });
}

const Source s_source(AddOpenCv);

} // namespace
} // namespace bench

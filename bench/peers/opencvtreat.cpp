/// \file
/// Colour correction by OpenCV, held to one thread: the matrix in floats, rounded to nearest.
#include "bench/frames.h"

#include <opencv2/core.hpp>

namespace bench {

namespace {

constexpr float kElements[] = {0.9F,  0.15F,  -0.1F, 0, 5, -0.06F, 0.97F, 0.04F, 0,     5,
                               0.12F, -0.15F, 0.98F, 0, 5, 0,      0,     0,     0.95F, 5};

void AddMatrix(const char* name, int type, PicturePtr Frame::*in, PicturePtr Frame::*out)
{
    Add(std::string(name) + kByMatrix, "OpenCV", [=](const Frame& frame) {
        const auto wrap = [type](const PicturePtr& picture) {
            return cv::Mat(static_cast<int>(kHeight), static_cast<int>(kWidth), type, picture->Pixels());
        };
        cv::Mat result = wrap(frame.*out);
        cv::transform(wrap(frame.*in), result, cv::Matx<float, 4, 5>(kElements));
    });
}

void AddOpenCvTreat()
{
    cv::setNumThreads(1);
    AddMatrix(kCorrect, CV_8UC4, &Frame::back, &Frame::out);
    AddMatrix(kCorrect16, CV_16UC4, &Frame::back16, &Frame::out16);
}

const Source s_source(AddOpenCvTreat);

} // namespace
} // namespace bench

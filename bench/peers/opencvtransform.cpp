/// \file
/// Turns by OpenCV, held to one thread.
#include "bench/transforms.h"

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

int MethodOf(const Turn& turn)
{
    if (turn.type == VFIL_INTERP_NEAREST) return cv::INTER_NEAREST;
    return turn.type == VFIL_INTERP_BILINEAR ? cv::INTER_LINEAR : cv::INTER_CUBIC;
}

void AddTurn(const Turn& turn, const Layout& layout)
{
    Add(Named(turn.name, layout), "OpenCV",
        [method = MethodOf(turn), format = layout.format, type = TypeOf(layout)](const Frame& frame) {
            const auto width = static_cast<int>(kWidth);
            const auto height = static_cast<int>(kHeight);
            std::array<double, 6> turned = TurnOfPicture();
            const Mat in(height, width, type, frame.Photo(format).Pixels());
            Mat out(height, width, type, frame.Out(format).Pixels());
            cv::warpAffine(in, out, Mat(2, 3, CV_64F, turned.data()), out.size(), method);
        });
}

void AddTurns()
{
    cv::setNumThreads(1);
    for (const Layout& layout : kLayouts)
        for (const Turn& turn : {kTurnNearest, kTurnBilinear, kTurnBicubic})
            AddTurn(turn, layout);
}

const Source s_source(AddTurns);

} // namespace
} // namespace bench

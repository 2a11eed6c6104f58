/// \file
/// What is left of a picture after twelve turns of 30 degrees: prints the peak signal to noise ratio within
/// its inscribed circle for each interpolation, ours beside OpenCV's.
#include <vfil/host/picturefactory.h>
#include <vfil/host/picturefile.h>

#include <vfil/affine.h>

#include <opencv2/core.hpp>
#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <numbers>
#include <string>

namespace {

using vfil::host::Picture;
using vfil::host::PicturePtr;

/// A square from the middle of a picture.
PicturePtr Middle(Picture& whole)
{
    const long size = std::min({whole.Width(), whole.Height(), 900L});
    PicturePtr middle = Picture::Create(PXFormat_RGBA32, size, size);
    const std::size_t rowBytes = middle->RowBytes();
    const auto x = static_cast<std::size_t>((whole.Width() - size) / 2) * 4;
    const auto y = static_cast<std::size_t>((whole.Height() - size) / 2);
    for (std::size_t row = 0; row < static_cast<std::size_t>(size); ++row)
        std::memcpy(middle->Pixels() + row * rowBytes, whole.Pixels() + (y + row) * whole.RowBytes() + x,
                    rowBytes);
    return middle;
}

std::array<double, 6> TurnAbout(double centre)
{
    constexpr double kAngle = std::numbers::pi / 6;
    const double c = std::cos(kAngle);
    const double s = std::sin(kAngle);
    return {c, -s, centre - c * centre + s * centre, s, c, centre - s * centre - c * centre};
}

/// Of colour, in dB, of the pixels that no turn leads to an edge.
double SignalToNoise(Picture& a, Picture& b)
{
    const long size = a.Width();
    const double centre = static_cast<double>(size - 1) / 2;
    double sum = 0;
    double count = 0;
    for (long y = 0; y < size; ++y)
        for (long x = 0; x < size; ++x) {
            if (std::hypot(static_cast<double>(x) - centre, static_cast<double>(y) - centre) > centre - 12)
                continue;
            const auto at = static_cast<std::size_t>(y) * a.RowBytes() + static_cast<std::size_t>(x) * 4;
            for (std::size_t c = 0; c < 3; ++c) {
                const double difference = static_cast<double>(a.Pixels()[at + c]) - b.Pixels()[at + c];
                sum += difference * difference;
                ++count;
            }
        }
    return 10 * std::log10(255.0 * 255.0 * count / sum);
}

/// \param turn  Turns a picture into another one.
double AfterTwelve(const PicturePtr& original, const std::function<void(Picture&, Picture&)>& turn)
{
    const long size = original->Width();
    PicturePtr pictures[] = {Picture::Create(PXFormat_RGBA32, size, size),
                             Picture::Create(PXFormat_RGBA32, size, size)};
    std::memcpy(pictures[0]->Pixels(), original->Pixels(), original->Bytes());
    for (int i = 0; i < 12; ++i)
        turn(*pictures[i % 2], *pictures[1 - i % 2]);
    return SignalToNoise(*original, *pictures[0]);
}

double Ours(const PicturePtr& original, vfILInterpolationType type)
{
    const auto map = TurnAbout(static_cast<double>(original->Width() - 1) / 2);
    return AfterTwelve(original, [&](Picture& in, Picture& out) {
        float coefficients[6];
        std::transform(map.begin(), map.end(), coefficients, [](double v) { return static_cast<float>(v); });
        vfILAffineTransform transform;
        transform.SetCoefficients(coefficients);
        transform.SetInterpolationType(type);
        transform.SetInputImg(&in);
        transform.SetOutputImg(&out);
        if (transform.Verify() == VFIL_SUCCESS && transform.Execute() == VFIL_SUCCESS) return;
        std::fprintf(stderr, "refused with %#lx\n", transform.GetLastError().GetErrorCode());
        std::abort();
    });
}

double Theirs(const PicturePtr& original, int method)
{
    auto map = TurnAbout(static_cast<double>(original->Width() - 1) / 2);
    return AfterTwelve(original, [&](Picture& in, Picture& out) {
        const auto size = static_cast<int>(in.Width());
        const cv::Mat from(size, size, CV_8UC4, in.Pixels());
        cv::Mat to(size, size, CV_8UC4, out.Pixels());
        cv::warpAffine(from, to, cv::Mat(2, 3, CV_64F, map.data()), to.size(), method);
    });
}

} // namespace

int main()
{
    vfil::host::RegisterPictureClass();
    const struct {
        const char* name;
        vfILInterpolationType type;
        int method; ///< below 0 where OpenCV has none
    } rows[] = {
        {"nearest", VFIL_INTERP_NEAREST, cv::INTER_NEAREST},
        {"bilinear", VFIL_INTERP_BILINEAR, cv::INTER_LINEAR},
        {"bicubic", VFIL_INTERP_BICUBIC, cv::INTER_CUBIC},
        {"prefiltered", VFIL_INTERP_BILINEAR_PREFILTERED, -1},
        {"sums, bilinear", VFIL_INTERP_SUM_BILINEAR, -1},
        {"sums, bicubic", VFIL_INTERP_SUM_BICUBIC, -1},
        {"sums, nearest", VFIL_INTERP_SUM_NEAREST, -1},
    };
    for (const char* const name : {"cat-fur-rgb8.png", "room-rgb16.png"}) {
        const auto whole = vfil::host::ReadPicture(std::string(VFIL_MEDIA "/") + name, {PXFormat_RGBA32});
        const PicturePtr original = Middle(*whole);
        std::printf("%s, %ld pixels square, dB:\n%-16s %7s %7s\n", name, original->Width(), "", "vfil",
                    "OpenCV");
        for (const auto& row : rows) {
            std::printf("%-16s %7.2f", row.name, Ours(original, row.type));
            if (row.method >= 0) std::printf(" %7.2f", Theirs(original, row.method));
            std::printf("\n");
        }
    }
    return 0;
}

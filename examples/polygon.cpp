/// \file
/// Draws a polygon with exact edges: each pixel is as bright as the share of it that the polygon covers.
#include <vfil/host/picturefile.h>
#include <vfil/pixelcoverage.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <exception>
#include <stdexcept>

using namespace vfil::host;

int main(int argc, char** argv)
try {
    if (argc != 2) throw std::invalid_argument("usage: polygon OUT");
    constexpr long kSize = 256;
    constexpr long kCorners = 7;
    double x[kCorners];
    double y[kCorners];
    const double z[kCorners] = {};
    for (long i = 0; i < kCorners; ++i) {
        const double angle = 0.1 + 6.283185307179586 * static_cast<double>(i) / kCorners;
        x[i] = 127.5 + 120 * std::cos(angle);
        y[i] = 127.5 + 100 * std::sin(angle);
    }

    const PicturePtr picture = Picture::Create(PXFormat_Mono16, kSize, kSize);
    IncrementalPixelCoverage2D coverage;
    // From x to y, and so is the sum of x(i) y(i + 1) - x(i + 1) y(i) positive.
    coverage.Initialize(kCorners, x, y, 1, 0);
    double sum = 0;
    for (long row = 0; row < kSize; ++row) {
        coverage.StartHorizontalPass(0);
        for (long column = 0; column < kSize; ++column) {
            const double share = coverage.GetAreaAndAdvance();
            const auto sample = static_cast<std::uint16_t>(std::lround(65535 * share));
            std::memcpy(picture->Row(row) + 2 * column, &sample, sizeof sample);
            sum += share;
        }
    }
    WritePicture(argv[1], *picture);
    std::printf("the polygon has %.6f pixels, its picture %.6f\n", vfILPolygonArea(kCorners, x, y, z), sum);
} catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return 1;
}

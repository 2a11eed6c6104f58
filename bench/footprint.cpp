/// \file
/// Sums of footprints by themselves: a 1920 x 1080 photo under a mapping whose every output pixel lies
/// inside.
#include "frames.h"

#include "il/rows/transform/footprint.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace bench {

namespace {

/// Rows of a homography from output to input.
using Mapping = std::array<double, 9>;

/// About the photo's centre, for an output of so many pixels about (0, 0).
Mapping Turned(double degrees, double scale)
{
    const double angle = degrees * 3.14159265358979 / 180;
    const double c = scale * std::cos(angle);
    const double s = scale * std::sin(angle);
    return {c, -s, kWidth / 2.0, s, c, kHeight / 2.0, 0, 0, 1};
}

struct Case {
    const char* name;
    Mapping mapping;
    int width, height;     ///< of the output
    std::size_t footprint; ///< pixels of the input that the time is for each of; 1 for output pixels
};

/// The footprints of a row, with the corners that neighbours share mapped once.
void MapRow(const Case& c, int y, std::vector<vfil::Footprint>& footprints)
{
    const auto map = [&](double px, double py) {
        const Mapping& m = c.mapping;
        return std::array<double, 3>{m[0] * px + m[1] * py + m[2], m[3] * px + m[4] * py + m[5],
                                     m[6] * px + m[7] * py + m[8]};
    };
    const double top = y - 0.5 * c.height - 0.5;
    double left = -0.5 * c.width - 0.5;
    auto above = map(left, top);
    auto below = map(left, top + 1);
    for (vfil::Footprint& footprint : footprints) {
        left += 1;
        const auto nextAbove = map(left, top);
        const auto nextBelow = map(left, top + 1);
        const double x[4] = {above[0], nextAbove[0], nextBelow[0], below[0]};
        const double yy[4] = {above[1], nextAbove[1], nextBelow[1], below[1]};
        const double w[4] = {above[2], nextAbove[2], nextBelow[2], below[2]};
        vfil::MakeFootprint(x, yy, w, nullptr, footprint);
        above = nextAbove;
        below = nextBelow;
    }
}

template <class Sample, int kChannels>
void AddSums(const Case& c, const std::string& layout, const GUID& format)
{
    Add(std::string("footprints, ") + c.name + layout, kOurRows, [=](const Frame& frame) {
        const vfil::host::Picture& photo = frame.Photo(format);
        const vfil::FootprintSource<Sample, kChannels> source{
            photo.Row(0), static_cast<std::ptrdiff_t>(photo.RowBytes()), 0, 0, kWidth - 1, kHeight - 1, {}};
        std::vector<vfil::Footprint> footprints(static_cast<std::size_t>(c.width));
        std::vector<Sample> row(footprints.size() * kChannels);
        const auto point = [](std::size_t, Sample* sample) { std::fill_n(sample, kChannels, Sample{0}); };
        for (std::size_t made = 0; made < kPixels / c.footprint; made += footprints.size()) {
            MapRow(c, static_cast<int>(made / footprints.size()) % c.height, footprints);
            vfil::FootprintPixels(footprints.data(), footprints.size(), source, true, point, row.data());
        }
    });
}

void AddFootprints()
{
    const Case same{"turned, an output pixel", Turned(17, 1), 960, 640, 1};
    const Case small{"turned, shrunk by 4, a source pixel", Turned(17, 4), 240, 160, 16};
    const Case floor{"perspective, an output pixel",
                     {1.1, 0.1, kWidth / 2.0, 0.05, 1.2, kHeight / 2.0, 0.0001, 0.0003, 1},
                     960,
                     640,
                     1};
    const Case box{"upright, shrunk by 4, a source pixel", Turned(0, 4), 400, 240, 16};
    for (const Case& c : {same, small, floor, box}) {
        AddSums<std::uint8_t, 4>(c, "", PXFormat_RGBA32);
        AddSums<std::uint16_t, 4>(c, ", 16 bits", PXFormat_RGBA64);
        AddSums<std::uint8_t, 1>(c, ", mono", PXFormat_Mono8);
    }
}

const Source s_source(AddFootprints);

} // namespace
} // namespace bench

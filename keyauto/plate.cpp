/// \file
/// Light from bytes.
#include "keyauto/plate.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace vfil::keyauto {

namespace {

constexpr long kMostCells = 600000;

std::array<float, 256> MakeLights()
{
    std::array<float, 256> lights{};
    for (std::size_t byte = 0; byte < lights.size(); ++byte) {
        const double v = static_cast<double>(byte) / 255;
        lights.at(byte) = static_cast<float>(v <= 0.04045 ? v / 12.92 : std::pow((v + 0.055) / 1.055, 2.4));
    }
    return lights;
}

const std::array<float, 256>& Lights()
{
    static const std::array<float, 256> lights = MakeLights();
    return lights;
}

Light CellLight(const host::Picture& picture, long left, long bottom, long side)
{
    const std::array<float, 256>& lights = Lights();
    Light sum;
    for (long y = bottom; y < bottom + side; ++y) {
        const std::uint8_t* pixel = picture.Row(y) + 4 * left;
        for (long x = 0; x < side; ++x, pixel += 4)
            sum += {lights[pixel[0]], lights[pixel[1]], lights[pixel[2]]};
    }
    return sum * (1 / static_cast<float>(side * side));
}

} // namespace

Plate MakePlate(const host::Picture& picture)
{
    Plate plate;
    plate.picture = &picture;
    while ((picture.Width() / plate.side) * (picture.Height() / plate.side) > kMostCells)
        ++plate.side;
    plate.light = Grid<Light>(picture.Width() / plate.side, picture.Height() / plate.side);
    for (long y = 0; y < plate.light.Height(); ++y) {
        for (long x = 0; x < plate.light.Width(); ++x)
            plate.light.At(x, y) = CellLight(picture, x * plate.side, y * plate.side, plate.side);
    }
    return plate;
}

float LightOf(int byte)
{
    return Lights().at(static_cast<std::size_t>(std::clamp(byte, 0, 255)));
}

int ByteOf(float light)
{
    const double v = std::clamp(static_cast<double>(light), 0.0, 1.0);
    const double code = v <= 0.0031308 ? v * 12.92 : 1.055 * std::pow(v, 1 / 2.4) - 0.055;
    return static_cast<int>(std::lround(255 * code));
}

} // namespace vfil::keyauto

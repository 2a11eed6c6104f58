/// \file
/// What a point means to each keyer.
#include "keyauto/keyform.h"
#include "keyauto/plate.h"

#include <algorithm>
#include <cmath>

namespace vfil::keyauto {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr const char* kKeyColor = "key-color";

// A colour as samples of 0 .. 1.
struct Colour {
    double r;
    double g;
    double b;
};

Colour ColourOf(const Screen& screen)
{
    return {ByteOf(screen.colour.r) / 255.0, ByteOf(screen.colour.g) / 255.0,
            ByteOf(screen.colour.b) / 255.0};
}

// As a colour of bytes, which a text shows by six digits.
catalogue::Value Bytes(const Colour& c)
{
    const auto byte = [](double v) { return std::round(std::clamp(v, 0.0, 1.0) * 255) / 255; };
    return {byte(c.r), byte(c.g), byte(c.b), 1};
}

catalogue::Value Number(double value, double least, double most)
{
    constexpr double kDigits = 10000;
    return {std::round(std::clamp(value, least, most) * kDigits) / kDigits};
}

// The chroma plane of BT.601, in which the sector lies.
struct Chroma {
    double cb;
    double cr;
};

constexpr double kRed = 0.299;
constexpr double kBlue = 0.114;
constexpr double kGreen = 1 - kRed - kBlue;

double Luma(const Colour& c)
{
    return kRed * c.r + kGreen * c.g + kBlue * c.b;
}

Chroma ChromaOf(const Colour& c)
{
    const double luma = Luma(c);
    return {(c.b - luma) / (2 * (1 - kBlue)), (c.r - luma) / (2 * (1 - kRed))};
}

// The screen's colour turned to another hue, paler where it would be none.
Colour Turned(const Colour& screen, double degrees)
{
    const Chroma chroma = ChromaOf(screen);
    const double luma = Luma(screen);
    const double angle = degrees * kPi / 180;
    const auto inside = [](double v) { return v >= 0 && v <= 1; };
    Colour turned = screen;
    for (double length = std::hypot(chroma.cb, chroma.cr); length > 0.02; length *= 0.95) {
        const double cb = length * std::cos(angle);
        const double cr = length * std::sin(angle);
        turned.r = luma + 2 * (1 - kRed) * cr;
        turned.b = luma + 2 * (1 - kBlue) * cb;
        turned.g = (luma - kRed * turned.r - kBlue * turned.b) / kGreen;
        if (inside(turned.r) && inside(turned.g) && inside(turned.b)) break;
    }
    return turned;
}

// The screen's colour with so much of its own channel, which stays the strongest.
Colour Limited(const Screen& screen, double limit)
{
    Colour colour = ColourOf(screen);
    double& key = screen.blue ? colour.b : colour.g;
    const double least = std::max(colour.r, screen.blue ? colour.g : colour.b) + 1.0 / 255;
    key = std::clamp(limit, std::min(least, 1.0), 1.0);
    return colour;
}

// hue, tolerance, lift, gain
std::vector<Point> SectorStarts(const Screen& screen)
{
    const Chroma chroma = ChromaOf(ColourOf(screen));
    const double hue = std::atan2(chroma.cr, chroma.cb) * 180 / kPi;
    std::vector<Point> starts;
    for (const double tolerance : {40.0, 90.0, 140.0, 170.0}) {
        for (const double lift : {0.0, 0.2}) {
            for (const double gain : {0.1, 0.3, 0.6})
                starts.push_back({hue, tolerance, lift, gain});
        }
    }
    return starts;
}

Settings SectorSettings(const Screen& screen, const Point& point)
{
    constexpr double kWidest = 179; // beyond, the sector turns inside out
    return {{kKeyColor, Bytes(Turned(ColourOf(screen), point[0]))},
            {"angle-tolerance", Number(point[1], 0, kWidest)},
            {"lift", Number(point[2], 0, 1)},
            {"gain", Number(point[3], 0, 1)}};
}

// limit, and the coefficients that clear the screen's colour
std::vector<Point> DifferenceStarts(const Screen& screen)
{
    constexpr double kLeastDifference = 0.05;
    constexpr double kSpare = 1.3;
    const Colour colour = ColourOf(screen);
    const double key = screen.blue ? colour.b : colour.g;
    const double first = screen.blue ? colour.g : colour.r;
    const double second = screen.blue ? colour.r : colour.b;
    std::vector<Point> starts;
    for (const double c1 : {0.5, 1.0, 1.5}) {
        for (const double c2 : {0.0, 0.5, 1.0}) {
            const double difference = key - c1 * first;
            if (difference < kLeastDifference) continue;
            const double c0 = (1 + c2 * second) / difference;
            starts.push_back({1, c0, c1, c2});
            starts.push_back({key, kSpare * c0, c1, c2});
        }
    }
    if (starts.empty()) starts.push_back({key, 1 / std::max(key, kLeastDifference), 0, 0});
    return starts;
}

Settings DifferenceSettings(const Screen& screen, const Point& point)
{
    constexpr double kMost = 100;
    return {{kKeyColor, Bytes(Limited(screen, point[0]))},
            {"c0", Number(point[1], 0, kMost)},
            {"c1", Number(point[2], -kMost, kMost)},
            {"c2", Number(point[3], -kMost, kMost)}};
}

// threshold, softness
std::vector<Point> LinearStarts(const Screen&)
{
    std::vector<Point> starts;
    for (const double threshold : {-0.1, 0.0, 0.1, 0.2}) {
        for (const double softness : {0.1, 0.3, 0.5})
            starts.push_back({threshold, softness});
    }
    return starts;
}

Settings LinearSettings(const Screen& screen, const Point& point)
{
    return {{kKeyColor, Bytes(Limited(screen, screen.blue ? ColourOf(screen).b : ColourOf(screen).g))},
            {"threshold", Number(point[0], -1, 1)},
            {"softness", Number(point[1], 0, 1)}};
}

} // namespace

const std::vector<KeyForm>& KeyForms()
{
    static const std::vector<KeyForm> forms = {
        {"chroma-keyer", {8, 20, 0.1, 0.1}, &SectorStarts, &SectorSettings},
        {"blue-green-keyer", {-0.1, 0.5, 0.2, 0.2}, &DifferenceStarts, &DifferenceSettings},
        {"linear-keyer", {0.05, 0.1}, &LinearStarts, &LinearSettings},
    };
    return forms;
}

} // namespace vfil::keyauto

/// \file
/// Curves.
#include "engine/curve.h"
#include "engine/failure.h"
#include "engine/text.h"
#include "engine/words.h"

#include <cmath>

namespace vfil::engine {

using catalogue::kCurvePoints;
using catalogue::Parameter;
using catalogue::Table;

namespace {

struct Point {
    long x;
    double y;
};

double Number(const Parameter& parameter, const std::string& word)
{
    const auto number = ParseNumber(word);
    if (!number || *number != std::trunc(*number)) throw RequestError("'" + word + "' is not a whole number");
    if (*number < parameter.minimum || *number > parameter.maximum) {
        throw RequestError(word + " is out of range: numbers are " + NumberText(parameter.minimum) + " .. " +
                           NumberText(parameter.maximum));
    }
    return *number;
}

std::vector<Point> Points(const Parameter& parameter, const std::vector<std::string>& words)
{
    std::vector<Point> points;
    for (const std::string& word : words) {
        const std::size_t colon = word.find(':');
        if (colon == std::string::npos)
            throw RequestError("'" + word + "' is not a point X:Y, as the others are");
        const auto x = ParseIntegers(std::string_view(word).substr(0, colon), ',', 1);
        const long last = kCurvePoints - 1;
        if (!x || x->front() < 0 || x->front() > last) {
            throw RequestError("'" + word + "' is not a point X:Y, whose X is one of 0 .. " +
                               std::to_string(last));
        }
        if (!points.empty() && x->front() <= points.back().x) {
            throw RequestError("'" + word + "' stands behind a point at " + std::to_string(points.back().x) +
                               ": X has to ascend");
        }
        points.push_back({x->front(), Number(parameter, word.substr(colon + 1))});
    }
    return points;
}

Table Join(const std::vector<Point>& points)
{
    Table curve = catalogue::ConstantCurve(points.front().y);
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Point& from = points[i - 1];
        const Point& to = points[i];
        const double slope = (to.y - from.y) / static_cast<double>(to.x - from.x);
        for (long x = from.x; x < to.x; ++x) {
            curve.numbers[static_cast<std::size_t>(x)] =
                std::round(from.y + slope * static_cast<double>(x - from.x));
        }
    }
    for (long x = points.back().x; x < kCurvePoints; ++x)
        curve.numbers[static_cast<std::size_t>(x)] = points.back().y;
    return curve;
}

} // namespace

Table ParseCurve(const Parameter& parameter, const std::string& text)
{
    const std::vector<std::string> words = Split(text, " ,;\t\r\n");
    if (words.empty()) throw RequestError("there is no number");
    if (words.front().find(':') != std::string::npos) return Join(Points(parameter, words));
    Table curve{{}, kCurvePoints};
    for (const std::string& word : words)
        curve.numbers.push_back(Number(parameter, word));
    if (curve.numbers.size() != static_cast<std::size_t>(kCurvePoints)) {
        throw RequestError("there are " + std::to_string(curve.numbers.size()) + " numbers, not " +
                           std::to_string(kCurvePoints));
    }
    return curve;
}

} // namespace vfil::engine

/// \file
/// Colours at weights.
#include "engine/stops.h"
#include "engine/failure.h"
#include "engine/text.h"

#include <algorithm>
#include <map>

namespace vfil::engine {

using catalogue::kLastWeight;
using catalogue::Parameter;
using catalogue::Table;

namespace {

using Stops = std::map<long, std::array<double, 4>>;

void AddStop(const Parameter& parameter, const std::string& word, Stops& stops)
{
    const auto refuse = [&](const std::string& text) {
        throw RequestError(Named(parameter.name) + ": '" + word + "' " + text);
    };
    const std::string right = "WEIGHT:COLOUR, whose WEIGHT is one of 0 .. " + std::to_string(kLastWeight);
    const std::size_t colon = word.find(':');
    const auto weight = ParseIntegers(std::string_view(word).substr(0, colon), ',', 1);
    if (colon == std::string::npos || !weight) refuse("is no stop " + right);
    if (weight->front() < 0 || weight->front() > kLastWeight) refuse("is out of range: it takes " + right);
    const auto colour = ParseColour(std::string_view(word).substr(colon + 1));
    if (!colour) refuse("has no colour, which is R,G,B or R,G,B,A of 0 .. 1, or #rrggbb");
    if (std::any_of(colour->begin(), colour->end(), [](double c) { return c < 0 || c > 1; }))
        refuse("is out of range: each component is 0 .. 1");
    if (!stops.emplace(weight->front(), *colour).second)
        refuse("stands behind another stop at " + std::to_string(weight->front()) + ": each weight has one");
}

} // namespace

Table ParseStops(const Parameter& parameter, const std::string& text)
{
    Stops stops;
    for (const std::string& word : Split(text, " ;\t\r\n"))
        AddStop(parameter, word, stops);
    if (stops.empty())
        throw RequestError(Named(parameter.name) + ": there is no stop, such as 0:#000000 or 99:1,0.5,0");
    Table table{.numbers = {}, .columns = catalogue::kStopColumns};
    for (const auto& [weight, colour] : stops) {
        table.numbers.push_back(static_cast<double>(weight));
        table.numbers.insert(table.numbers.end(), colour.begin(), colour.end());
    }
    return table;
}

} // namespace vfil::engine

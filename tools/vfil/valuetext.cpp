/// \file
/// Texts of values.
#include "tools/vfil/valuetext.h"
#include "tools/vfil/text.h"

#include <algorithm>

namespace vfil::tool {

using catalogue::Entry;
using catalogue::Parameter;
using catalogue::ParameterType;

std::string PictureNames(const Entry& entry)
{
    std::vector<std::string> names;
    for (const catalogue::Input& input : entry.inputs) {
        const std::string role = UpperCase(input.role);
        names.push_back(input.optional || input.orFirst ? "[" + role + "]" : role);
    }
    return Join(names, " ");
}

namespace {

std::string ChoiceText(const Parameter& parameter, double value)
{
    for (const catalogue::Choice& choice : parameter.choices)
        if (choice.value == value) return choice.name;
    return NumberText(value);
}

std::string SetText(const Parameter& parameter, double value)
{
    std::vector<std::string> names;
    for (const catalogue::Choice& choice : parameter.choices) {
        if (choice.value == value) return choice.name;
        const auto bits = static_cast<unsigned long>(choice.value);
        if ((static_cast<unsigned long>(value) & bits) == bits) names.emplace_back(choice.name);
    }
    return Join(names, ",");
}

std::string TableText(const catalogue::Table& table)
{
    std::string text;
    for (std::size_t i = 0; i < table.numbers.size(); ++i) {
        if (i > 0) text += i % static_cast<std::size_t>(table.columns) == 0 ? "; " : " ";
        text += NumberText(table.numbers[i]);
    }
    return text.empty() ? "none" : text;
}

// The points at which a curve turns, as a curve is given.
std::string CurveText(const catalogue::Table& curve)
{
    if (curve.numbers.empty()) return "none";
    std::vector<std::string> points;
    const auto& y = curve.numbers;
    for (std::size_t x = 0; x < y.size(); ++x) {
        const bool inner = x > 0 && x + 1 < y.size();
        const bool end = x == 0 || (!inner && y[x] != y[x - 1]);
        if (end || (inner && y[x] - y[x - 1] != y[x + 1] - y[x]))
            points.push_back(std::to_string(x) + ":" + NumberText(y[x]));
    }
    return Join(points, " ");
}

std::string NumberTexts(const std::vector<double>& numbers)
{
    std::vector<std::string> texts(numbers.size());
    std::transform(numbers.begin(), numbers.end(), texts.begin(), NumberText);
    return Join(texts, ",");
}

std::string StopsText(const catalogue::Table& stops)
{
    std::vector<std::string> words;
    for (auto n = stops.numbers.begin(); n != stops.numbers.end(); n += catalogue::kStopColumns)
        words.push_back(NumberText(*n) + ":" + NumberTexts({n + 1, n + catalogue::kStopColumns}));
    return Join(words, " ");
}

} // namespace

std::string ValueText(const Parameter& parameter, const catalogue::Value& value)
{
    switch (parameter.type) {
    case ParameterType::Choice:
        return ChoiceText(parameter, value.x);
    case ParameterType::Set:
        return SetText(parameter, value.x);
    case ParameterType::Flag:
        return value.x != 0 ? "yes" : "no";
    case ParameterType::Point:
    case ParameterType::Pair:
        return NumberTexts({value.x, value.y});
    case ParameterType::Colour:
    case ParameterType::Box:
        return NumberTexts({value.x, value.y, value.z, value.w});
    case ParameterType::Table:
        return TableText(value.table);
    case ParameterType::Curve:
        return CurveText(value.table);
    case ParameterType::Numbers:
        return NumberTexts(value.table.numbers);
    case ParameterType::Size:
        return NumberText(value.x) + "x" + NumberText(value.y);
    case ParameterType::Stops:
        return StopsText(value.table);
    case ParameterType::Lut:
        return value.table.path.empty() ? "none" : value.table.path;
    case ParameterType::Vectors:
        return value.vectors ? value.vectors->path : "none";
    case ParameterType::Integer:
    case ParameterType::Number:
        break;
    }
    return NumberText(value.x);
}

std::string DefaultText(const Parameter& parameter)
{
    return parameter.fallback ? ValueText(parameter, *parameter.fallback) : "as the picture says";
}

} // namespace vfil::tool

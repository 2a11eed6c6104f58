/// \file
/// The values of parameters.
#include "engine/parametervalue.h"
#include "engine/curve.h"
#include "engine/failure.h"
#include "engine/lut.h"
#include "engine/stops.h"
#include "engine/text.h"
#include "engine/values.h"
#include "engine/words.h"
#include "host/flowfile.h"

#include <algorithm>
#include <cmath>

namespace vfil::engine {

using catalogue::Parameter;
using catalogue::ParameterType;
using catalogue::Value;

namespace {

bool IsInRange(const Parameter& parameter, double number)
{
    return number >= parameter.minimum && number <= parameter.maximum;
}

void CheckRange(const Parameter& parameter, double number, const std::string& text)
{
    if (IsInRange(parameter, number)) return;
    throw RequestError(Named(parameter.name) + " " + text + " is out of range: it takes " +
                       RangeText(parameter));
}

Value ChoiceValue(const Parameter& parameter, const std::string& text)
{
    std::vector<std::string> names;
    for (const catalogue::Choice& choice : parameter.choices) {
        if (choice.name == text) return {choice.value};
        names.emplace_back(choice.name);
    }
    RefuseValue(Named(parameter.name), text, "one of " + Join(names, ", ") + DidYouMean(text, names));
}

Value SetValue(const Parameter& parameter, const std::string& text)
{
    unsigned long bits = 0;
    for (const std::string& name : Split(text, ","))
        bits |= static_cast<unsigned long>(ChoiceValue(parameter, name).x);
    if (bits == 0) RefuseValue(Named(parameter.name), text, RangeText(parameter));
    return {static_cast<double>(bits)};
}

// One number stands for both.
Value PairValue(const Parameter& parameter, const std::string& text)
{
    const auto one = ParseNumber(text);
    const auto n = one ? std::optional(std::vector{*one, *one}) : ParseNumbers(text, ',', 2);
    if (!n) RefuseValue(Named(parameter.name), text, "a number or two, X,Y, such as 4 or 2.5,1");
    for (const double number : *n)
        CheckRange(parameter, number, text);
    return {(*n)[0], (*n)[1]};
}

Value PointValue(const Parameter& parameter, const std::string& text)
{
    const auto numbers = ParseIntegers(text, ',', 2);
    if (!numbers) RefuseValue(Named(parameter.name), text, "two whole numbers X,Y, such as 12,-3");
    return {static_cast<double>((*numbers)[0]), static_cast<double>((*numbers)[1])};
}

Value ColourValue(const Parameter& parameter, const std::string& text)
{
    const auto n = ParseColour(text);
    if (!n) RefuseValue(Named(parameter.name), text, kRightColour);
    for (const double component : *n)
        CheckRange(parameter, component, text);
    return {(*n)[0], (*n)[1], (*n)[2], (*n)[3]};
}

Value BoxValue(const Parameter& parameter, const std::string& text)
{
    const auto n = ParseIntegers(text, ',', 4);
    if (!n) RefuseValue(Named(parameter.name), text, "four whole numbers X,Y,W,H, such as 10,20,100,50");
    if ((*n)[2] < 0 || (*n)[3] < 0)
        RefuseValue(Named(parameter.name), text, "a box: width and height are at least 0");
    return {static_cast<double>((*n)[0]), static_cast<double>((*n)[1]), static_cast<double>((*n)[2]),
            static_cast<double>((*n)[3])};
}

// One number stands for all, or the last ones may be left out, where the list says so.
Value ListValue(const Parameter& parameter, const std::string& text)
{
    using Missing = catalogue::List::Missing;
    const catalogue::List& list = parameter.list;
    const auto count = static_cast<std::size_t>(list.count);
    auto n = ParseNumbers(text, ',', count);
    if (!n && list.missing != Missing::Refused) n = ParseNumbers(text, ',', 1);
    const auto isWhole = [](double number) { return number == std::trunc(number); };
    if (!n || (list.whole && !std::all_of(n->begin(), n->end(), isWhole)))
        RefuseValue(Named(parameter.name), text, RangeText(parameter));
    for (const double number : *n)
        CheckRange(parameter, number, text);
    if (list.missing != Missing::Kept) n->resize(count, list.missing == Missing::Same ? n->front() : 0);
    const auto given = static_cast<long>(n->size());
    return {.table = {*std::move(n), given}};
}

Value SizeValue(const Parameter& parameter, const Values& values)
{
    const vfILVector2l size = *Size(values, parameter.name);
    return {static_cast<double>(size[0]), static_cast<double>(size[1])};
}

Value VectorsValue(const std::string& path)
{
    try {
        host::Flow flow = host::ReadFlow(path);
        return {.vectors = std::make_shared<catalogue::VectorField>(catalogue::VectorField{
                    flow.width, flow.height, std::move(flow.x), std::move(flow.y), path})};
    } catch (const host::FileError& error) {
        throw RequestError(error.what());
    }
}

Value NumberValue(const Parameter& parameter, const std::string& text)
{
    const bool whole = parameter.type == ParameterType::Integer;
    const auto number = ParseNumber(text);
    if (!number || (whole && *number != std::trunc(*number))) {
        RefuseValue(Named(parameter.name), text,
                    (whole ? "one of the " : "a number of ") + RangeText(parameter));
    }
    CheckRange(parameter, *number, text);
    return {*number};
}

// What is behind a # in a file is a remark.
std::string WithoutRemarks(const std::string& text)
{
    std::string kept;
    bool remark = false;
    for (const char c : text) {
        remark = c == '#' || (remark && c != '\n');
        if (!remark) kept += c;
    }
    return kept;
}

// The text of a table, from either of its settings.
std::optional<std::string> TableText(const Parameter& parameter, const Values& values)
{
    const auto text = values.Get(parameter.name);
    const auto path = values.Get(FileSettingOf(parameter));
    if (text && path)
        throw RequestError("takes " + Named(parameter.name) + " or " + Named(FileSettingOf(parameter)) +
                           ", not both");
    return path ? WithoutRemarks(ReadText(*path)) : text;
}

double Entry(const Parameter& parameter, const std::string& word)
{
    const auto number = ParseNumber(word);
    if (!number) throw RequestError("'" + word + "' is not a number");
    if (!IsInRange(parameter, *number))
        throw RequestError(word + " is out of range: it takes " + RangeText(parameter));
    return *number;
}

// \throws RequestError that does not say where the text is from
catalogue::Table ParseTable(const Parameter& parameter, const std::string& text)
{
    catalogue::Table table;
    for (const std::string& row : Split(text, ";\n")) {
        const std::vector<std::string> words = Split(row, " ,\t\r");
        const auto count = static_cast<long>(words.size());
        if (count == 0) continue;
        if (table.columns == 0) table.columns = count;
        if (table.columns != count)
            throw RequestError("row '" + Join(words, " ") + "' has " + std::to_string(count) +
                               " numbers, the first row " + std::to_string(table.columns));
        for (const std::string& word : words)
            table.numbers.push_back(Entry(parameter, word));
    }
    if (table.numbers.empty()) throw RequestError("there is no number");
    if (table.columns % 2 == 0 || table.Rows() % 2 == 0)
        throw RequestError(SizeText(table.columns, table.Rows()) +
                           " numbers have none in the middle: it takes an odd count of rows and columns");
    if (std::all_of(table.numbers.begin(), table.numbers.end(), [](double number) { return number == 0; }))
        throw RequestError("all numbers are 0, so that no pixel would count");
    return table;
}

std::optional<Value> TableValue(const Parameter& parameter, const Values& values)
{
    const auto text = TableText(parameter, values);
    if (!text && parameter.required)
        throw RequestError("needs " + Named(parameter.name) + " or " + Named(FileSettingOf(parameter)));
    if (!text) return std::nullopt;
    const auto path = values.Get(FileSettingOf(parameter));
    try {
        return Value{.table = parameter.type == ParameterType::Curve ? ParseCurve(parameter, *text)
                                                                     : ParseTable(parameter, *text)};
    } catch (const RequestError& error) {
        throw RequestError((path ? Message(*path) : Message(Named(parameter.name))) + ": " +
                           error.What().text);
    }
}

} // namespace

std::optional<Value> ParameterValue(const Parameter& parameter, const Values& values)
{
    if (parameter.type == ParameterType::Table || parameter.type == ParameterType::Curve)
        return TableValue(parameter, values);
    const auto text = values.Get(parameter.name);
    if (!text && parameter.required) throw RequestError("needs " + Named(parameter.name));
    if (!text) return std::nullopt;
    switch (parameter.type) {
    case ParameterType::Choice:
        return ChoiceValue(parameter, *text);
    case ParameterType::Set:
        return SetValue(parameter, *text);
    case ParameterType::Flag:
        return Value{values.Flag(Named(parameter.name)) ? 1.0 : 0.0};
    case ParameterType::Point:
        return PointValue(parameter, *text);
    case ParameterType::Pair:
        return PairValue(parameter, *text);
    case ParameterType::Colour:
        return ColourValue(parameter, *text);
    case ParameterType::Box:
        return BoxValue(parameter, *text);
    case ParameterType::Numbers:
        return ListValue(parameter, *text);
    case ParameterType::Size:
        return SizeValue(parameter, values);
    case ParameterType::Vectors:
        return VectorsValue(*text);
    case ParameterType::Stops:
        return Value{.table = ParseStops(parameter, *text)};
    case ParameterType::Lut:
        return Value{.table = ReadLut(parameter, *text)};
    case ParameterType::Number:
    case ParameterType::Integer:
    case ParameterType::Table:
    case ParameterType::Curve:
        break;
    }
    return NumberValue(parameter, *text);
}

} // namespace vfil::engine

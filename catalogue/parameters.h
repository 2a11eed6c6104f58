/// \file
/// What the parameters of all families are made of. A parameter is written once, as a setter and a getter:
/// its name is the setter's, unless that sets several.
#pragma once

#include <catalogue/entry.h>
#include <catalogue/names.h>

#include <array>
#include <concepts>
#include <cstddef>
#include <optional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace vfil::catalogue {

/// The processor as the class that a parameter belongs to.
template <class P>
P& As(vfILProcessor& processor)
{
    return static_cast<P&>(processor);
}

template <class P>
const P& As(const vfILProcessor& processor)
{
    return static_cast<const P&>(processor);
}

/// A value as what a setter takes: a number, a choice, the bits of a set, a flag, a colour or a table.
template <class T>
T FromValue(const Value& value)
{
    if constexpr (std::same_as<T, vfILColor>)
        return {value.x, value.y, value.z, value.w};
    else if constexpr (std::same_as<T, vfILVector2l>)
        return {static_cast<long>(value.x), static_cast<long>(value.y)};
    else if constexpr (std::same_as<T, Table>)
        return value.table;
    else if constexpr (std::same_as<T, std::shared_ptr<const VectorField>>)
        return value.vectors;
    else
        return static_cast<T>(value.x);
}

/// What a getter returns as a value.
template <class T>
Value ToValue(const T& got)
{
    if constexpr (std::same_as<T, vfILColor>)
        return {got.GetRed(), got.GetGreen(), got.GetBlue(), got.GetAlpha()};
    else if constexpr (std::same_as<T, vfILVector2l>)
        return {static_cast<double>(got[0]), static_cast<double>(got[1])};
    else if constexpr (std::same_as<T, Table>)
        return {.table = got};
    else if constexpr (std::same_as<T, std::shared_ptr<const VectorField>>)
        return {.vectors = got};
    else
        return {static_cast<double>(got)};
}

/// What applies and reads a parameter by a setter and a getter of its class.
template <auto kSet, auto kGet>
struct Accessors;

template <class P, class T, class Result, void (P::*kSet)(T), Result (P::*kGet)() const>
struct Accessors<kSet, kGet> {
    static void Apply(vfILProcessor& processor, const Value& value)
    {
        (As<P>(processor).*kSet)(FromValue<std::remove_cvref_t<T>>(value));
    }
    static Value Read(const vfILProcessor& processor) { return ToValue((As<P>(processor).*kGet)()); }
};

/// The same of one of the numbers that a setter takes, and a getter gives through pointers, together; the
/// others stay as they are.
template <auto kSet, auto kGet, std::size_t kIndex>
struct PartAccessors;

template <class P, class... Numbers, class... Pointers, void (P::*kSet)(Numbers...),
          void (P::*kGet)(Pointers...) const, std::size_t kIndex>
struct PartAccessors<kSet, kGet, kIndex> {
    static void Apply(vfILProcessor& processor, const Value& value)
    {
        auto numbers = ReadAll(processor);
        numbers[kIndex] = value.x;
        std::apply([&](auto... number) { (As<P>(processor).*kSet)(number...); }, numbers);
    }
    static Value Read(const vfILProcessor& processor) { return {ReadAll(processor)[kIndex]}; }

private:
    static auto ReadAll(const vfILProcessor& processor)
    {
        std::array<double, sizeof...(Numbers)> numbers{};
        std::apply([&](auto&... number) { (As<P>(processor).*kGet)(&number...); }, numbers);
        return numbers;
    }
};

/// The text in which a compiler names a template's argument. std::source_location would tell the same; not
/// every compiler and library have it together.
template <auto kMember>
consteval const char* Spelling()
{
    return __PRETTY_FUNCTION__;
}

/// The name of a member function, without its class: what stands behind the last "::" of the spelling.
template <auto kMember>
consteval std::string_view MemberName()
{
    std::string_view text = Spelling<kMember>();
    text.remove_prefix(text.rfind(':') + 1);
    const auto isWord = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    };
    std::size_t length = 0;
    while (length < text.size() && isWord(text[length]))
        ++length;
    return text.substr(0, length);
}

// A compiler that spells otherwise is noticed here, and not by users.
static_assert(MemberName<&vfILProcessor::SetProcessingMode>() == "SetProcessingMode");

/// A parameter of components 0 .. 1.
template <auto kSet, auto kGet>
Parameter UnitParameter(ParameterType type, const std::optional<Value>& fallback, const char* summary,
                        unsigned long refusal)
{
    using HowItIsSet = Accessors<kSet, kGet>;
    return {.name = ParameterName(MemberName<kSet>()),
            .type = type,
            .unit = "",
            .minimum = 0,
            .maximum = 1,
            .fallback = fallback,
            .summary = summary,
            .choices = {},
            .refusal = refusal,
            .apply = HowItIsSet::Apply,
            .read = HowItIsSet::Read};
}

template <auto kSet, auto kGet>
Parameter ShareParameter(double fallback, const char* summary, unsigned long refusal)
{
    return UnitParameter<kSet, kGet>(ParameterType::Number, Value{fallback}, summary, refusal);
}

/// The numbers that a parameter takes, and the one that it has by default.
struct Range {
    double minimum;
    double maximum;
    double fallback;
    const char* unit = "";
};

template <auto kSet, auto kGet>
Parameter NumberParameter(const Range& range, const char* summary, unsigned long refusal)
{
    auto parameter = ShareParameter<kSet, kGet>(range.fallback, summary, refusal);
    parameter.unit = range.unit;
    parameter.minimum = range.minimum;
    parameter.maximum = range.maximum;
    return parameter;
}

/// One of the numbers of a setter of several, by a name of its own: SetLiftAndGain gives "lift" and "gain".
template <auto kSet, auto kGet, std::size_t kIndex>
Parameter PartParameter(const char* name, const Range& range, const char* summary, unsigned long refusal)
{
    using HowItIsSet = PartAccessors<kSet, kGet, kIndex>;
    return {.name = name,
            .type = ParameterType::Number,
            .unit = range.unit,
            .minimum = range.minimum,
            .maximum = range.maximum,
            .fallback = Value{range.fallback},
            .summary = summary,
            .choices = {},
            .refusal = refusal,
            .apply = HowItIsSet::Apply,
            .read = HowItIsSet::Read};
}

template <auto kSet, auto kGet>
Parameter FlagParameter(const std::optional<Value>& fallback, const char* summary)
{
    return UnitParameter<kSet, kGet>(ParameterType::Flag, fallback, summary, 0);
}

template <auto kSet, auto kGet>
Parameter ColourParameter(const Value& fallback, const char* summary)
{
    return UnitParameter<kSet, kGet>(ParameterType::Colour, fallback, summary, 0);
}

template <auto kSet, auto kGet>
Parameter TableParameter(double minimum, double maximum, const char* summary)
{
    Parameter parameter = UnitParameter<kSet, kGet>(ParameterType::Table, Value{}, summary, 0);
    parameter.minimum = minimum;
    parameter.maximum = maximum;
    return parameter;
}

/// A list of numbers; an empty one stands for none.
template <auto kSet, auto kGet>
Parameter ListParameter(const List& list, double minimum, double maximum, std::vector<double> fallback,
                        const char* summary)
{
    const auto count = static_cast<long>(fallback.size());
    Parameter parameter = UnitParameter<kSet, kGet>(ParameterType::Numbers, std::nullopt, summary, 0);
    if (count > 0) parameter.fallback = Value{.table = {std::move(fallback), count}};
    parameter.minimum = minimum;
    parameter.maximum = maximum;
    parameter.list = list;
    return parameter;
}

/// A curve of bytes; an empty one stands for none.
template <auto kSet, auto kGet>
Parameter CurveParameter(const Value& fallback, const char* summary)
{
    Parameter parameter = UnitParameter<kSet, kGet>(ParameterType::Curve, fallback, summary, 0);
    parameter.maximum = 255;
    return parameter;
}

/// A choice among values without a gap, in ascending order.
template <auto kSet, auto kGet>
Parameter ChoiceParameter(double fallback, const char* summary, std::vector<Choice> choices,
                          unsigned long refusal)
{
    Parameter parameter = UnitParameter<kSet, kGet>(ParameterType::Choice, Value{fallback}, summary, refusal);
    parameter.minimum = choices.front().value;
    parameter.maximum = choices.back().value;
    parameter.choices = std::move(choices);
    return parameter;
}

/// The weights of luma, by default those of the first input.
template <auto kSet, auto kGet>
Parameter ColorModelParameter(const char* summary)
{
    Parameter parameter = ChoiceParameter<kSet, kGet>(
        0, summary, {{"601", PXColorModel_YCC, "BT.601"}, {"709", PXColorModel_YCC709, "BT.709"}}, 0x1006A);
    parameter.fallback.reset();
    parameter.role = ParameterRole::ColourModel;
    return parameter;
}

/// Colours at weights; an empty table stands for none.
template <auto kSet, auto kGet>
Parameter StopsParameter(const char* summary)
{
    Parameter parameter = UnitParameter<kSet, kGet>(ParameterType::Stops, Value{}, summary, 0);
    parameter.fallback.reset();
    return parameter;
}

/// A table from a file; an empty one stands for none.
template <auto kSet, auto kGet>
Parameter LutParameter(const LutForm& form, double minimum, double maximum, const char* summary)
{
    Parameter parameter = UnitParameter<kSet, kGet>(ParameterType::Lut, Value{}, summary, 0);
    parameter.minimum = minimum;
    parameter.maximum = maximum;
    parameter.lut = form;
    return parameter;
}

} // namespace vfil::catalogue

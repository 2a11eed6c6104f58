/// \file
/// Parameters and entries that several families have in common.
#pragma once

#include <catalogue/catalogue.h>
#include <catalogue/names.h>

#include <concepts>
#include <memory>
#include <optional>
#include <string>
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
    else if constexpr (std::same_as<T, Table>)
        return value.table;
    else
        return static_cast<T>(value.x);
}

/// What a getter returns as a value.
template <class T>
Value ToValue(const T& got)
{
    if constexpr (std::same_as<T, vfILColor>)
        return {got.GetRed(), got.GetGreen(), got.GetBlue(), got.GetAlpha()};
    else if constexpr (std::same_as<T, Table>)
        return {.table = got};
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

/// A parameter of components 0 .. 1.
template <class HowItIsSet>
Parameter UnitParameter(const char* setter, ParameterType type, const std::optional<Value>& fallback,
                        const char* summary, unsigned long refusal)
{
    return {.name = ParameterName(setter),
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
Parameter ShareParameter(const char* setter, double fallback, const char* summary, unsigned long refusal)
{
    return UnitParameter<Accessors<kSet, kGet>>(setter, ParameterType::Number, Value{fallback}, summary,
                                                refusal);
}

template <auto kSet, auto kGet>
Parameter FlagParameter(const char* setter, const std::optional<Value>& fallback, const char* summary)
{
    return UnitParameter<Accessors<kSet, kGet>>(setter, ParameterType::Flag, fallback, summary, 0);
}

template <auto kSet, auto kGet>
Parameter ColourParameter(const char* setter, const Value& fallback, const char* summary)
{
    return UnitParameter<Accessors<kSet, kGet>>(setter, ParameterType::Colour, fallback, summary, 0);
}

template <auto kSet, auto kGet>
Parameter TableParameter(const char* setter, double minimum, double maximum, const char* summary)
{
    Parameter parameter =
        UnitParameter<Accessors<kSet, kGet>>(setter, ParameterType::Table, Value{}, summary, 0);
    parameter.minimum = minimum;
    parameter.maximum = maximum;
    return parameter;
}

/// A choice among values without a gap, in ascending order.
template <auto kSet, auto kGet>
Parameter ChoiceParameter(const char* setter, double fallback, const char* summary,
                          std::vector<Choice> choices, unsigned long refusal)
{
    Parameter parameter = UnitParameter<Accessors<kSet, kGet>>(setter, ParameterType::Choice, Value{fallback},
                                                               summary, refusal);
    parameter.minimum = choices.front().value;
    parameter.maximum = choices.back().value;
    parameter.choices = std::move(choices);
    return parameter;
}

/// A processor that treats whole pictures, in all channels and without a mask; inputs and formats are the
/// caller's to add.
template <class P>
Entry WholePictureEntry(const std::string& name, const char* className, const char* family,
                        const char* summary)
{
    return {
        .name = name,
        .className = className,
        .family = family,
        .summary = summary,
        .inputs = {},
        .formats = {},
        .parameters = {},
        .channels = VFIL_MODE_RGBA,
        .fixedChannels = VFIL_MODE_RGBA,
        .mask = MaskUse::None,
        .multiplied = false,
        .whole = true,
        .spatialReach = 0,
        .temporalReach = 0,
        .bands = false,
        .make = [](bool simd) -> std::unique_ptr<Operator> { return std::make_unique<OperatorOf<P>>(simd); }};
}

} // namespace vfil::catalogue

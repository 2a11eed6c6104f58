/// \file
/// Parameters and entries that several families have in common.
#pragma once

#include <catalogue/catalogue.h>
#include <catalogue/names.h>

#include <memory>
#include <optional>
#include <string>
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

/// What applies and reads a parameter of one number by a setter and a getter of its class.
template <auto kSet, auto kGet>
struct Accessors;

template <class P, class T, class Result, void (P::*kSet)(T), Result (P::*kGet)() const>
struct Accessors<kSet, kGet> {
    static void Apply(vfILProcessor& processor, const Value& value)
    {
        (As<P>(processor).*kSet)(static_cast<T>(value.x));
    }
    static Value Read(const vfILProcessor& processor)
    {
        return Value{static_cast<double>((As<P>(processor).*kGet)())};
    }
};

/// The same for a colour.
template <auto kSet, auto kGet>
struct ColourAccessors;

template <class P, void (P::*kSet)(const vfILColor&), const vfILColor& (P::*kGet)() const>
struct ColourAccessors<kSet, kGet> {
    static void Apply(vfILProcessor& processor, const Value& value)
    {
        (As<P>(processor).*kSet)({value.x, value.y, value.z, value.w});
    }
    static Value Read(const vfILProcessor& processor)
    {
        const vfILColor& color = (As<P>(processor).*kGet)();
        return Value{color.GetRed(), color.GetGreen(), color.GetBlue(), color.GetAlpha()};
    }
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
    return UnitParameter<ColourAccessors<kSet, kGet>>(setter, ParameterType::Colour, fallback, summary, 0);
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

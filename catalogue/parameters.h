/// \file
/// Parameters and entries that several families have in common.
#pragma once

#include <catalogue/catalogue.h>
#include <catalogue/names.h>

#include <memory>
#include <optional>
#include <string>

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

using Setter = void (*)(vfILProcessor&, const Value&);
using Getter = Value (*)(const vfILProcessor&);

inline Parameter FlagParameter(const char* setter, std::optional<Value> fallback, const char* summary,
                               Setter apply, Getter read)
{
    return {.name = ParameterName(setter),
            .type = ParameterType::Flag,
            .unit = "",
            .minimum = 0,
            .maximum = 1,
            .fallback = fallback,
            .summary = summary,
            .choices = {},
            .refusal = 0,
            .apply = apply,
            .read = read};
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

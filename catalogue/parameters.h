/// \file
/// Parameters that several families have in common.
#pragma once

#include <catalogue/catalogue.h>
#include <catalogue/names.h>

#include <optional>

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

} // namespace vfil::catalogue

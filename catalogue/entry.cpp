/// \file
/// Questions to an entry.
#include <catalogue/entry.h>

#include <algorithm>

namespace vfil::catalogue {

Table ConstantCurve(double number)
{
    return {std::vector<double>(static_cast<std::size_t>(kCurvePoints), number), kCurvePoints};
}

const Parameter* FindRole(const Entry& entry, ParameterRole role)
{
    const auto found = std::find_if(entry.parameters.begin(), entry.parameters.end(),
                                    [role](const Parameter& parameter) { return parameter.role == role; });
    return found == entry.parameters.end() ? nullptr : &*found;
}

bool Takes(const Entry& entry, const GUID& from, const GUID& to)
{
    if (entry.conversions.empty())
        return from == to && std::count(entry.formats.begin(), entry.formats.end(), from) != 0;
    return std::any_of(entry.conversions.begin(), entry.conversions.end(),
                       [&](const FormatPair& pair) { return pair.from == from && pair.to == to; });
}

bool IsConverter(const Entry& entry)
{
    return !entry.conversions.empty() && entry.inputs.size() == 1 && entry.outputs.size() == 1;
}

bool IsGenerator(const Entry& entry)
{
    return entry.inputs.empty();
}

const char* TypeName(ParameterType type)
{
    switch (type) {
    case ParameterType::Number:
        return "number";
    case ParameterType::Integer:
        return "integer";
    case ParameterType::Choice:
        return "choice";
    case ParameterType::Set:
        return "set";
    case ParameterType::Flag:
        return "flag";
    case ParameterType::Point:
        return "point";
    case ParameterType::Pair:
        return "pair";
    case ParameterType::Colour:
        return "colour";
    case ParameterType::Table:
        return "table";
    case ParameterType::Curve:
        return "curve";
    case ParameterType::Box:
        return "box";
    case ParameterType::Numbers:
        return "numbers";
    case ParameterType::Size:
        return "size";
    case ParameterType::Vectors:
        return "vectors";
    case ParameterType::Stops:
        return "stops";
    case ParameterType::Lut:
        return "lut";
    }
    return "";
}

} // namespace vfil::catalogue

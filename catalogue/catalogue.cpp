/// \file
/// The register, put together from its families.
#include <catalogue/catalogue.h>
#include <catalogue/families.h>

#include <algorithm>
#include <iterator>

namespace vfil::catalogue {

const std::vector<Entry>& Entries()
{
    static const std::vector<Entry> entries = [] {
        std::vector<Entry> all;
        for (const auto family : {LayerEntries, PixelEntries, BlurEntries, EdgeEntries, RankEntries,
                                  MorphEntries, ConvertEntries, FillkeyEntries, FieldEntries}) {
            std::vector<Entry> some = family();
            std::move(some.begin(), some.end(), std::back_inserter(all));
        }
        return all;
    }();
    return entries;
}

const Entry* Find(std::string_view name)
{
    const std::vector<Entry>& entries = Entries();
    const auto found = std::find_if(entries.begin(), entries.end(), [&](const Entry& e) {
        return e.name == name || (!e.alias.empty() && e.alias == name);
    });
    return found == entries.end() ? nullptr : &*found;
}

const Entry& Copier()
{
    const std::vector<Entry>& entries = Entries();
    return *std::find_if(entries.begin(), entries.end(), [](const Entry& e) { return e.copies; });
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
    }
    return "";
}

} // namespace vfil::catalogue

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
        std::vector<Entry> all = LayerEntries();
        std::vector<Entry> pixels = PixelEntries();
        std::move(pixels.begin(), pixels.end(), std::back_inserter(all));
        return all;
    }();
    return entries;
}

const Entry* Find(std::string_view name)
{
    const std::vector<Entry>& entries = Entries();
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const Entry& e) { return e.name == name; });
    return found == entries.end() ? nullptr : &*found;
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
    case ParameterType::Flag:
        return "flag";
    case ParameterType::Point:
        return "point";
    }
    return "";
}

} // namespace vfil::catalogue

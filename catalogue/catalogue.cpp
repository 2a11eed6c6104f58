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
        for (const auto family :
             {LayerEntries, PixelEntries, TreatEntries, BlurEntries, EdgeEntries, RankEntries, MorphEntries,
              ConvertEntries, FillkeyEntries, KeyerEntries, VideoKeyerEntries, TableKeyerEntries,
              FieldEntries, TransformEntries, PanZoomEntries, CornerEntries, WarpEntries}) {
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

} // namespace vfil::catalogue

/// \file
/// The fillkey family: a picture with alpha as fill and key, and back.
#include <catalogue/entryof.h>
#include <catalogue/families.h>
#include <catalogue/parameters.h>

#include <vfil/fillkey.h>

#include <utility>

namespace vfil::catalogue {

namespace {

struct Side {
    GUID picture; ///< with an alpha plane
    GUID plain;   ///< fill and key
};

// The formats of one standard on both sides. Fill and key may differ in their order of bytes and rows.
std::vector<Side> Sides()
{
    std::vector<Side> sides;
    for (const GUID& picture : {PXFormat_YCCA422_601, PXFormat_YCCA422_709}) {
        for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
            const bool same = info->model == GetColorModelFromFormat(picture);
            if (same && info->subsampled && !info->alphaPlane) sides.push_back({picture, info->id});
        }
    }
    return sides;
}

// The name by rule stays as another one.
void CallIt(Entry& entry, const char* name)
{
    entry.alias = std::exchange(entry.name, name);
}

Entry Split()
{
    Entry entry = WholePictureEntry<vfILYCCA2YCCYCC>("vfILYCCA2YCCYCC", "fill and key",
                                                     "split a picture with alpha into fill and key");
    entry.inputs = {{"picture", "the picture with alpha"}};
    entry.outputs = {{"fill", "its colour", true}, {"key", "its alpha as luma", true}};
    entry.formats = {PXFormat_YCCA422_601, PXFormat_YCCA422_709};
    for (const Side& side : Sides())
        entry.conversions.push_back({side.picture, side.plain});
    CallIt(entry, "split-key");
    return entry;
}

Parameter FillMissingInput()
{
    return FlagParameter<&vfILYCCYCC2YCCA::SetFillMissingInput, &vfILYCCYCC2YCCA::GetFillMissingInput>(
        Value{0}, "make a fill or key that is missing from the fill colour");
}

Parameter FillColor()
{
    return ColourParameter<&vfILYCCYCC2YCCA::SetFillColor, &vfILYCCYCC2YCCA::GetFillColor>(
        Value{0, 0, 0, 1}, "red, green and blue of a missing fill, alpha of a missing key");
}

Entry Join()
{
    Entry entry = WholePictureEntry<vfILYCCYCC2YCCA>("vfILYCCYCC2YCCA", "fill and key",
                                                     "join fill and key to a picture with alpha");
    entry.inputs = {{"fill", "its colour", true}, {"key", "its alpha as luma", true}};
    for (const Side& side : Sides()) {
        entry.formats.push_back(side.plain);
        entry.conversions.push_back({side.plain, side.picture});
    }
    entry.parameters = {FillMissingInput(), FillColor()};
    entry.note = "a key's luma outside 16 .. 235 wraps: 15 becomes opaque, 236 clear";
    CallIt(entry, "join-key");
    return entry;
}

} // namespace

std::vector<Entry> FillkeyEntries()
{
    std::vector<Entry> entries;
    entries.push_back(Split());
    entries.push_back(Join());
    return entries;
}

} // namespace vfil::catalogue

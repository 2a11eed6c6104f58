/// \file
/// The key family: a picture with alpha as fill and key, and back.
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

template <class P>
Entry Key(const char* name, const char* className, const char* summary)
{
    return {
        .name = name,
        .className = className,
        .family = "key",
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

Entry Split()
{
    Entry entry =
        Key<vfILYCCA2YCCYCC>("split-key", "vfILYCCA2YCCYCC", "split a picture with alpha into fill and key");
    entry.inputs = {{"picture", "the picture with alpha"}};
    entry.outputs = {{"fill", "its colour", true}, {"key", "its alpha as luma", true}};
    entry.formats = {PXFormat_YCCA422_601, PXFormat_YCCA422_709};
    for (const Side& side : Sides())
        entry.conversions.push_back({side.picture, side.plain});
    entry.alias = "ycca2yccycc";
    return entry;
}

Parameter FillMissingInput()
{
    return FlagParameter(
        "SetFillMissingInput", Value{0}, "make a fill or key that is missing from the fill colour",
        [](vfILProcessor& p, const Value& v) { As<vfILYCCYCC2YCCA>(p).SetFillMissingInput(v.x != 0); },
        [](const vfILProcessor& p) {
            return Value{static_cast<double>(As<vfILYCCYCC2YCCA>(p).GetFillMissingInput())};
        });
}

Parameter FillColor()
{
    return {.name = ParameterName("SetFillColor"),
            .type = ParameterType::Colour,
            .unit = "",
            .minimum = 0,
            .maximum = 1,
            .fallback = Value{0, 0, 0, 1},
            .summary = "red, green and blue of a missing fill, alpha of a missing key",
            .choices = {},
            .refusal = 0,
            .apply =
                [](vfILProcessor& p, const Value& v) {
                    As<vfILYCCYCC2YCCA>(p).SetFillColor({v.x, v.y, v.z, v.w});
                },
            .read =
                [](const vfILProcessor& p) {
                    const vfILColor& color = As<vfILYCCYCC2YCCA>(p).GetFillColor();
                    return Value{color.GetRed(), color.GetGreen(), color.GetBlue(), color.GetAlpha()};
                }};
}

Entry Join()
{
    Entry entry =
        Key<vfILYCCYCC2YCCA>("join-key", "vfILYCCYCC2YCCA", "join fill and key to a picture with alpha");
    entry.inputs = {{"fill", "its colour", true}, {"key", "its alpha as luma", true}};
    for (const Side& side : Sides()) {
        entry.formats.push_back(side.plain);
        entry.conversions.push_back({side.plain, side.picture});
    }
    entry.parameters = {FillMissingInput(), FillColor()};
    entry.note = "a key's luma outside 16 .. 235 wraps: 15 becomes opaque, 236 clear";
    entry.alias = "yccycc2ycca";
    return entry;
}

} // namespace

std::vector<Entry> KeyEntries()
{
    std::vector<Entry> entries;
    entries.push_back(Split());
    entries.push_back(Join());
    return entries;
}

} // namespace vfil::catalogue

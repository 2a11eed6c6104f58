/// \file
/// The field family: filters for the fields of video.
#include <catalogue/entryof.h>
#include <catalogue/families.h>
#include <catalogue/parameters.h>

#include <vfil/fields.h>

namespace vfil::catalogue {

namespace {

Parameter Alpha(const char* name, const char* summary, void (*apply)(vfILProcessor&, const Value&),
                Value (*read)(const vfILProcessor&))
{
    return {.name = name,
            .type = ParameterType::Number,
            .unit = "",
            .minimum = 0,
            .maximum = 1,
            .fallback = Value{0.5},
            .summary = summary,
            .choices = {},
            .refusal = 0,
            .apply = apply,
            .read = read};
}

Value AlphasOf(const vfILProcessor& processor)
{
    Value alphas;
    As<vfIL2TapIIR>(processor).GetAlphas(&alphas.x, &alphas.y);
    return alphas;
}

// Both alphas have one setter: each parameter keeps the other.
std::vector<Parameter> Alphas()
{
    return {Alpha(
                "horizontal-alpha", "weight of a new sample along rows; 1 leaves them sharp",
                [](vfILProcessor& p, const Value& v) { As<vfIL2TapIIR>(p).SetAlphas(v.x, AlphasOf(p).y); },
                [](const vfILProcessor& p) { return Value{AlphasOf(p).x}; }),
            Alpha(
                "vertical-alpha", "the same along columns",
                [](vfILProcessor& p, const Value& v) { As<vfIL2TapIIR>(p).SetAlphas(AlphasOf(p).x, v.x); },
                [](const vfILProcessor& p) { return Value{AlphasOf(p).y}; })};
}

Entry TwoTapIir()
{
    Entry entry = WholePictureEntry<vfIL2TapIIR>("vfIL2TapIIR", "field", "smooth along rows and columns");
    entry.inputs = {{"picture", "the picture to smooth"}};
    entry.formats = {PXFormat_RGBA32};
    entry.parameters = Alphas();
    entry.spatialReach = kWholePicture;
    return entry;
}

} // namespace

std::vector<Entry> FieldEntries()
{
    std::vector<Entry> entries;
    entries.push_back(TwoTapIir());
    return entries;
}

} // namespace vfil::catalogue

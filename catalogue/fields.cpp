/// \file
/// The field family: filters for the fields of video.
#include <catalogue/families.h>
#include <catalogue/parameters.h>

#include <vfil/fields.h>

namespace vfil::catalogue {

namespace {

Parameter Alpha(const char* name, const char* summary, Setter apply, Getter read)
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
    return {.name = CommandName("vfIL2TapIIR"),
            .className = "vfIL2TapIIR",
            .family = "field",
            .summary = "smooth along rows and columns",
            .inputs = {{"picture", "the picture to smooth"}},
            .formats = {PXFormat_RGBA32},
            .parameters = Alphas(),
            .channels = VFIL_MODE_RGBA,
            .fixedChannels = VFIL_MODE_RGBA,
            .mask = MaskUse::None,
            .multiplied = false,
            .whole = true,
            .spatialReach = kWholePicture,
            .temporalReach = 0,
            .bands = false,
            .make = [](bool simd) -> std::unique_ptr<Operator> {
                return std::make_unique<OperatorOf<vfIL2TapIIR>>(simd);
            }};
}

} // namespace

std::vector<Entry> FieldEntries()
{
    std::vector<Entry> entries;
    entries.push_back(TwoTapIir());
    return entries;
}

} // namespace vfil::catalogue

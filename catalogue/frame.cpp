/// \file
/// The parameters of the spatial frame.
#include <catalogue/frame.h>

namespace vfil::catalogue {

namespace {

Parameter EdgeMode()
{
    return ChoiceParameter<&vfILMonadicSpatialProc::SetEdgeMode, &vfILMonadicSpatialProc::GetEdgeMode>(
        VFIL_EDGE_CLAMP, "what is beyond the picture's edges",
        {{"color", VFIL_EDGE_COLOR, "--edge-color"},
         {"wrap", VFIL_EDGE_WRAP, "the picture again"},
         {"clamp", VFIL_EDGE_CLAMP, "the nearest pixel"},
         {"mirror", VFIL_EDGE_MIRROR, "the picture reflected"}},
        0x10020);
}

Parameter EdgeColor()
{
    return ColourParameter<&vfILMonadicSpatialProc::SetEdgeColor, &vfILMonadicSpatialProc::GetEdgeColor>(
        Value{}, "the colour beyond the edges with --edge-mode color");
}

} // namespace

Parameter Radius(double fallback, const char* summary)
{
    return {.name = ParameterName("SetRadius"),
            .type = ParameterType::Pair,
            .unit = "pixels",
            .minimum = 0,
            .maximum = 1073741824,
            .fallback = Value{fallback, fallback},
            .summary = summary,
            .choices = {},
            .refusal = 0x10023,
            .apply =
                [](vfILProcessor& p, const Value& v) {
                    As<vfILMonadicSpatialProc>(p).SetRadius(static_cast<float>(v.x), static_cast<float>(v.y));
                },
            .read =
                [](const vfILProcessor& p) {
                    const auto& filter = As<vfILMonadicSpatialProc>(p);
                    return Value{double{filter.GetRadiusX()}, double{filter.GetRadiusY()}};
                },
            .role = ParameterRole::Radius};
}

std::vector<Parameter> EdgeParameters()
{
    return {EdgeMode(), EdgeColor()};
}

} // namespace vfil::catalogue

/// \file
/// The parameters that keyers share.
#include <catalogue/keyers.h>
#include <catalogue/parameters.h>

#include <vfil/keyer.h>

#include <cstdint>
#include <limits>

namespace vfil::catalogue {

Parameter KeyColor(const Value& fallback)
{
    Parameter parameter = ColourParameter<&vfILKeyerBase::SetKeyColor, &vfILKeyerBase::GetKeyColor>(
        fallback, "the colour to remove, that of the screen");
    parameter.refusal = 0x10048;
    parameter.role = ParameterRole::KeyColour;
    return parameter;
}

Parameter CropBox()
{
    return {.name = ParameterName("SetCropBox"),
            .type = ParameterType::Box,
            .unit = "pixels",
            .minimum = std::numeric_limits<std::int32_t>::min(),
            .maximum = std::numeric_limits<std::int32_t>::max(),
            .fallback = Value{},
            .summary = "the part that is keyed; the rest is background, 0,0,0,0 keys all of the picture",
            .choices = {},
            .refusal = 0x1000A,
            .apply =
                [](vfILProcessor& p, const Value& v) {
                    As<vfILKeyerBase>(p).SetCropBox({static_cast<long>(v.x), static_cast<long>(v.y),
                                                     static_cast<long>(v.z), static_cast<long>(v.w)});
                },
            .read =
                [](const vfILProcessor& p) {
                    const vfILBbox2l& box = As<vfILKeyerBase>(p).GetCropBox();
                    return Value{static_cast<double>(box.GetOffsetX()), static_cast<double>(box.GetOffsetY()),
                                 static_cast<double>(box.GetSizeX()), static_cast<double>(box.GetSizeY())};
                }};
}

} // namespace vfil::catalogue

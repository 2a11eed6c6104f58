/// \file
/// Our ramps over whole pictures, and the fill with one colour that they are measured against.
#include "filters.h"

#include <vfil/colorgrade.h>

namespace bench {

namespace {

struct RampCase {
    const char* name;
    vfILRampType type;
    long x, y, dx, dy;
};

constexpr RampCase kRamps[] = {
    {"ramp, linear", VFIL_RAMP_LINEAR, 0, 0, 1919, 0},
    {"ramp, linear down", VFIL_RAMP_LINEAR, 300, 1079, 0, -1079},
    {"ramp, linear across", VFIL_RAMP_LINEAR, 100, 50, 1700, 900},
    {"ramp, radial", VFIL_RAMP_RADIAL, 960, 540, 1000, 300},
    {"ramp, square", VFIL_RAMP_SQUARE, 0, 0, 0, 0},
};

void AddRamp(const RampCase& ramp, const Layout& layout)
{
    const std::string operation = Named(ramp.name, layout);
    Add(operation, kOurs, [ramp, format = layout.format](const Frame& frame) {
        vfILColorGradeImg grade;
        grade.SetOutputImg(&frame.Out(format));
        grade.SetType(ramp.type);
        grade.SetVector(ramp.x, ramp.y, ramp.dx, ramp.dy);
        grade.SetColor({0, 0, 0, 1}, 0);
        grade.SetColor({1, 0.501, 0, 1}, 50);
        grade.SetColor({1, 1, 1, 1}, 99);
        grade.SetColorLL({0.1, 0, 1, 1});
        grade.SetColorLR({1, 0.3, 0, 1});
        grade.SetColorUR({0.2, 1, 0.9, 1});
        Execute(grade);
    });
    Add(operation, kFill, [format = layout.format](const Frame& frame) {
        vfILColorGradeImg fill;
        fill.SetOutputImg(&frame.Out(format));
        static_cast<void>(fill.FillOutputImage({0.2, 0.4, 0.6, 1}));
    });
}

void AddRamps()
{
    for (const Layout& layout : {kRgba8, kRgba16, kMono8})
        for (const RampCase& ramp : kRamps)
            AddRamp(ramp, layout);
}

const Source s_source(AddRamps);

} // namespace
} // namespace bench

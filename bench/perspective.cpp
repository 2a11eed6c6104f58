/// \file
/// Our perspective, over whole pictures.
#include "warps.h"

#include <vfil/perspective.h>

namespace bench {

namespace {

void AddPerspective(const std::string& operation, const Layout& layout, vfILInterpolationType type)
{
    Add(Named(operation, layout), kOurs, [format = layout.format, type](const Frame& frame) {
        vfILPerspectiveTransform transform;
        transform.SetInputImg(&frame.Photo(format));
        transform.SetOutputImg(&frame.Out(format));
        transform.SetCoefficients(kHomography.data());
        transform.SetClipMode(VFIL_CLIP_POSITIVE);
        transform.SetInterpolationType(type);
        Execute(transform);
    });
}

void AddPerspectives()
{
    for (const Layout& layout : kLayouts) {
        AddPerspective(kPerspectiveNearest, layout, VFIL_INTERP_NEAREST);
        AddPerspective(kPerspectiveBilinear, layout, VFIL_INTERP_BILINEAR);
        AddPerspective(kPerspectiveBicubic, layout, VFIL_INTERP_BICUBIC);
        AddPerspective("perspective footprint sum", layout, VFIL_INTERP_SUM_BILINEAR);
    }
}

const Source s_source(AddPerspectives);

} // namespace
} // namespace bench

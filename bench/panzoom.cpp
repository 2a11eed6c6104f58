/// \file
/// Our scales, over whole pictures.
#include "scales.h"

#include <vfil/panzoom.h>

namespace bench {

namespace {

void AddScale(const Scale& scale, const Layout& layout)
{
    Add(Named(scale.name, layout), kOurs, [scale, format = layout.format](const Frame& frame) {
        vfILPanZoomTransform processor;
        const double sx = static_cast<double>(scale.OutWidth()) / scale.InWidth();
        const double sy = static_cast<double>(scale.OutHeight()) / scale.InHeight();
        const float map[] = {static_cast<float>(sx), static_cast<float>((sx - 1) / 2), static_cast<float>(sy),
                             static_cast<float>((sy - 1) / 2)};
        processor.SetCoefficients(map);
        processor.SetInterpolationType(scale.type);
        processor.SetInputImg(&frame.Photo(format));
        processor.SetOutputImg(&frame.Out(format));
        processor.SetROI({0, 0, scale.OutWidth(), scale.OutHeight()});
        Execute(processor);
    });
}

void AddScales()
{
    for (const Layout& layout : kLayouts)
        for (const Scale& scale : kScales)
            AddScale(scale, layout);
}

const Source s_source(AddScales);

} // namespace
} // namespace bench

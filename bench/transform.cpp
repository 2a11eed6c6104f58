/// \file
/// Our turns, over whole pictures.
#include "transforms.h"

#include <vfil/affine.h>

namespace bench {

namespace {

void AddTurn(const Turn& turn, const Layout& layout)
{
    Add(Named(turn.name, layout), kOurs, [type = turn.type, format = layout.format](const Frame& frame) {
        const std::array<double, 6> turned = TurnOfPicture();
        float coefficients[6];
        for (std::size_t i = 0; i < turned.size(); ++i)
            coefficients[i] = static_cast<float>(turned[i]);
        vfILAffineTransform processor;
        processor.SetCoefficients(coefficients);
        processor.SetInterpolationType(type);
        processor.SetInputImg(&frame.Photo(format));
        processor.SetOutputImg(&frame.Out(format));
        Execute(processor);
    });
}

void AddTurns()
{
    for (const Layout& layout : kLayouts)
        for (const Turn& turn : kTurns)
            AddTurn(turn, layout);
}

const Source s_source(AddTurns);

} // namespace
} // namespace bench

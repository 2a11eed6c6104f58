/// \file
/// Our erosion and dilation, over whole pictures.
#include "filterbench.h"

#include <vfil/morphology.h>

namespace bench {

namespace {

template <class Processor>
void AddMorphology(const char* filter, const Layout& layout)
{
    for (const int radius : kMorphologyRadii) {
        AddFilter<Processor>(Sized(filter, radius, layout), layout, [radius](auto& processor) {
            const auto reach = static_cast<float>(radius);
            processor.SetStructuringElement(VFIL_STRUCT_RECTANGLE, 1, reach, reach, 0, 0);
            processor.SetMode(vfILMorphologyMode{1});
        });
    }
}

void AddMorphologies()
{
    for (const Layout& layout : kLayouts) {
        AddMorphology<vfILErodeImg>(kErode, layout);
        AddMorphology<vfILDilateImg>(kDilate, layout);
    }
}

const Source s_source(AddMorphologies);

} // namespace
} // namespace bench

/// \file
/// How one of our filters is measured.
#pragma once

#include "filters.h"

#include <vfil/spatial.h>

namespace bench {

/// tune(processor) sets what is not the default.
template <class Processor, class Tune>
void AddFilter(const std::string& operation, const Layout& layout, Tune tune)
{
    Add(operation, kOurs, [format = layout.format, tune](const Frame& frame) mutable {
        Processor processor;
        processor.SetInputImg(&frame.Photo(format));
        processor.SetOutputImg(&frame.Out(format));
        processor.SetProcessingMode(15);
        processor.SetEdgeMode(VFIL_EDGE_CLAMP);
        tune(processor);
        Execute(processor);
    });
}

} // namespace bench

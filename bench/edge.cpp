/// \file
/// Our edge and relief filters, over whole pictures.
#include "filterbench.h"

#include <vfil/edges.h>

namespace bench {

namespace {

void AddEdges(const Layout& layout)
{
    AddFilter<vfILSobelImg>(Named(kSobel, layout), layout, [](auto&) {});
    AddFilter<vfILLaplaceImg>(Named(kLaplaceSquare, layout), layout, [](auto&) {});
    AddFilter<vfILLaplaceImg>(Named(kLaplaceDiamond, layout), layout,
                              [](auto& laplace) { laplace.SetType(VFIL_LAPLACE_DIAMOND); });
}

void AddReliefs()
{
    for (const unsigned long directions : {1UL, 255UL}) {
        const std::string ending = directions == 1 ? " east" : " all directions";
        const auto tune = [directions](auto& relief) { relief.SetDirection(directions); };
        AddFilter<vfILGradientImg>(Named("gradient" + ending, kRgba8), kRgba8, tune);
        AddFilter<vfILEmbossImg>(Named("emboss" + ending, kRgba8), kRgba8, tune);
    }
    for (const vfILSharpenType type : {VFIL_SHARPEN_PLAIN, VFIL_SHARPEN_EDGES})
        AddFilter<vfILSharpenImg>(Named(type == VFIL_SHARPEN_PLAIN ? "sharpen" : "sharpen edges", kRgba8),
                                  kRgba8, [type](auto& sharpen) {
                                      sharpen.SetType(type);
                                      sharpen.SetRadius(1);
                                      sharpen.SetEdgeSensitivity(0.5);
                                  });
}

void AddEdgeFilters()
{
    AddEdges(kRgba8);
    AddEdges(kMono8);
    AddReliefs();
}

const Source s_source(AddEdgeFilters);

} // namespace
} // namespace bench

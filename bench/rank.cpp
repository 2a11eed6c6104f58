/// \file
/// Our rank filters, over whole pictures.
#include "filterbench.h"

#include <vfil/rank.h>

namespace bench {

namespace {

/// Windows are ellipses: of radius 1 a cross, of 3 29 pixels, of 8 197.
template <class Processor>
void AddRank(const std::string& filter)
{
    for (const int radius : {1, 3, 8})
        AddFilter<Processor>(Named(filter + " radius " + std::to_string(radius), kRgba8), kRgba8,
                             [radius](auto& rank) { rank.SetRadius(static_cast<float>(radius)); });
}

/// Beside the peers the window is their square, as far as an ellipse can be one: a fraction of the radius
/// takes the corners in, but for those of 7x7. Ours chooses whole pixels by brightness, theirs each channel
/// by itself; on mono pictures that is the same.
void AddMedians(const Layout& layout)
{
    for (const int radius : kMedianRadii)
        AddFilter<vfILMedianRankImg>(Sized(kMedian, radius, layout), layout, [radius](auto& median) {
            median.SetRadius(static_cast<float>(radius) + 0.99F);
        });
}

void AddRanks()
{
    AddMedians(kRgba8);
    AddMedians(kMono8);
    AddRank<vfILMaxRankImg>("rank max");
    AddRank<vfILMinRankImg>("rank min");
    AddRank<vfILMedianRankImg>("rank median");
    AddRank<vfILSelectiveRankImg>("rank selective");
}

const Source s_source(AddRanks);

} // namespace
} // namespace bench

/// \file
/// The rank family: one of the pixels of a window, chosen by its brightness.
#include <catalogue/families.h>
#include <catalogue/frame.h>

#include <vfil/rank.h>

namespace vfil::catalogue {

namespace {

constexpr int kRadius = 1;

template <class P>
Entry Rank(const char* className, const char* summary, std::vector<Parameter> parameters = {})
{
    parameters.insert(parameters.begin(), Radius(kRadius, "of the ellipse that the pixel is chosen from"));
    return SpatialEntry<FilterAsExpected<P, kRadius>>(className, "rank", summary, std::move(parameters));
}

} // namespace

std::vector<Entry> RankEntries()
{
    std::vector<Entry> entries;
    entries.push_back(Rank<vfILMaxRankImg>("vfILMaxRankImg", "take the brightest pixel"));
    entries.push_back(Rank<vfILMinRankImg>("vfILMinRankImg", "take the darkest pixel"));
    entries.push_back(Rank<vfILMedianRankImg>("vfILMedianRankImg", "take the pixel of middle brightness"));
    entries.push_back(Rank<vfILSelectiveRankImg>(
        "vfILSelectiveRankImg", "take the pixel of middle brightness where the present one is far from it",
        {ShareParameter<&vfILSelectiveRankImg::SetThreshold, &vfILSelectiveRankImg::GetThreshold>(
            0.1, "the difference of brightness that is kept", 0x10046)}));
    return entries;
}

} // namespace vfil::catalogue

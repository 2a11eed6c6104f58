/// \file
/// The search for a way from one pixel format to another.
#include "engine/conversion.h"

#include "host/pixelrows.h"

#include <algorithm>

namespace vfil::engine {

namespace {

constexpr std::size_t kMostHops = 3;

// All single conversions from a format. What no converter does and the host's picture files do anyway, grey
// spread to colour, has no entry.
std::vector<ConversionHop> HopsFrom(const GUID& from)
{
    std::vector<ConversionHop> hops;
    for (const catalogue::Entry& entry : catalogue::Entries()) {
        if (!catalogue::IsConverter(entry)) continue;
        for (const catalogue::FormatPair& pair : entry.conversions) {
            if (pair.from == from) hops.push_back({&entry, pair.to, pair.turnsOver});
        }
    }
    for (const GUID& to : {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16}) {
        const auto reached = [&](const ConversionHop& hop) { return hop.to == to; };
        if (to != from && host::CanConvert(from, to) && std::none_of(hops.begin(), hops.end(), reached))
            hops.push_back({nullptr, to});
    }
    return hops;
}

// How much a way loses and takes: steps count least, then formats between that lack what both ends have.
int Cost(const GUID& from, const Conversion& way)
{
    int cost = 0;
    const vfILFormatInfo& first = *vfILFindFormat(from);
    const vfILFormatInfo& last = *vfILFindFormat(way.back().to);
    for (const ConversionHop& hop : way) {
        const vfILFormatInfo& info = *vfILFindFormat(hop.to);
        cost += 1;
        if (info.sampleBytes < std::min(first.sampleBytes, last.sampleBytes)) cost += 100;
        if (!info.alpha && first.alpha && last.alpha) cost += 100;
        if (info.model != PXColorModel_RGB && hop.to != last.id) cost += 10;
    }
    return cost;
}

void Extend(const GUID& from, const GUID& to, const Conversion& way, std::optional<Conversion>& best)
{
    const GUID& here = way.empty() ? from : way.back().to;
    for (const ConversionHop& hop : HopsFrom(here)) {
        Conversion longer = way;
        longer.push_back(hop);
        if (hop.to == to) {
            if (!best || Cost(from, longer) < Cost(from, *best)) best = longer;
        } else if (longer.size() < kMostHops) {
            Extend(from, to, longer, best);
        }
    }
}

} // namespace

std::optional<Conversion> FindConversion(const GUID& from, const GUID& to)
{
    if (from == to) return Conversion();
    std::optional<Conversion> best;
    Extend(from, to, {}, best);
    return best;
}

} // namespace vfil::engine

/// \file
/// What the operators of the spatial frame have in common: entry, edge modes, radius.
#pragma once

#include <catalogue/entryof.h>
#include <catalogue/parameters.h>

#include <vfil/spatial.h>

#include <utility>
#include <vector>

namespace vfil::catalogue {

/// A filter as people expect it: beyond the picture's edges there is more of the same, where the class takes
/// a clear colour, and there is a radius, where the class may take 0.
template <class P, int kRadius>
void ExpectFilter(P& filter)
{
    filter.SetEdgeMode(VFIL_EDGE_CLAMP);
    filter.SetRadius(kRadius);
}

template <class P, int kRadius>
using FilterAsExpected = SetUp<P, &ExpectFilter<P, kRadius>>;

/// How far a filter reaches.
Parameter Radius(double fallback, const char* summary);

/// The parameters of the frame beside the radius.
std::vector<Parameter> EdgeParameters();

/// The numbers of a table, which has its top row first, as a window has them: from the row of the lowest y.
template <class Number, class Convert>
std::vector<Number> FromBottom(const Table& table, Convert convert)
{
    std::vector<Number> numbers;
    for (long row = table.Rows(); row-- > 0;)
        for (long column = 0; column < table.columns; ++column)
            numbers.push_back(convert(table.numbers[static_cast<std::size_t>(row * table.columns + column)]));
    return numbers;
}

/// A filter with parameters beside those of the frame.
///
/// \tparam P  The class to construct.
template <class P>
Entry SpatialEntry(const char* className, const char* family, const char* summary,
                   std::vector<Parameter> parameters)
{
    for (Parameter& parameter : EdgeParameters())
        parameters.push_back(std::move(parameter));
    Entry entry = EntryOf<P>(className, family, summary);
    entry.inputs = {{"picture", "the picture to work on"}};
    entry.formats = {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16};
    entry.parameters = std::move(parameters);
    entry.radiusReach = 1;
    entry.movesRows = true;
    return entry;
}

} // namespace vfil::catalogue

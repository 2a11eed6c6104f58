/// \file
/// The edge family: what finds edges, or makes a relief of them.
#include <catalogue/families.h>
#include <catalogue/frame.h>

#include <vfil/edges.h>

namespace vfil::catalogue {

namespace {

// Alpha is left alone: where it does not change, the result would be clear.
template <class P>
Entry Edges(const char* className, const char* summary, std::vector<Parameter> parameters)
{
    Entry entry = SpatialEntry<FilterAsExpected<P, 1>>(className, "edge", summary, std::move(parameters));
    entry.channels = VFIL_MODE_RGB;
    entry.spatialReach = 1;
    entry.radiusReach = 0;
    return entry;
}

template <class P>
Parameter Directions()
{
    using Direction = Accessors<&P::SetDirection, &P::GetDirection>;
    return {.name = ParameterName("SetDirection"),
            .type = ParameterType::Set,
            .unit = "",
            .minimum = VFIL_DIRECTION_EAST,
            .maximum = 255,
            .fallback = Value{VFIL_DIRECTION_EAST},
            .summary = "where brighter samples count; of several directions the largest result stays",
            .choices = {{"east", VFIL_DIRECTION_EAST, "to the right"},
                        {"north-east", VFIL_DIRECTION_NORTH_EAST, ""},
                        {"north", VFIL_DIRECTION_NORTH, "up"},
                        {"north-west", VFIL_DIRECTION_NORTH_WEST, ""},
                        {"west", VFIL_DIRECTION_WEST, ""},
                        {"south-west", VFIL_DIRECTION_SOUTH_WEST, ""},
                        {"south", VFIL_DIRECTION_SOUTH, ""},
                        {"south-east", VFIL_DIRECTION_SOUTH_EAST, ""},
                        {"all", 255, "all eight"}},
            .refusal = 0x10028,
            .apply = Direction::Apply,
            .read = Direction::Read};
}

// The bits after those of the class itself.
std::vector<Parameter> WithThreshold(std::vector<Parameter> parameters)
{
    parameters.push_back(ShareParameter<&vfILEdgeThresholdProc::SetEdgeSensitivity,
                                        &vfILEdgeThresholdProc::GetEdgeSensitivity>(
        1, "what counts as an edge: 1 all that is above 0, 0 nothing", 0x1002A));
    parameters.push_back(ShareParameter<&vfILEdgeThresholdProc::SetBias, &vfILEdgeThresholdProc::GetBias>(
        0, "what is added where there is an edge, of the full value", 0x10029));
    return parameters;
}

Parameter DetectType()
{
    return ChoiceParameter<&vfILEdgeDetectProc::SetType, &vfILEdgeDetectProc::GetType>(
        VFIL_EDGE_MAGNITUDE, "what is shown of the gradient",
        {{"magnitude", VFIL_EDGE_MAGNITUDE, "|x| + |y|"},
         {"angle", VFIL_EDGE_ANGLE,
          "its direction, without sensitivity and bias; 360 degrees are the full value"}},
        0x10049);
}

Parameter LaplaceType()
{
    return ChoiceParameter<&vfILLaplaceImg::SetType, &vfILLaplaceImg::GetType>(
        VFIL_LAPLACE_SQUARE, "the neighbours that are taken from the pixel",
        {{"square", VFIL_LAPLACE_SQUARE, "all eight"},
         {"diamond", VFIL_LAPLACE_DIAMOND, "the four at its sides"}},
        0x10027);
}

} // namespace

std::vector<Entry> EdgeEntries()
{
    std::vector<Entry> entries;
    entries.push_back(Edges<vfILGradientImg>("vfILGradientImg", "find edges that get brighter in a direction",
                                             WithThreshold({Directions<vfILGradientImg>()})));
    entries.push_back(Edges<vfILEmbossImg>("vfILEmbossImg", "make a relief", {Directions<vfILEmbossImg>()}));
    entries.push_back(Edges<vfILRobertsImg>("vfILRobertsImg", "find edges by columns and rows of three",
                                            WithThreshold({DetectType()})));
    entries.push_back(Edges<vfILSobelImg>("vfILSobelImg", "find edges by columns and rows of corners",
                                          WithThreshold({DetectType()})));
    entries.push_back(Edges<vfILLaplaceImg>("vfILLaplaceImg", "find what is brighter than its neighbours",
                                            WithThreshold({LaplaceType()})));
    return entries;
}

} // namespace vfil::catalogue

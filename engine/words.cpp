/// \file
/// Words.
#include "engine/words.h"
#include "engine/text.h"

#include <catalogue/names.h>

namespace vfil::engine {

using catalogue::Parameter;
using catalogue::ParameterType;

std::string FormatNames(const std::vector<GUID>& formats)
{
    std::vector<std::string> names;
    names.reserve(formats.size());
    for (const GUID& format : formats)
        names.push_back(catalogue::FormatName(format));
    return Join(names, ", ");
}

std::string ChannelLetters(unsigned long mode)
{
    std::string letters;
    for (const auto& [bit, letter] : {std::pair{VFIL_MODE_RED, 'r'}, std::pair{VFIL_MODE_GREEN, 'g'},
                                      std::pair{VFIL_MODE_BLUE, 'b'}, std::pair{VFIL_MODE_ALPHA, 'a'}}) {
        if (mode & bit) letters += letter;
    }
    return letters;
}

std::string SizeText(long width, long height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

std::vector<std::string> ChoiceNames(const Parameter& parameter)
{
    std::vector<std::string> names;
    for (const catalogue::Choice& choice : parameter.choices)
        names.emplace_back(choice.name);
    return names;
}

namespace {

// "four whole numbers "
std::string ListText(const Parameter& parameter)
{
    const catalogue::List& list = parameter.list;
    const std::string kind = list.whole ? " whole numbers " : " numbers ";
    const bool one = list.missing != catalogue::List::Missing::Refused;
    return (one ? "1 or " : "") + std::to_string(list.count) + kind;
}

std::string LutText(const Parameter& parameter)
{
    return std::string(parameter.lut.cube ? "a 1D table (.cube), or " : "") +
           std::to_string(catalogue::kCurvePoints) + " lines of " +
           (parameter.lut.fewer ? "1, 3 or 4" : "4") + " whole numbers ";
}

} // namespace

std::string RangeText(const Parameter& parameter)
{
    std::string range = NumberText(parameter.minimum) + " .. " + NumberText(parameter.maximum);
    switch (parameter.type) {
    case ParameterType::Choice:
        return Join(ChoiceNames(parameter), ", ");
    case ParameterType::Set:
        return "one or more of " + Join(ChoiceNames(parameter), ", ");
    case ParameterType::Flag:
        return "yes, no";
    case ParameterType::Point:
        return "whole numbers";
    case ParameterType::Pair:
        return "a number or two, " + range;
    case ParameterType::Colour:
        return "R,G,B or R,G,B,A of " + range + ", or #rrggbb";
    case ParameterType::Table:
        return "rows of numbers " + range + ", the top one first, such as '0 1 0; 1 1 1; 0 1 0'";
    case ParameterType::Curve:
        return std::to_string(catalogue::kCurvePoints) + " whole numbers " + range +
               ", or points that lines join, such as '0:0 64:0 128:255'";
    case ParameterType::Box:
        return "whole numbers";
    case ParameterType::Numbers:
        return ListText(parameter) + range;
    case ParameterType::Size:
        return "width and height up to " + NumberText(parameter.maximum);
    case ParameterType::Vectors:
        return "a vector for each pixel of the picture";
    case ParameterType::Stops:
        return "WEIGHT:COLOUR of weights 0 .. " + std::to_string(catalogue::kLastWeight) +
               " with blanks between them, such as '0:#000000 50:1,0.5,0 99:#ffffff'";
    case ParameterType::Lut:
        return LutText(parameter) + range;
    case ParameterType::Integer:
        return "whole numbers " + range;
    case ParameterType::Number:
        break;
    }
    return range;
}

} // namespace vfil::engine

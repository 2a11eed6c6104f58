/// \file
/// The options of the command.
#include "tools/vfil/options.h"
#include "tools/vfil/text.h"

#include <catalogue/names.h>

#include <utility>

namespace vfil::tool {

using catalogue::Entry;
using catalogue::Parameter;
using catalogue::ParameterType;

namespace {

std::vector<std::string> ChoiceNames(const Parameter& parameter)
{
    std::vector<std::string> names;
    for (const catalogue::Choice& choice : parameter.choices)
        names.emplace_back(choice.name);
    return names;
}

std::string Placeholder(const Parameter& parameter)
{
    switch (parameter.type) {
    case ParameterType::Number:
        return "NUMBER";
    case ParameterType::Integer:
        return "INTEGER";
    case ParameterType::Choice:
        return Join(ChoiceNames(parameter), "|");
    case ParameterType::Flag:
        return "";
    case ParameterType::Point:
        return "X,Y";
    }
    return "";
}

std::string ParameterSummary(const Parameter& parameter)
{
    std::vector<std::string> notes;
    for (const catalogue::Choice& choice : parameter.choices) {
        notes.push_back(std::string(choice.name) + ": " + choice.summary);
    }
    if (parameter.type == ParameterType::Flag)
        notes.emplace_back("=no for the opposite");
    else if (parameter.choices.empty())
        notes.push_back(RangeText(parameter));
    if (*parameter.unit != '\0') notes.emplace_back(parameter.unit);
    notes.push_back("default " + DefaultText(parameter));
    return std::string(parameter.summary) + " (" + Join(notes, "; ") + ")";
}

std::vector<std::string> AllFormatNames()
{
    std::vector<std::string> names;
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
        names.push_back(catalogue::FormatName(info->id));
    }
    return names;
}

} // namespace

std::vector<Option> ParameterOptions(const Entry& entry)
{
    std::vector<Option> options;
    for (const Parameter& parameter : entry.parameters) {
        options.push_back({.name = parameter.name,
                           .letter = "",
                           .value = Placeholder(parameter),
                           .summary = ParameterSummary(parameter),
                           .choices = ChoiceNames(parameter)});
    }
    return options;
}

const std::vector<Option>& SharedOptions()
{
    static const std::vector<Option> options = {
        {"output",
         "o",
         "FILE",
         "the picture to write, required: .png, .jpg, .jpeg, .tif, .tiff or .raw",
         {},
         true},
        {"roi", "", "X,Y,W,H",
         "region of the first picture to work on, in pixels, x and y of its bottom-left corner with y up "
         "(default the "
         "whole dominant picture)"},
        {"output-offset", "", "X,Y",
         "where the bottom-left pixel of the region lands in the output, in pixels, y up (default 0,0)"},
        {"output-size", "", "WxH",
         "size of the output in pixels (default that of the region plus the output offset)"},
        {"mask",
         "",
         "FILE[:CHANNEL]",
         "picture that bounds the operation by its box and, where the operator samples it, mixes the result "
         "with the "
         "input by one channel: red, green, blue, alpha or mono (default mono for a grey picture, alpha for "
         "one with "
         "alpha, else red); its depth follows the pictures",
         {},
         true},
        {"mask-offset", "", "X,Y",
         "position of the mask's bottom-left pixel in the first picture, in pixels, y up (default 0,0)"},
        {"channels", "", "LETTERS",
         "channels to work on, letters of rgba (default rgba for operators of two pictures and copy, else "
         "rgb)"},
        {"fields",
         "",
         "odd|even",
         "work only on rows with odd or even y, counted from the bottom row, which is 0; the others show the "
         "dominant picture",
         {"odd", "even"}},
        {"default-color", "", "R,G,B,A",
         "colour of output pixels that have no source, each component 0 .. 1 (default 0,0,0,0)"},
        {"format",
         "",
         "FORMAT",
         "format to which the pictures are converted when read (default as the file has it)",
         {"rgba32", "rgba64", "mono8", "mono16"}},
        {"in-format", "", "FORMAT", "format of .raw pictures", AllFormatNames()},
        {"in-size", "", "WxH", "size of .raw pictures in pixels"},
        {"plain", "", "", "use the plain arithmetic instead of the machine's vector instructions"},
        {"json", "", "", "write a record of the result to standard output"},
        {"quiet", "", "", "write nothing to standard output"},
    };
    return options;
}

std::vector<Option> OptionsOf(const Entry& entry)
{
    std::vector<Option> options = ParameterOptions(entry);
    options.insert(options.end(), SharedOptions().begin(), SharedOptions().end());
    return options;
}

const std::vector<Command>& Commands()
{
    static const std::vector<Command> commands = {
        {"list",
         "[--json]",
         "list the operators",
         {{"json", "", "", "write all that is known of them, as JSON"}},
         false},
        {"info",
         "FILE... [--json]",
         "show what picture files hold",
         {{"json", "", "", "write a JSON array"},
          {"in-format", "", "FORMAT", "format of .raw pictures", AllFormatNames()},
          {"in-size", "", "WxH", "size of .raw pictures in pixels"}}},
        {"help", "[OPERATOR]", "explain an operator or the command", {}},
        {"completion", "bash", "write a completion script", {}, true, {"bash"}},
        {"man", "", "write the manual page, as roff", {}, false},
    };
    return commands;
}

std::vector<std::string> CommandNames()
{
    std::vector<std::string> names;
    for (const Entry& entry : catalogue::Entries())
        names.push_back(entry.name);
    for (const Command& command : Commands())
        names.push_back(command.name);
    return names;
}

std::string PictureNames(const Entry& entry)
{
    std::vector<std::string> names;
    for (const catalogue::Input& input : entry.inputs)
        names.push_back(UpperCase(input.role));
    return Join(names, " ");
}

std::string FormatNames(const Entry& entry)
{
    std::vector<std::string> names;
    for (const GUID& format : entry.formats)
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

std::string RangeText(const Parameter& parameter)
{
    if (parameter.type == ParameterType::Choice) return Join(ChoiceNames(parameter), ", ");
    if (parameter.type == ParameterType::Flag) return "yes, no";
    if (parameter.type == ParameterType::Point) return "whole numbers";
    const std::string range = NumberText(parameter.minimum) + " .. " + NumberText(parameter.maximum);
    return parameter.type == ParameterType::Integer ? "whole numbers " + range : range;
}

std::string ValueText(const Parameter& parameter, const catalogue::Value& value)
{
    if (parameter.type == ParameterType::Flag) return value.x != 0 ? "yes" : "no";
    if (parameter.type == ParameterType::Point) return NumberText(value.x) + "," + NumberText(value.y);
    for (const catalogue::Choice& choice : parameter.choices) {
        if (choice.value == value.x) return choice.name;
    }
    return NumberText(value.x);
}

std::string DefaultText(const Parameter& parameter)
{
    return parameter.fallback ? ValueText(parameter, *parameter.fallback) : "as the picture says";
}

} // namespace vfil::tool

/// \file
/// The options of the command.
#include "tools/vfil/options.h"
#include "tools/vfil/chain.h"
#include "tools/vfil/text.h"

#include <catalogue/names.h>

#include <algorithm>
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
    case ParameterType::Set:
        return "NAME,...";
    case ParameterType::Flag:
        return "";
    case ParameterType::Point:
        return "X,Y";
    case ParameterType::Pair:
        return "X[,Y]";
    case ParameterType::Colour:
        return "R,G,B,A";
    case ParameterType::Table:
        return kTablePlaceholder;
    }
    return "";
}

std::string ParameterSummary(const Parameter& parameter)
{
    std::vector<std::string> notes;
    for (const catalogue::Choice& choice : parameter.choices) {
        notes.emplace_back(choice.name);
        if (*choice.summary != '\0') notes.back() += std::string(": ") + choice.summary;
    }
    if (parameter.type == ParameterType::Flag)
        notes.emplace_back("=no for the opposite");
    else if (parameter.choices.empty())
        notes.push_back(RangeText(parameter));
    if (*parameter.unit != '\0') notes.emplace_back(parameter.unit);
    notes.push_back(parameter.required ? "required" : "default " + DefaultText(parameter));
    return std::string(parameter.summary) + " (" + Join(notes, "; ") + ")";
}

Option FileOption(const Parameter& parameter)
{
    return {.name = FileOptionOf(parameter),
            .letter = "",
            .value = "FILE",
            .summary = "a file with the table for --" + parameter.name +
                       ", a row a line; what follows a # is a remark",
            .file = true};
}

std::vector<std::string> AllFormatNames()
{
    std::vector<std::string> names;
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
        names.push_back(catalogue::FormatName(info->id));
    }
    return names;
}

Option OutputOption()
{
    return {
        .name = "output",
        .letter = "o",
        .value = "FILE",
        .summary =
            "the file to write, required: a picture (.png, .jpg, .jpeg, .tif, .tiff or .raw) or a clip; - "
            "is a clip on standard output",
        .file = true};
}

std::vector<Option> Combine(const std::vector<std::vector<Option>>& groups)
{
    std::vector<Option> options;
    for (const std::vector<Option>& group : groups)
        options.insert(options.end(), group.begin(), group.end());
    return options;
}

} // namespace

std::string FileOptionOf(const Parameter& parameter)
{
    return parameter.name + "-file";
}

std::vector<Option> ParameterOptions(const Entry& entry)
{
    std::vector<Option> options;
    for (const Parameter& parameter : entry.parameters) {
        options.push_back({.name = parameter.name,
                           .letter = "",
                           .value = Placeholder(parameter),
                           .summary = ParameterSummary(parameter),
                           .choices = ChoiceNames(parameter)});
        if (parameter.type == ParameterType::Table) options.push_back(FileOption(parameter));
    }
    return options;
}

const std::vector<Option>& StepOptions()
{
    static const std::vector<Option> options = {
        {"roi", "", "X,Y,W,H",
         "region of the first picture to work on, in pixels, x and y of its bottom-left corner with y up "
         "(default the whole dominant picture)"},
        {"output-offset", "", "X,Y",
         "where the bottom-left pixel of the region lands in the output, in pixels, y up (default 0,0)"},
        {"output-size", "", "WxH",
         "size of the output in pixels (default that of the region plus the output offset)"},
        {.name = "mask",
         .letter = "",
         .value = "FILE[:CHANNEL]",
         .summary =
             "picture or clip that bounds the operation by its box and, where the operator samples it, "
             "mixes the result with the input by one channel: red, green, blue, alpha or mono (default "
             "mono for a grey picture, alpha for one with alpha, else red); its depth follows the "
             "pictures",
         .file = true},
        {"mask-offset", "", "X,Y",
         "position of the mask's bottom-left pixel in the first picture, in pixels, y up (default 0,0)"},
        {"channels", "", "LETTERS",
         "channels to work on, letters of rgba (default what 'vfil help OPERATOR' says, without a for a "
         "picture that has no alpha)"},
        {"fields",
         "",
         "odd|even",
         "work only on rows with odd or even y, counted from the bottom row, which is 0; the others show the "
         "dominant picture",
         {"odd", "even"}},
        {"default-color", "", "R,G,B,A",
         "colour of output pixels that have no source, each component 0 .. 1 (default 0,0,0,0)"},
    };
    return options;
}

const std::vector<Option>& SourceOptions()
{
    static const std::vector<Option> options = {
        {"format",
         "",
         "FORMAT",
         "format to which the pictures and clips are converted when read (default as the file has it)",
         {"rgba32", "rgba64", "mono8", "mono16"}},
        {"in-format", "", "FORMAT", "format of .raw pictures", AllFormatNames()},
        {"in-size", "", "WxH", "size of .raw pictures in pixels"},
        {"matrix",
         "",
         "601|709",
         "weights of the YCC colour of clips, when the file is wrong or does not say",
         {"601", "709"}},
        {"range", "", "studio|full", "range of the samples of clips, likewise", {"studio", "full"}},
        {"field-order",
         "",
         "ORDER",
         "which field of an interlaced clip comes first, likewise",
         {"top", "bottom", "progressive"}},
        {"premultiplied",
         "",
         "yes|no",
         "whether the colour of pictures and clips is multiplied by their alpha, likewise",
         {"yes", "no"}},
    };
    return options;
}

const std::vector<Option>& SinkOptions()
{
    static const std::vector<Option> options = {
        {"to", "", "FORMAT",
         "format of the result, to which it is converted before it is written (default that of the first "
         "picture or clip, as far as the file can hold it)",
         AllFormatNames()},
        {"codec", "", "NAME",
         "codec of the clip to write (default that of the first clip where it will do, else the "
         "container's)"},
        {.name = "codec-option",
         .letter = "",
         .value = "NAME=VALUE",
         .summary = "option of the codec, such as crf=18; may be given several times",
         .repeats = true},
        {"container", "", "NAME", "container of the clip to write (default by the name's ending, nut for -)"},
    };
    return options;
}

const std::vector<Option>& RunOptions()
{
    static const std::vector<Option> options = {
        {"frames", "", "A:B",
         "frames of the clips to work on: from A, counted from 0, up to B, which is left out; either may be "
         "absent"},
        {"threads", "", "N", "frames that are worked on at the same time (default one a processor)"},
        {"filter",
         "",
         "yes|no",
         "average chroma when conversions halve it (default yes), interpolate it when they double it "
         "(default no)",
         {"yes", "no"}},
        {"dither", "", "yes|no", "dither in conversions to YCC (default no)", {"yes", "no"}},
        {"progress",
         "",
         "none|json",
         "how far a clip is, on standard error: nothing, or a record a line (default a bar on a terminal)",
         {"none", "json"}},
        {"plain", "", "", "use the plain arithmetic instead of the machine's vector instructions"},
        {"json", "", "", "write a record of the result to standard output"},
        {"verbose", "", "", "name the conversions that were inserted, on standard error"},
        {"quiet", "", "", "write nothing to standard output, no remarks and no progress"},
    };
    return options;
}

const std::vector<Option>& SharedOptions()
{
    static const std::vector<Option> options =
        Combine({{OutputOption()}, StepOptions(), SourceOptions(), SinkOptions(), RunOptions()});
    return options;
}

std::vector<Option> OutputOptions(const Entry& entry)
{
    std::vector<Option> options;
    for (std::size_t i = 1; i < entry.outputs.size(); ++i) {
        options.push_back({.name = entry.outputs[i].role,
                           .letter = "",
                           .value = "FILE",
                           .summary = entry.outputs[i].summary,
                           .file = true});
    }
    return options;
}

std::vector<Option> OptionsOf(const Entry& entry)
{
    return Combine({ParameterOptions(entry), OutputOptions(entry), SharedOptions()});
}

const std::vector<Command>& Commands()
{
    static const std::vector<Command> commands = {
        {"list",
         "[--json]",
         "list the operators",
         {{"json", "", "", "write all that is known of them, as JSON"}},
         false},
        {"convert", "PICTURE -o FILE [--to FORMAT]",
         "convert a picture or clip to another format, container or codec; the pair of formats says by which "
         "converters",
         Combine({{OutputOption()}, SourceOptions(), SinkOptions(), RunOptions()})},
        {"run", "CHAIN.toml... [--input NAME=FILE]... [--output NAME=FILE]...",
         "run chains of operators that stand in files, on pictures or clips", ChainOptions()},
        {"info", "FILE... [--json]", "show what pictures and clips hold, and who says so",
         Combine({{{"json", "", "", "write a JSON array"}}, SourceOptions()})},
        {"help", "[OPERATOR]", "explain an operator or the command", {}},
        {"completion", "bash", "write a completion script", {}, true, {"bash"}},
        {"man", "", "write the manual page, as roff", {}, false},
    };
    return commands;
}

std::vector<std::string> CommandNames()
{
    std::vector<std::string> names;
    for (const Entry& entry : catalogue::Entries()) {
        names.push_back(entry.name);
        if (!entry.alias.empty()) names.push_back(entry.alias);
    }
    for (const Command& command : Commands())
        names.push_back(command.name);
    return names;
}

std::string PictureNames(const Entry& entry)
{
    std::vector<std::string> names;
    for (const catalogue::Input& input : entry.inputs) {
        const std::string role = UpperCase(input.role);
        names.push_back(input.optional ? "[" + role + "]" : role);
    }
    return Join(names, " ");
}

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
        return "components " + range;
    case ParameterType::Table:
        return "rows of numbers " + range + ", the top one first, such as '0 1 0; 1 1 1; 0 1 0'";
    case ParameterType::Integer:
        return "whole numbers " + range;
    case ParameterType::Number:
        break;
    }
    return range;
}

namespace {

std::string ChoiceText(const Parameter& parameter, double value)
{
    for (const catalogue::Choice& choice : parameter.choices)
        if (choice.value == value) return choice.name;
    return NumberText(value);
}

std::string SetText(const Parameter& parameter, double value)
{
    std::vector<std::string> names;
    for (const catalogue::Choice& choice : parameter.choices) {
        if (choice.value == value) return choice.name;
        const auto bits = static_cast<unsigned long>(choice.value);
        if ((static_cast<unsigned long>(value) & bits) == bits) names.emplace_back(choice.name);
    }
    return Join(names, ",");
}

std::string TableText(const catalogue::Table& table)
{
    std::string text;
    for (std::size_t i = 0; i < table.numbers.size(); ++i) {
        if (i > 0) text += i % static_cast<std::size_t>(table.columns) == 0 ? "; " : " ";
        text += NumberText(table.numbers[i]);
    }
    return text.empty() ? "none" : text;
}

std::string NumberTexts(const std::vector<double>& numbers)
{
    std::vector<std::string> texts(numbers.size());
    std::transform(numbers.begin(), numbers.end(), texts.begin(), NumberText);
    return Join(texts, ",");
}

} // namespace

std::string ValueText(const Parameter& parameter, const catalogue::Value& value)
{
    switch (parameter.type) {
    case ParameterType::Choice:
        return ChoiceText(parameter, value.x);
    case ParameterType::Set:
        return SetText(parameter, value.x);
    case ParameterType::Flag:
        return value.x != 0 ? "yes" : "no";
    case ParameterType::Point:
    case ParameterType::Pair:
        return NumberTexts({value.x, value.y});
    case ParameterType::Colour:
        return NumberTexts({value.x, value.y, value.z, value.w});
    case ParameterType::Table:
        return TableText(value.table);
    case ParameterType::Integer:
    case ParameterType::Number:
        break;
    }
    return NumberText(value.x);
}

std::string DefaultText(const Parameter& parameter)
{
    return parameter.fallback ? ValueText(parameter, *parameter.fallback) : "as the picture says";
}

} // namespace vfil::tool

/// \file
/// The help texts.
#include "tools/vfil/help.h"
#include "tools/vfil/text.h"
#include "tools/vfil/valuetext.h"

#include <algorithm>
#include <cstddef>

namespace vfil::tool {

using catalogue::Entry;
using catalogue::MaskUse;

namespace {

constexpr std::size_t kColumns = 100;
constexpr std::size_t kTermColumns = 26;

// Words in lines of kColumns, each behind `indent` blanks; the first one stands behind what is there already.
std::string Wrap(const std::string& text, std::size_t indent, std::size_t column)
{
    std::string wrapped;
    std::size_t begin = 0;
    while (begin < text.size()) {
        const std::size_t end = std::min(text.find(' ', begin), text.size());
        const std::size_t length = end - begin;
        const bool first = wrapped.empty();
        if (!first && column + 1 + length > kColumns) {
            wrapped += "\n" + std::string(indent, ' ');
            column = indent;
        } else if (!first) {
            wrapped += ' ';
            ++column;
        }
        wrapped += text.substr(begin, length);
        column += length;
        begin = end + 1;
    }
    return wrapped;
}

std::string RenderRow(const std::string& term, const std::string& text)
{
    if (term.empty()) return "  " + Wrap(text, 2, 2) + "\n";
    std::string line = "  " + term;
    if (line.size() + 2 > kTermColumns)
        line += "\n" + std::string(kTermColumns, ' ');
    else
        line.append(kTermColumns - line.size(), ' ');
    return line + Wrap(text, kTermColumns, kTermColumns) + "\n";
}

std::string OptionTerm(const Option& option)
{
    const std::string letter = option.letter.empty() ? "" : "-" + option.letter + ", ";
    return letter + "--" + option.name + (option.value.empty() ? "" : " " + option.value);
}

HelpSection OptionSection(const std::string& title, const std::vector<Option>& options)
{
    HelpSection section{title, {}};
    for (const Option& option : options)
        section.rows.emplace_back(OptionTerm(option), option.summary);
    return section;
}

const char* MaskText(MaskUse use)
{
    switch (use) {
    case MaskUse::None:
    case MaskUse::Ignored:
        return "none";
    case MaskUse::BoxOnly:
        return "only the box of a mask counts: outside it the dominant picture stays";
    case MaskUse::Sampled:
        return "mixes the result with the input, by its value";
    case MaskUse::Required:
        return "needed: the front shows by its value";
    }
    return "";
}

std::string ChannelsText(const Entry& entry)
{
    const std::string all = "default " + ChannelLetters(entry.channels);
    if (entry.fixedChannels == 0) return all + "; any may be left out";
    if (entry.fixedChannels == VFIL_MODE_RGBA) return "always rgba";
    return all + "; only a may be left out";
}

// The formats that an operator with conversions makes, each once.
std::vector<GUID> ResultFormats(const Entry& entry)
{
    std::vector<GUID> formats;
    for (const catalogue::FormatPair& pair : entry.conversions) {
        if (std::find(formats.begin(), formats.end(), pair.to) == formats.end()) formats.push_back(pair.to);
    }
    return formats;
}

HelpSection Family(const std::string& family)
{
    HelpSection section{FamilyTitle(family), {}};
    for (const Entry& entry : catalogue::Entries()) {
        if (entry.family == family) section.rows.emplace_back(entry.name, entry.summary);
    }
    return section;
}

} // namespace

std::string FamilyTitle(const std::string& family)
{
    return Sentence(family) + " operators";
}

std::string UsageLine(const Entry& entry)
{
    std::string usage = "vfil " + entry.name;
    if (!catalogue::IsGenerator(entry)) usage += " " + PictureNames(entry);
    if (catalogue::IsGenerator(entry)) usage += " --size WxH";
    if (entry.mask == MaskUse::Required) usage += " --mask FILE[:CHANNEL]";
    return usage + " -o FILE [options]";
}

HelpSection SharedOptionHelp()
{
    return OptionSection("Options of all operators", SharedOptions());
}

HelpSection SharedOptionHelp(const Entry& entry)
{
    return OptionSection(catalogue::IsGenerator(entry) ? "Options that it shares"
                                                       : "Options of all operators",
                         SharedOptionsOf(entry));
}

std::vector<HelpSection> ClosingHelp()
{
    return {
        {"Clips",
         {{"",
           "Every operator works on clips as on pictures, frame by frame. A picture beside a clip repeats; "
           "clips of different length end with the shorter. - is a clip on standard input or output, in NUT, "
           "which does not say its colour matrix: see --matrix, or --container matroska. Where an operator "
           "does not take the format of a clip, conversions are inserted before and behind it; --verbose "
           "names them."}}},
        {"Coordinates",
         {{"", "x runs to the right and y up, from the bottom-left pixel, which is 0,0. The region and "
               "the mask are "
               "placed in the first picture, the output offset in the output."}}},
        {"Exit status",
         {{"0", "done"},
          {"1", "the run failed"},
          {"2", "the request was wrong: the line on standard error says what would be right"},
          {"130", "interrupted"},
          {"", "But for 0 no output file is left behind, save that an interrupted run completes its clips "
               "with the frames so far. Who reads standard output may stop at any time: that is 0."}}}};
}

HelpPage GeneralHelp()
{
    HelpPage page{
        "vfil OPERATOR PICTURE... -o FILE [options]", "Image processing for video and compositing.", {}};
    std::vector<std::string> families;
    for (const Entry& entry : catalogue::Entries()) {
        if (std::find(families.begin(), families.end(), entry.family) == families.end()) {
            families.emplace_back(entry.family);
        }
    }
    for (const std::string& family : families)
        page.sections.push_back(Family(family));
    HelpSection commands{"Commands", {}};
    for (const Command& command : Commands()) {
        commands.rows.emplace_back(command.name + (command.arguments.empty() ? "" : " " + command.arguments),
                                   command.summary);
    }
    commands.rows.emplace_back("--help, --version", "this text, the version");
    page.sections.push_back(commands);
    page.sections.push_back(SharedOptionHelp());
    for (const HelpSection& section : ClosingHelp())
        page.sections.push_back(section);
    return page;
}

HelpPage OperatorHelp(const Entry& entry)
{
    HelpPage page{UsageLine(entry), Sentence(entry.summary) + ".", {}};
    HelpSection pictures{"Pictures", {}};
    for (const catalogue::Input& input : entry.inputs)
        pictures.rows.emplace_back(UpperCase(input.role), input.summary);
    if (!catalogue::IsGenerator(entry)) page.sections.push_back(pictures);
    const std::vector<Option> outputs = OutputOptions(entry);
    if (!outputs.empty()) page.sections.push_back(OptionSection("Outputs beside -o", outputs));
    const std::vector<Option> parameters = ParameterOptions(entry);
    if (!parameters.empty()) page.sections.push_back(OptionSection("Parameters", parameters));
    HelpSection takes{"Takes",
                      {{catalogue::IsGenerator(entry) ? "makes" : "formats", FormatNames(entry.formats)},
                       {"channels", ChannelsText(entry)},
                       {"mask", MaskText(entry.mask)}}};
    if (!entry.conversions.empty())
        takes.rows.emplace_back("makes", FormatNames(ResultFormats(entry)) + "; see --to");
    if (entry.whole)
        takes.rows.emplace_back("region",
                                "none: works on whole pictures, without --output-offset and --fields");
    for (const Option& option : SourceOptions()) {
        const std::string name = SourceOptionOf(entry, option.name);
        if (name != option.name && !catalogue::IsGenerator(entry))
            takes.rows.emplace_back("--" + name, "what --" + option.name +
                                                     " is to all other operators: " + option.summary);
    }
    if (entry.places || catalogue::IsGenerator(entry))
        takes.rows.emplace_back("region",
                                "none: see --size instead of --roi, --output-offset and --output-size");
    if (entry.multiplied) {
        takes.rows.emplace_back("alpha",
                                "colour of pictures with straight alpha is multiplied by it first, unless a "
                                "premultiplication option says how to take the pictures");
    }
    page.sections.push_back(takes);
    if (*entry.note != '\0') page.sections.push_back({"Note", {{"", Sentence(entry.note) + "."}}});
    return page;
}

HelpPage CommandHelp(const Command& command)
{
    const std::string arguments = command.arguments.empty() ? "" : " " + command.arguments;
    HelpPage page{"vfil " + command.name + arguments, Sentence(command.summary) + ".", {}};
    if (!command.options.empty()) page.sections.push_back(OptionSection("Options", command.options));
    return page;
}

std::string RenderText(const HelpPage& page)
{
    std::string text = "Usage: " + page.usage + "\n\n" + Wrap(page.summary, 0, 0) + "\n";
    for (const HelpSection& section : page.sections) {
        text += "\n" + section.title + "\n";
        for (const auto& [term, meaning] : section.rows)
            text += RenderRow(term, meaning);
    }
    return text;
}

} // namespace vfil::tool

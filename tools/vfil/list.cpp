/// \file
/// vfil list and vfil help.
#include "catalogue/names.h"
#include "tools/vfil/commands.h"
#include "tools/vfil/help.h"
#include "tools/vfil/report.h"
#include "tools/vfil/text.h"
#include "tools/vfil/valuetext.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iomanip>
#include <iostream>

namespace vfil::tool {

using catalogue::Entry;
using catalogue::MaskUse;
using catalogue::Parameter;
using catalogue::ParameterType;

namespace {

using Json = nlohmann::ordered_json;

const char* MaskName(MaskUse use)
{
    switch (use) {
    case MaskUse::None:
    case MaskUse::Ignored:
        return "none";
    case MaskUse::BoxOnly:
        return "box";
    case MaskUse::Sampled:
        return "sampled";
    case MaskUse::Required:
        return "required";
    }
    return "";
}

Json ParameterRecord(const Parameter& parameter)
{
    Json record = {{"name", parameter.name},
                   {"type", TypeName(parameter.type)},
                   {"unit", parameter.unit},
                   {"summary", parameter.summary}};
    if (!parameter.choices.empty()) {
        for (const catalogue::Choice& choice : parameter.choices) {
            record["choices"].push_back({{"name", choice.name}, {"summary", choice.summary}});
        }
    } else if (parameter.type != ParameterType::Flag) {
        record["minimum"] = NumberRecord(parameter, parameter.minimum);
        record["maximum"] = NumberRecord(parameter, parameter.maximum);
    }
    record["required"] = parameter.required;
    record["default"] = parameter.fallback ? ValueRecord(parameter, *parameter.fallback) : Json();
    return record;
}

Json EntryRecord(const Entry& entry)
{
    Json inputs = Json::array();
    for (const catalogue::Input& input : entry.inputs) {
        inputs.push_back({{"role", input.role},
                          {"summary", input.summary},
                          {"optional", input.optional || input.orFirst}});
    }
    Json outputs = Json::array();
    for (const catalogue::Output& output : entry.outputs) {
        outputs.push_back(
            {{"role", output.role}, {"summary", output.summary}, {"optional", output.optional}});
    }
    Json formats = Json::array();
    for (const GUID& format : entry.formats)
        formats.push_back(catalogue::FormatName(format));
    Json conversions = Json::array();
    for (const catalogue::FormatPair& pair : entry.conversions) {
        conversions.push_back({{"from", catalogue::FormatName(pair.from)},
                               {"to", catalogue::FormatName(pair.to)},
                               {"turnsOver", pair.turnsOver}});
    }
    Json parameters = Json::array();
    for (const Parameter& parameter : entry.parameters)
        parameters.push_back(ParameterRecord(parameter));
    return {{"name", entry.name},
            {"alias", entry.alias},
            {"class", entry.className},
            {"family", entry.family},
            {"summary", entry.summary},
            {"inputs", inputs},
            {"outputs", outputs},
            {"formats", formats},
            {"conversions", conversions},
            {"parameters", parameters},
            {"channels", ChannelLetters(entry.channels)},
            {"fixedChannels", ChannelLetters(entry.fixedChannels)},
            {"mask", MaskName(entry.mask)},
            {"multiplied", entry.multiplied},
            {"whole", entry.whole},
            {"places", entry.places},
            {"spatialReach", entry.spatialReach},
            {"radiusReach", entry.radiusReach},
            {"temporalReach", entry.temporalReach},
            {"bands", entry.bands},
            {"legality", entry.legality},
            {"note", entry.note}};
}

} // namespace

void RunList(const Arguments& arguments)
{
    if (arguments.Flag("json")) {
        Json all = Json::array();
        for (const Entry& entry : catalogue::Entries())
            all.push_back(EntryRecord(entry));
        return PrintRecord(all, std::cout);
    }
    std::size_t nameWidth = 0;
    std::size_t inputsWidth = 0;
    for (const Entry& entry : catalogue::Entries()) {
        nameWidth = std::max(nameWidth, entry.name.size());
        inputsWidth = std::max(inputsWidth, PictureNames(entry).size());
    }
    const auto padded = [](std::size_t width) { return std::setw(static_cast<int>(width) + 1); };
    std::string family;
    for (const Entry& entry : catalogue::Entries()) {
        if (family != entry.family)
            std::cout << (family.empty() ? "" : "\n") << FamilyTitle(entry.family) << '\n';
        family = entry.family;
        std::cout << "  " << std::left << padded(nameWidth) << entry.name << padded(inputsWidth)
                  << PictureNames(entry) << entry.summary << '\n';
    }
}

void RunHelp(const Arguments& arguments)
{
    if (arguments.words.size() > 1)
        throw RequestError("takes one operator, not " + Join(arguments.words, " and "));
    if (arguments.words.empty()) {
        std::cout << RenderText(GeneralHelp());
        return;
    }
    const std::string& name = arguments.words.front();
    if (const Entry* entry = catalogue::Find(name)) {
        HelpPage page = OperatorHelp(*entry);
        page.sections.push_back(SharedOptionHelp(*entry));
        for (const HelpSection& section : ClosingHelp())
            page.sections.push_back(section);
        std::cout << RenderText(page);
        return;
    }
    for (const Command& command : Commands()) {
        if (command.name != name) continue;
        std::cout << RenderText(CommandHelp(command));
        return;
    }
    throw RequestError("there is no operator '" + name + "'" + DidYouMean(name, CommandNames()));
}

} // namespace vfil::tool

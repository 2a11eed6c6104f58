/// \file
/// The settings of sources, steps and sinks.
#include "engine/settings.h"
#include "engine/failure.h"
#include "engine/text.h"
#include "engine/words.h"

#include <catalogue/names.h>

#include <algorithm>

namespace vfil::engine {

using catalogue::Parameter;
using catalogue::ParameterType;

namespace {

std::string ListFormOf(const Parameter& parameter)
{
    const catalogue::List& list = parameter.list;
    const bool point = list.count == 2;
    const char* const first = point ? "X" : "N";
    std::string form = first;
    for (long i = 1; i < list.count; ++i)
        form += std::string(",") + (point ? "Y" : first);
    return list.missing == catalogue::List::Missing::Refused ? form : first + ("[" + form.substr(1) + "]");
}

std::string FormOf(const Parameter& parameter)
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
        return kColourForm;
    case ParameterType::Table:
        return kTableForm;
    case ParameterType::Curve:
        return "CURVE";
    case ParameterType::Box:
        return "X,Y,W,H";
    case ParameterType::Numbers:
        return ListFormOf(parameter);
    case ParameterType::Size:
        return kSizeForm;
    case ParameterType::Vectors:
        return "FILE.flo";
    case ParameterType::Stops:
        return kStopsForm;
    case ParameterType::Lut:
        return "FILE";
    }
    return "";
}

std::vector<std::string> AllFormatNames()
{
    std::vector<std::string> names;
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i)
        names.push_back(catalogue::FormatName(info->id));
    return names;
}

const Setting& SettingNamed(const std::vector<Setting>& settings, std::string_view name)
{
    return *std::find_if(settings.begin(), settings.end(),
                         [name](const Setting& setting) { return setting.name == name; });
}

} // namespace

const std::vector<Setting>& SourceSettings()
{
    static const std::vector<Setting> settings = {
        {"format", "FORMAT", {"rgba32", "rgba64", "mono8", "mono16"}},
        {"in-format", "FORMAT", AllFormatNames()},
        {"in-size", kSizeForm},
        {"matrix", "601|709", {"601", "709"}},
        {"range", "studio|full", {"studio", "full"}},
        {"field-order", "ORDER", {"top", "bottom", "progressive"}},
        {"premultiplied", "yes|no", {"yes", "no"}},
    };
    return settings;
}

const std::vector<Setting>& StepSettings()
{
    static const std::vector<Setting> settings = {
        {"roi", "X,Y,W,H"},
        {"output-offset", "X,Y"},
        {"output-size", kSizeForm},
        {"mask", "FILE[:CHANNEL]"},
        {"mask-offset", "X,Y"},
        {"channels", "LETTERS"},
        {"fields", "odd|even|both", {"odd", "even", "both"}},
        {"default-color", kColourForm},
    };
    return settings;
}

const std::vector<Setting>& SinkSettings()
{
    static const std::vector<Setting> settings = {
        {"to", "FORMAT", AllFormatNames()},
        {"codec", "NAME"},
        {.name = "codec-option", .form = "NAME=VALUE", .repeats = true},
        {"container", "NAME"},
    };
    return settings;
}

std::string FileSettingOf(const Parameter& parameter)
{
    return parameter.name + "-file";
}

std::string PlaceSettingOf(const Parameter& parameter)
{
    return parameter.name + "-at";
}

std::vector<Setting> ParameterSettings(const catalogue::Entry& entry)
{
    std::vector<Setting> settings;
    for (const Parameter& parameter : entry.parameters) {
        settings.push_back({parameter.name, FormOf(parameter), ChoiceNames(parameter)});
        if (parameter.type == ParameterType::Table || parameter.type == ParameterType::Curve)
            settings.push_back({FileSettingOf(parameter), "FILE"});
        if (parameter.role == catalogue::ParameterRole::KeyColour)
            settings.push_back({PlaceSettingOf(parameter), "X,Y[,RADIUS]"});
    }
    if (entry.places) settings.push_back({kCanvasSetting, kCanvasForm});
    if (entry.fields == catalogue::FieldUse::Splits) settings.push_back({kSameRateSetting, ""});
    if (entry.fields == catalogue::FieldUse::Weaves)
        settings.push_back({kFieldOrderSetting, "top|bottom", {"top", "bottom"}});
    if (catalogue::IsGenerator(entry)) {
        settings.push_back({kCanvasSetting, kSizeForm});
        settings.push_back(SettingNamed(SourceSettings(), kFormatSetting));
    }
    if (entry.legality) {
        settings.push_back({kReportSetting, "FILE"});
        settings.push_back({kReportChromaSetting, "own|mean", {"own", "mean"}});
    }
    return settings;
}

std::vector<Setting> SettingsOfStep(const catalogue::Entry& entry)
{
    std::vector<Setting> settings = ParameterSettings(entry);
    settings.insert(settings.end(), StepSettings().begin(), StepSettings().end());
    if (entry.conversions.empty()) return settings;
    // What a sink converts to is what an operator with conversions makes.
    settings.push_back(SettingNamed(SinkSettings(), "to"));
    return settings;
}

std::optional<std::string> Values::Get(const std::string& name) const
{
    const auto found = given.find(name);
    return found == given.end() ? std::nullopt : std::optional(found->second.front());
}

std::vector<std::string> Values::All(const std::string& name) const
{
    const auto found = given.find(name);
    return found == given.end() ? std::vector<std::string>() : found->second;
}

bool Values::Flag(const SettingName& setting) const
{
    const std::string value = Get(setting.name).value_or("no");
    if (value == "yes" || value == "true") return true;
    if (value == "no" || value == "false") return false;
    throw RequestError(setting + " takes yes or no, not '" + value + "'");
}

} // namespace vfil::engine

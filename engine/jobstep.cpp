/// \file
/// A step, from texts.
#include "engine/failure.h"
#include "engine/jobparts.h"
#include "engine/parametervalue.h"
#include "engine/text.h"
#include "engine/values.h"
#include "engine/words.h"

#include <algorithm>
#include <filesystem>

namespace vfil::engine {

using catalogue::Entry;
using catalogue::Parameter;

namespace {

constexpr std::pair<const char*, PXImageChannel> kMaskChannels[] = {
    {"red", PXImageChannel_RED},     {"green", PXImageChannel_GREEN}, {"blue", PXImageChannel_BLUE},
    {"alpha", PXImageChannel_ALPHA}, {"mono", PXImageChannel_MONO},
};

std::optional<vfILBbox2l> Roi(const Values& values)
{
    const auto text = values.Get("roi");
    if (!text) return std::nullopt;
    const auto n = ParseIntegers(*text, ',', 4);
    if (!n) RefuseValue(Named("roi"), *text, "four whole numbers X,Y,W,H, such as 10,20,100,50");
    if ((*n)[2] < 1 || (*n)[3] < 1)
        RefuseValue(Named("roi"), *text, "a region: width and height are at least 1");
    return vfILBbox2l((*n)[0], (*n)[1], (*n)[2], (*n)[3]);
}

bool Exists(const std::string& path)
{
    std::error_code ignored;
    return std::filesystem::exists(path, ignored);
}

// A file name may have a colon of its own: what follows the last one is a channel only when it is the name of
// one, or when there is no such file but one without the ending.
void SplitMask(const std::string& text, StepMask& mask)
{
    mask.input = text;
    const std::size_t colon = text.rfind(':');
    if (colon == std::string::npos) return;
    const std::string name = text.substr(colon + 1);
    std::vector<std::string> names;
    for (const auto& [channelName, channel] : kMaskChannels) {
        names.emplace_back(channelName);
        if (name != channelName) continue;
        mask.input = text.substr(0, colon);
        mask.channel = channel;
        return;
    }
    if (!Exists(text) && Exists(text.substr(0, colon))) {
        throw RequestError(Named("mask") + " " + text + ": '" + name + "' is no channel" +
                           DidYouMean(name, names));
    }
}

std::optional<StepMask> Mask(const Entry& entry, const Values& values)
{
    const auto text = values.Get("mask");
    if (!text && entry.mask == catalogue::MaskUse::Required) {
        throw RequestError("needs a mask; add " + Named("mask") + " FILE[:CHANNEL]");
    }
    if (!text && values.Has("mask-offset"))
        throw RequestError(Named("mask-offset") + " needs " + Named("mask") + " FILE[:CHANNEL]");
    if (!text) return std::nullopt;
    StepMask mask;
    SplitMask(*text, mask);
    if (mask.input.empty())
        RefuseValue(Named("mask"), *text, "FILE[:CHANNEL]: the name of the file is empty");
    mask.offset = Offset(values, "mask-offset").value_or(vfILVector2l());
    return mask;
}

unsigned long Channels(const Entry& entry, const Values& values)
{
    const auto text = values.Get("channels");
    if (!text) return entry.channels;
    const std::string all = ChannelLetters(VFIL_MODE_RGBA);
    unsigned long mode = 0;
    for (const char letter : *text) {
        const std::size_t index = all.find(letter);
        if (index == std::string::npos)
            RefuseValue(Named("channels"), *text, "made of the letters r, g, b and a");
        mode |= 1ul << index;
    }
    if (mode == 0) RefuseValue(Named("channels"), *text, "made of the letters r, g, b and a");
    if ((mode & entry.fixedChannels) != entry.fixedChannels) {
        throw RequestError(Named("channels") + " " + *text + " leaves out what " + entry.name +
                           " always works on; it takes " +
                           (entry.fixedChannels == VFIL_MODE_RGBA ? "rgba alone" : "rgb or rgba"));
    }
    return mode;
}

unsigned long Fields(const Values& values)
{
    const auto text = values.Get("fields");
    if (!text || *text == "both") return 0;
    if (*text == "odd") return VFIL_MODE_ODD_ROWS;
    if (*text == "even") return VFIL_MODE_EVEN_ROWS;
    RefuseValue(Named("fields"), *text, "odd, even or both");
}

CanvasSize Canvas(const Values& values)
{
    using Kind = CanvasSize::Kind;
    const auto text = values.Get(kCanvasSetting);
    if (!text) return {};
    if (*text == "same") return {Kind::Same};
    if (*text == "fit") return {Kind::Fit};
    if (!ParseIntegers(*text, 'x', 2))
        RefuseValue(Named(kCanvasSetting), *text, "a size WxH, such as 720x576, or same or fit");
    return {Kind::Given, *Size(values, kCanvasSetting)};
}

// The names of those that are given.
std::vector<std::string> GivenOf(const std::vector<const char*>& names, const Values& values)
{
    std::vector<std::string> given;
    for (const char* name : names)
        if (values.Has(name)) given.emplace_back(name);
    return given;
}

void CheckAlternatives(const Entry& entry, const Values& values)
{
    for (const catalogue::Alternatives& either : entry.alternatives) {
        const auto one = GivenOf(either.one, values);
        const auto other = GivenOf(either.other, values);
        if (!one.empty() && !other.empty()) {
            throw RequestError("takes " + Named(one.front()) + " or " + Named(other.front()) + ", not both");
        }
        if (either.required && one.empty() && other.empty())
            throw RequestError("needs " + Named(either.one.front()) + " or " + Named(either.other.front()));
    }
}

vfILColor DefaultColor(const Values& values)
{
    const auto text = values.Get("default-color");
    if (!text) return {0, 0, 0, 0};
    const auto c = ParseColour(*text);
    if (!c) RefuseValue(Named("default-color"), *text, kRightColour);
    if (std::any_of(c->begin(), c->end(), [](double v) { return v < 0 || v > 1; })) {
        throw RequestError(Named("default-color") + " " + *text +
                           " is out of range: each component is 0 .. 1");
    }
    return {(*c)[0], (*c)[1], (*c)[2], (*c)[3]};
}

// Where the first picture has the colour of a key.
std::optional<ColourPlace> KeyColour(const Entry& entry, const Values& values)
{
    const Parameter* const parameter = FindRole(entry, catalogue::ParameterRole::KeyColour);
    const std::string setting = parameter != nullptr ? PlaceSettingOf(*parameter) : "";
    const auto text = values.Get(setting);
    if (!text) return std::nullopt;
    if (values.Has(parameter->name))
        throw RequestError("takes " + Named(parameter->name) + " or " + Named(setting) + ", not both");
    auto n = ParseIntegers(*text, ',', 2);
    if (n) n->push_back(0);
    if (!n) n = ParseIntegers(*text, ',', 3);
    if (!n || (*n)[2] < 0) {
        RefuseValue(Named(setting), *text,
                    "two whole numbers X,Y, or three with a radius of at least 0, such as 40,20,3");
    }
    return ColourPlace{parameter, (*n)[0], (*n)[1], (*n)[2]};
}

vfILVector2l GivenSize(const Values& values)
{
    const auto size = Size(values, kCanvasSetting);
    if (!size) throw RequestError("needs " + Named(kCanvasSetting) + " WxH, the size of what it makes");
    return *size;
}

void TakeReport(const Values& values, Step& step)
{
    step.report = values.Get(kReportSetting).value_or("");
    if (values.Has(kReportSetting) && step.report.empty())
        RefuseValue(Named(kReportSetting), "", "the name of a file");
    step.meanChroma =
        OneOf<bool>(values, Named(kReportChromaSetting), {{"own", false}, {"mean", true}}).value_or(false);
}

} // namespace

Step MakeStep(const Entry& entry, const Values& values)
{
    Step step;
    step.entry = &entry;
    CheckAlternatives(entry, values);
    for (const Parameter& parameter : entry.parameters) {
        if (const auto value = ParameterValue(parameter, values))
            step.parameters.emplace_back(&parameter, *value);
    }
    step.keyColour = KeyColour(entry, values);
    step.roi = Roi(values);
    step.outputOffset = Offset(values, "output-offset");
    step.outputSize = Size(values, "output-size");
    if (entry.places) step.canvas = Canvas(values);
    step.mask = Mask(entry, values);
    step.mode = Channels(entry, values) | Fields(values);
    step.fieldsTogether = values.Get("fields") == "both";
    step.usualChannels = !values.Has("channels");
    step.defaultColor = DefaultColor(values);
    if (!entry.conversions.empty()) step.to = Format(values, "to");
    if (catalogue::IsGenerator(entry)) {
        step.canvas = {CanvasSize::Kind::Given, GivenSize(values)};
        step.to = Format(values, kFormatSetting);
    }
    if (entry.legality) TakeReport(values, step);
    if (entry.fields == catalogue::FieldUse::Splits) step.sameRate = values.Flag(Named(kSameRateSetting));
    if (entry.fields == catalogue::FieldUse::Weaves) {
        step.fieldOrder = OneOf<host::FieldOrder>(
            values, Named(kFieldOrderSetting),
            {{"top", host::FieldOrder::TopFirst}, {"bottom", host::FieldOrder::BottomFirst}});
    }
    return step;
}

} // namespace vfil::engine

/// \file
/// The part of CheckJob that holds a step against what flows into it.
#include "catalogue/names.h"
#include "engine/failure.h"
#include "engine/planning.h"
#include "engine/settings.h"
#include "engine/text.h"
#include "engine/words.h"

#include <algorithm>
#include <cstdint>

namespace vfil::engine {

using catalogue::FormatName;
using catalogue::ParameterRole;

namespace {

Message RegionSettings()
{
    return Named("roi") + ", " + Named("output-offset") + " and " + Named("output-size");
}

const Signal& SignalOf(const JobPlan& plan, const StepInput& input)
{
    return plan.signals[*input.signal];
}

// The input that the result takes after: the first, unless that is missing.
const Signal& FirstOf(const JobPlan& plan, const StepPlan& planned)
{
    return SignalOf(plan, *std::find_if(planned.inputs.begin(), planned.inputs.end(),
                                        [](const StepInput& input) { return input.signal.has_value(); }));
}

const Signal& DominantOf(const JobPlan& plan, const StepPlan& planned)
{
    return planned.dominant == 0 ? FirstOf(plan, planned) : SignalOf(plan, planned.inputs[planned.dominant]);
}

// All signals that flow into a step.
Signals TakenBy(const JobPlan& plan, const StepPlan& planned)
{
    Signals taken;
    for (const StepInput& input : planned.inputs)
        if (input.signal) taken.push_back(&SignalOf(plan, input));
    if (planned.mask) taken.push_back(&SignalOf(plan, planned.mask->input));
    return taken;
}

// The input that the result has its rate and its fields from: the first clip, if there is one.
const Signal& TimedOf(const JobPlan& plan, const StepPlan& planned)
{
    const Signals taken = TakenBy(plan, planned);
    const auto clip = std::find_if(taken.begin(), taken.end(), [](const Signal* s) { return s->clip; });
    return clip == taken.end() ? *taken.front() : **clip;
}

void CheckRates(const JobPlan& plan, const StepPlan& planned)
{
    const Signal& timed = TimedOf(plan, planned);
    for (const Signal* other : TakenBy(plan, planned)) {
        if (!other->clip || other->doublings == timed.doublings) continue;
        throw RequestError(planned.step.entry->name + " takes clips frame by frame, and " + timed.label +
                           " and " + other->label + " differ in their rate");
    }
}

// Whether an input is the first one again, and lies where that does.
bool IsFirstAgain(const Step& step, std::size_t index)
{
    const auto moves = [](const auto& given) { return given.first->role == ParameterRole::InputOffset; };
    return index > 0 && step.entry->inputs[index].orFirst && step.inputs[index] == step.inputs.front() &&
           std::none_of(step.parameters.begin(), step.parameters.end(), moves);
}

void PlanInputs(JobPlan& plan, StepPlan& planned)
{
    Signals inputs;
    for (const std::string& name : planned.step.inputs) {
        if (!name.empty()) inputs.push_back(&plan.signals[*FindSignal(plan, name)]);
    }
    if (inputs.empty()) throw RequestError(planned.step.entry->name + " needs at least one input");
    planned.format = WorkingFormat(planned.step, inputs);
    for (const std::string& name : planned.step.inputs) {
        if (name.empty()) {
            planned.inputs.emplace_back();
            continue;
        }
        if (IsFirstAgain(planned.step, planned.inputs.size())) {
            planned.inputs.push_back(planned.inputs.front());
            planned.inputs.back().isFirst = true;
            continue;
        }
        const std::size_t signal = *FindSignal(plan, name);
        planned.inputs.push_back(
            {.signal = signal, .conversion = *Insert(plan, plan.signals[signal], planned.format)});
        planned.clip = planned.clip || plan.signals[signal].clip;
    }
}

void PlanDominant(const JobPlan& plan, StepPlan& planned)
{
    vfILVector2l offset;
    const catalogue::Parameter* dominant = FindRole(*planned.step.entry, ParameterRole::DominantInput);
    if (dominant != nullptr && dominant->fallback) planned.dominant = dominant->fallback->x == 0 ? 0 : 1;
    for (const auto& [parameter, value] : planned.step.parameters) {
        if (parameter->role == ParameterRole::DominantInput) planned.dominant = value.x == 0 ? 0 : 1;
        if (parameter->role == ParameterRole::InputOffset) {
            offset = vfILVector2l(static_cast<long>(value.x), static_cast<long>(value.y));
        }
    }
    const Signal& input = DominantOf(plan, planned);
    planned.dominantBox = vfILBbox2l(0, 0, input.width, input.height);
    if (planned.dominant != 0) planned.dominantBox.SetOffset(offset);
}

void PlanRoi(const JobPlan& plan, StepPlan& planned)
{
    const Step& step = planned.step;
    const vfILVector2l size = planned.dominantBox.GetSize();
    if (!step.roi) {
        // What of the picture does not fit an output of a given size is left out.
        const vfILVector2l room = step.outputSize ? *step.outputSize - planned.outputOffset : size;
        planned.roi = vfILBbox2l(0, 0, std::min(size[0], room[0]), std::min(size[1], room[1]));
        return;
    }
    planned.roi = *step.roi;
    const vfILBbox2l& roi = planned.roi;
    if (!(roi & planned.dominantBox).IsNull()) return;
    throw RequestError(Named("roi") + " " +
                       NumberList({roi.GetOffsetX(), roi.GetOffsetY(), roi.GetSizeX(), roi.GetSizeY()}) +
                       " lies outside " + DominantOf(plan, planned).label + ", which is " +
                       SizeText(size[0], size[1]));
}

void PlanRegions(const JobPlan& plan, StepPlan& planned)
{
    if (planned.step.entry->places) {
        PlanCanvas(planned, FirstOf(plan, planned));
        CheckOutputSize(planned.format, planned.outputSize, Named(kCanvasSetting));
        return;
    }
    planned.outputOffset = planned.step.outputOffset.value_or(vfILVector2l());
    const vfILVector2l& offset = planned.outputOffset;
    if (offset[0] < 0 || offset[1] < 0) {
        throw RequestError(Named("output-offset") + " " + NumberList({offset[0], offset[1]}) +
                           " is out of range: X and Y are at least 0");
    }
    PlanRoi(plan, planned);
    const vfILVector2l end = planned.roi.GetSize() + offset;
    planned.outputSize = planned.step.outputSize.value_or(end);
    const vfILVector2l& size = planned.outputSize;
    if (planned.roi.IsNull() || end[0] > size[0] || end[1] > size[1]) {
        throw RequestError("the region does not fit the output of " + SizeText(size[0], size[1]) + "; see " +
                           RegionSettings());
    }
    CheckOutputSize(planned.format, size, RegionSettings());
}

PXImageChannel MaskChannel(const StepMask& mask, const Signal& signal)
{
    const bool mono = IsMono(signal.format);
    if (!mask.channel)
        return mono ? PXImageChannel_MONO : signal.alpha ? PXImageChannel_ALPHA : PXImageChannel_RED;
    if (mono == (*mask.channel == PXImageChannel_MONO)) return *mask.channel;
    throw RequestError(Named("mask") + " " + signal.label + " is a " + (mono ? "grey" : "colour") +
                       " picture: its channel is " + (mono ? "mono" : "red, green, blue or alpha"));
}

void CheckVectors(const JobPlan& plan, const StepPlan& planned)
{
    const Signal& input = FirstOf(plan, planned);
    for (const auto& [parameter, value] : planned.step.parameters) {
        if (!value.vectors) continue;
        const catalogue::VectorField& field = *value.vectors;
        if (field.width == input.width && field.height == input.height) continue;
        throw RequestError(Named(parameter->name) + ": " + field.path + " is for pictures of " +
                           SizeText(field.width, field.height) + ", and " + input.label + " is " +
                           SizeText(input.width, input.height));
    }
}

void CheckKeyColour(const JobPlan& plan, const StepPlan& planned)
{
    const std::optional<ColourPlace>& place = planned.step.keyColour;
    if (!place) return;
    const Signal& input = FirstOf(plan, planned);
    if (place->x >= 0 && place->x < input.width && place->y >= 0 && place->y < input.height) return;
    throw RequestError(Named(PlaceSettingOf(*place->parameter)) + " " + NumberList({place->x, place->y}) +
                       " lies outside " + input.label + ", which is " + SizeText(input.width, input.height));
}

void PlanMask(JobPlan& plan, StepPlan& planned)
{
    if (!planned.step.mask) return;
    const StepMask& mask = *planned.step.mask;
    const std::size_t index = *FindSignal(plan, mask.input);
    const Signal signal = plan.signals[index];
    if (IsRaw(signal.label))
        throw RequestError(Named("mask") + " " + signal.label + ": a mask is no .raw picture");
    MaskPlan made;
    made.channel = MaskChannel(mask, signal);
    const bool deep = IsDeep(planned.format);
    const GUID colour = deep ? PXFormat_RGBA64 : PXFormat_RGBA32;
    const GUID grey = deep ? PXFormat_Mono16 : PXFormat_Mono8;
    made.input = {index, *Insert(plan, signal, IsMono(signal.format) ? grey : colour)};
    made.box = vfILBbox2l(mask.offset[0], mask.offset[1], signal.width, signal.height);
    if ((made.box & planned.roi).IsNull()) {
        throw RequestError(Named("mask") + " " + signal.label + ", at " +
                           NumberList({mask.offset[0], mask.offset[1]}) + " and of " +
                           SizeText(signal.width, signal.height) + ", does not touch the region; see " +
                           Named("mask-offset"));
    }
    planned.mask = made;
    planned.clip = planned.clip || signal.clip;
}

// A picture without alpha stays one: the rounding of a filter would make it a little clear.
void LeaveFullAlpha(const JobPlan& plan, StepPlan& planned)
{
    Step& step = planned.step;
    const Signal& first = FirstOf(plan, planned);
    if (!step.usualChannels || step.entry->inputs.size() > 1 || first.alpha || first.mayClear) return;
    step.mode &= ~(VFIL_MODE_ALPHA & ~step.entry->fixedChannels);
}

// Operators whose result is multiplied let the dominant picture through where the two do not overlap:
// straight colour would stand beside multiplied colour there. Who states a premultiplication gets the class's
// own behaviour.
bool WorksMultiplied(const StepPlan& planned)
{
    const auto& parameters = planned.step.parameters;
    const bool stated = std::any_of(parameters.begin(), parameters.end(), [](const auto& given) {
        return given.first->role == ParameterRole::Premultiplication;
    });
    const bool rgba = planned.format == PXFormat_RGBA32 || planned.format == PXFormat_RGBA64;
    const bool filtersColourAlone =
        planned.step.entry->inputs.size() == 1 && (planned.step.mode & VFIL_MODE_ALPHA) == 0;
    return planned.step.entry->multiplied && rgba && !stated && !filtersColourAlone;
}

// Of the formats that the operator makes of the one in which it works the wanted one, else one with the
// matrix of the first source.
GUID ResultFormat(const JobPlan& plan, const StepPlan& planned)
{
    const Step& step = planned.step;
    std::vector<GUID> formats;
    for (const catalogue::FormatPair& pair : step.entry->conversions) {
        if (pair.from == planned.format) formats.push_back(pair.to);
    }
    if (formats.empty()) return planned.format;
    if (!step.to) {
        const GUID& home = FirstOf(plan, planned).home;
        const auto likeHome = std::find_if(formats.begin(), formats.end(), [&](const GUID& format) {
            return InfoOf(format).model == InfoOf(home).model;
        });
        return likeHome == formats.end() ? formats.front() : *likeHome;
    }
    if (std::find(formats.begin(), formats.end(), *step.to) != formats.end()) return *step.to;
    throw RequestError(step.entry->name + " does not make " + FormatName(*step.to) + " of " +
                       FormatName(planned.format) + "; it makes " + FormatNames(formats));
}

void CheckTaken(const Step& step)
{
    using enum catalogue::MaskUse;
    if (step.mask && (step.entry->mask == None || catalogue::IsGenerator(*step.entry)))
        throw RequestError(step.entry->name + " takes no " + Named("mask"));
    if (step.mask && step.entry->mask == Ignored)
        throw RequestError(step.entry->name + " takes no " + Named("mask") +
                           "; for a part of the picture see " + Named("roi"));
    const bool sized = step.entry->places || catalogue::IsGenerator(*step.entry);
    if (sized && (step.roi || step.outputOffset || step.outputSize)) {
        throw RequestError(step.entry->name + " takes no " + Named("roi") + ", " + Named("output-offset") +
                           " and " + Named("output-size") + "; see " + Named(kCanvasSetting));
    }
    if (!step.entry->whole) return;
    if (step.roi || step.outputOffset || step.outputSize || (step.mode & kFieldBits) != 0) {
        throw RequestError(step.entry->name + " works on whole pictures: it takes no " + Named("roi") + ", " +
                           Named("output-offset") + ", " + Named("output-size") + " and " + Named("fields"));
    }
}

Signal ResultSignal(const JobPlan& plan, const StepPlan& planned)
{
    const Signal& first = FirstOf(plan, planned);
    Signal result = first;
    result.format = planned.resultFormat;
    const catalogue::Entry& entry = *planned.step.entry;
    if (!entry.conversions.empty() || entry.legality) result.home = result.format;
    result.width = planned.outputSize[0];
    result.height = planned.outputSize[1];
    result.clip = planned.clip;
    result.fieldOrder = planned.fieldOrder;
    result.doublings = TimedOf(plan, planned).doublings + planned.doubles;
    const Step& step = planned.step;
    const bool whole = planned.outputSize == planned.dominantBox.GetSize() && !step.roi;
    const bool copies = catalogue::IsConverter(*step.entry) || step.entry->copies;
    const bool writesAlpha = (step.mode & VFIL_MODE_ALPHA) != 0 && !copies;
    result.mayClear = !planned.opaque && (first.mayClear || writesAlpha || !whole || planned.dominant != 0);
    result.ofCanvas = step.entry->places;
    for (const StepInput& input : planned.inputs) {
        if (!result.clipRoot && input.signal) result.clipRoot = SignalOf(plan, input).clipRoot;
    }
    if (!InfoOf(result.format).alpha) result.alpha = result.mayClear = false;
    // What joins a key to a fill makes alpha.
    if (InfoOf(result.format).alpha && !InfoOf(planned.format).alpha && !copies) result.alpha = true;
    if (!result.clipRoot && planned.mask) result.clipRoot = SignalOf(plan, planned.mask->input).clipRoot;
    return result;
}

} // namespace

void CheckOutputSize(const GUID& format, const vfILVector2l& size, const Message& settings)
{
    const auto pixels = static_cast<std::uint64_t>(size[0]) * static_cast<std::uint64_t>(size[1]);
    const auto pixelBytes = static_cast<std::uint64_t>(InfoOf(format).pixelBytes);
    const long side = std::max(size[0], size[1]);
    if (side <= host::kMaxFileSide && pixels <= host::kMaxFileBytes / pixelBytes) return;
    throw RequestError("an output of " + SizeText(size[0], size[1]) + " is too large; see " + settings);
}

void AddResults(JobPlan& plan, StepPlan& planned, Signal result)
{
    const std::vector<std::string>& names = planned.step.results;
    planned.outputs.resize(names.size());
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i].empty()) continue;
        const bool again = i > 0 && names[i] == names[0];
        planned.outputs[i].signal = again ? *planned.outputs[0].signal : plan.signals.size();
        if (again) continue;
        result.name = names[i];
        result.label = names[i];
        plan.signals.push_back(result);
    }
}

void PlanStep(JobPlan& plan, Step step)
{
    CheckTaken(step);
    if (catalogue::IsGenerator(*step.entry)) return PlanGenerator(plan, std::move(step));
    StepPlan planned;
    planned.step = std::move(step);
    PlanInputs(plan, planned);
    TakeColourModel(planned, FirstOf(plan, planned));
    PlanLegality(plan, planned, FirstOf(plan, planned));
    LeaveFullAlpha(plan, planned);
    PlanDominant(plan, planned);
    CheckVectors(plan, planned);
    PlanRegions(plan, planned);
    CheckKeyColour(plan, planned);
    PlanMask(plan, planned);
    CheckRates(plan, planned);
    PlanFields(plan, planned, TimedOf(plan, planned));
    planned.multiply = WorksMultiplied(planned);
    planned.resultFormat = ResultFormat(plan, planned);
    AddResults(plan, planned, ResultSignal(plan, planned));
    plan.steps.push_back(std::move(planned));
}

} // namespace vfil::engine

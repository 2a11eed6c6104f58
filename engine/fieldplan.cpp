/// \file
/// The part of CheckJob that is about fields: which frames a step takes and makes, and what they are then.
#include "engine/failure.h"
#include "engine/planning.h"
#include "engine/settings.h"

#include <vfil/interpolation.h>

#include <algorithm>

namespace vfil::engine {

using catalogue::FieldUse;
using catalogue::Parameter;
using host::FieldOrder;

namespace {

// Whether the rows of even y, counted from the bottom, are those of the earlier field.
bool IsEvenFirst(FieldOrder order, long height)
{
    const bool evenIsTop = height % 2 != 0;
    return (order != FieldOrder::BottomFirst) == evenIsTop;
}

// How missing rows are made, when somebody says so.
std::optional<int> MissingRowsOf(const Step& step)
{
    for (const auto& [parameter, value] : step.parameters)
        if (parameter->role == catalogue::ParameterRole::MissingRows) return static_cast<int>(value.x);
    return std::nullopt;
}

std::pair<const Parameter*, catalogue::Value> Interpolated(const Step& step)
{
    return {FindRole(*step.entry, catalogue::ParameterRole::MissingRows), {VFIL_DEINTERLACE_INTERPOLATE}};
}

// The frames with which those of a clip are compared by default: a field lies in time between the other field
// of its own frame and that of the frame before, when it comes first, or behind.
void CompareWithNeighbours(StepPlan& planned, bool evenFirst)
{
    for (const std::size_t result : {0, 1}) {
        StepInput& compared = planned.inputs[result + 1];
        if (compared.signal || planned.step.results[result].empty()) continue;
        const bool first = (result == 0) == evenFirst;
        compared = planned.inputs.front();
        compared.offset = first ? -1 : 1;
        compared.otherwise = -compared.offset;
        // A clip of one frame has neither.
        planned.alone = Interpolated(planned.step);
    }
}

void CheckPictureToSplit(StepPlan& planned)
{
    Step& step = planned.step;
    const auto given = MissingRowsOf(step);
    bool complete = true;
    for (const std::size_t result : {0, 1})
        complete = complete && (step.results[result].empty() || planned.inputs[result + 1].signal);
    const bool compares = given.value_or(VFIL_DEINTERLACE_ADAPTIVE) == VFIL_DEINTERLACE_ADAPTIVE;
    if (complete || !compares) return;
    if (given) {
        const Message type = Named(Interpolated(step).first->name);
        throw RequestError(type +
                           " adaptive compares a picture with others, one for each result that is "
                           "wanted; give these behind the picture, or take " +
                           type + " interpolate");
    }
    step.parameters.push_back(Interpolated(step));
}

// The two fields of a frame become two frames of one result, or the first of them its only one.
void PlanSequence(StepPlan& planned, bool evenFirst)
{
    Step& step = planned.step;
    if (step.sameRate) {
        if (!evenFirst) std::swap(step.results[0], step.results[1]);
        return;
    }
    step.results[1] = step.results[0];
    planned.outputs[0] = {.stride = 2, .offset = evenFirst ? 0 : 1};
    planned.outputs[1] = {.stride = 2, .offset = evenFirst ? 1 : 0};
    planned.doubles = 1;
}

void PlanSplit(JobPlan& plan, StepPlan& planned, const Signal& input)
{
    Step& step = planned.step;
    planned.fieldOrder = FieldOrder::Progressive;
    if (!input.clip) {
        if (step.sameRate)
            throw RequestError(Named(kSameRateSetting) + ": " + input.label +
                               " is a picture, without a rate");
        return CheckPictureToSplit(planned);
    }
    if (input.fieldOrder == FieldOrder::Progressive) {
        plan.remarks.push_back(input.label + " says that it is progressive: " + step.entry->name +
                               " takes it as interlaced, top field first; " + Named("field-order") +
                               " says which is first");
    }
    const bool evenFirst = IsEvenFirst(input.fieldOrder, input.height);
    const bool apart = step.results[0].empty() || !step.results[1].empty();
    if (apart && step.sameRate)
        throw RequestError(Named(kSameRateSetting) + " is of one clip; two have the rate anyway");
    if (!apart) PlanSequence(planned, evenFirst);
    const int type = MissingRowsOf(step).value_or(VFIL_DEINTERLACE_ADAPTIVE);
    if (type == VFIL_DEINTERLACE_ADAPTIVE) CompareWithNeighbours(planned, evenFirst);
}

void PlanWeave(JobPlan& plan, StepPlan& planned, const Signal& input)
{
    Step& step = planned.step;
    planned.fieldOrder = step.fieldOrder.value_or(FieldOrder::TopFirst);
    if (planned.inputs[1].signal) {
        if (input.clip && !step.fieldOrder) {
            plan.remarks.push_back(step.entry->name + ": the result is said to have the top field first; " +
                                   Named("field-order") + " says otherwise");
        }
        return;
    }
    if (!input.clip) {
        throw RequestError(step.entry->name + " takes two pictures, or one clip of twice the rate, and " +
                           input.label + " is one picture");
    }
    if (input.fieldOrder != FieldOrder::Progressive) {
        plan.remarks.push_back(input.label + " is interlaced itself, and " + step.entry->name +
                               " takes each of its frames for one moment");
    }
    const bool evenFirst = IsEvenFirst(planned.fieldOrder, input.height);
    planned.inputs[1] = planned.inputs[0];
    planned.inputs[0].stride = planned.inputs[1].stride = 2;
    planned.inputs[evenFirst ? 1 : 0].offset = 1;
    planned.doubles = -1;
}

FieldOrder Opposite(FieldOrder order)
{
    if (order == FieldOrder::Progressive) return order;
    return order == FieldOrder::TopFirst ? FieldOrder::BottomFirst : FieldOrder::TopFirst;
}

// Rows of a field that mix with those of the other.
void WarnOfMixing(JobPlan& plan, const StepPlan& planned, const Signal& input)
{
    const Step& step = planned.step;
    const bool chosen = step.fieldsTogether || (step.mode & kFieldBits) != 0;
    const bool mixes = step.entry->movesRows && input.fieldOrder != FieldOrder::Progressive;
    if (!mixes || chosen || plan.mixesFields) return;
    plan.mixesFields = true;
    plan.remarks.push_back(input.label + " is interlaced, and " + step.entry->name +
                           " mixes the two fields of its frames: deinterlace it first (" +
                           HelpOn{"deinterlace"} + "), or say with " + Named("fields") +
                           " both that this is meant, or with " + Named("field-order") +
                           " progressive that it has no fields");
}

// What the frames are in which the two fields changed places or became one: of whole frames both did.
FieldOrder OrderAfter(const Step& step, FieldOrder order)
{
    const bool part = step.roi || step.outputOffset || step.outputSize || (step.mode & kFieldBits) != 0;
    if (part) return order;
    if (step.entry->fields == FieldUse::Swaps) return Opposite(order);
    return step.entry->fields == FieldUse::Merges ? FieldOrder::Progressive : order;
}

} // namespace

void PlanFields(JobPlan& plan, StepPlan& planned, const Signal& input)
{
    const Step& step = planned.step;
    planned.outputs.resize(step.entry->outputs.size());
    planned.fieldOrder = OrderAfter(step, input.fieldOrder);
    if (step.entry->fields == FieldUse::Splits) PlanSplit(plan, planned, input);
    if (step.entry->fields == FieldUse::Weaves) {
        if (step.roi || step.outputOffset || step.outputSize)
            throw RequestError(step.entry->name + " weaves whole pictures: it takes no " + Named("roi") +
                               ", " + Named("output-offset") + " and " + Named("output-size"));
        PlanWeave(plan, planned, input);
    }
    WarnOfMixing(plan, planned, input);
}

} // namespace vfil::engine

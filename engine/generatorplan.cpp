/// \file
/// The part of CheckJob that holds a step without inputs against what it is to make.
#include "catalogue/names.h"
#include "engine/failure.h"
#include "engine/planning.h"
#include "engine/settings.h"
#include "engine/words.h"

#include <algorithm>

namespace vfil::engine {

namespace {

// What the parameters say of colours that are clear.
bool HasClearColour(const Step& step)
{
    using catalogue::ParameterType;
    const auto isClear = [](const auto& given) {
        const auto& [parameter, value] = given;
        if (parameter->type == ParameterType::Colour) return value.w < 1;
        if (parameter->type != ParameterType::Stops) return false;
        const std::vector<double>& n = value.table.numbers;
        for (std::size_t alpha = catalogue::kStopColumns - 1; alpha < n.size();
             alpha += catalogue::kStopColumns)
            if (n[alpha] < 1) return true;
        return false;
    };
    return std::any_of(step.parameters.begin(), step.parameters.end(), isClear);
}

void CheckParameters(const Step& step)
{
    if (!step.entry->object) return;
    const auto op = Prepared(step);
    const auto objection = step.entry->object(op->Processor());
    if (!objection) return;
    throw RequestError(Fault{.parameter = objection->parameter,
                             .text = Named(objection->parameter) + ": " + objection->text});
}

GUID FormatOf(const Step& step)
{
    const std::vector<GUID>& formats = step.entry->formats;
    const GUID format = step.to.value_or(formats.front());
    if (std::find(formats.begin(), formats.end(), format) != formats.end()) return format;
    throw RequestError(step.entry->name + " does not make " + catalogue::FormatName(format) + "; it makes " +
                       FormatNames(formats));
}

} // namespace

void PlanGenerator(JobPlan& plan, Step step)
{
    CheckParameters(step);
    StepPlan planned;
    planned.step = std::move(step);
    planned.format = planned.resultFormat = FormatOf(planned.step);
    planned.outputSize = planned.step.canvas.size;
    CheckOutputSize(planned.format, planned.outputSize, Named(kCanvasSetting));
    planned.roi = planned.dominantBox = vfILBbox2l(0, 0, planned.outputSize[0], planned.outputSize[1]);
    Signal result;
    result.format = result.home = planned.format;
    result.width = planned.outputSize[0];
    result.height = planned.outputSize[1];
    result.alpha = InfoOf(planned.format).alpha && HasClearColour(planned.step);
    AddResults(plan, planned, result);
    plan.steps.push_back(std::move(planned));
}

} // namespace vfil::engine

/// \file
/// The part of CheckJob that is about colour: whose weights luma has, and reports on how legal it is.
#include "catalogue/names.h"
#include "engine/failure.h"
#include "engine/planning.h"
#include "engine/settings.h"
#include "host/temporaryfile.h"

#include <algorithm>

namespace vfil::engine {

namespace {

// A report is a file of its own.
void CheckReport(const JobPlan& plan, const std::string& path)
{
    const Message report = Named(kReportSetting) + " " + path;
    if (path == "-") throw RequestError(report + ": standard output is none for it; take the name of a file");
    host::CheckReplaceable(path);
    for (const SourcePlan& source : plan.sources)
        if (host::SamePath(source.source.path, path)) throw RequestError(report + " is read, too");
    for (const StepPlan& step : plan.steps)
        if (step.step.report == path) throw RequestError(report + " is written twice");
}

} // namespace

void TakeColourModel(StepPlan& planned, const Signal& first)
{
    const catalogue::Parameter* model = FindRole(*planned.step.entry, catalogue::ParameterRole::ColourModel);
    auto& parameters = planned.step.parameters;
    const bool given = std::any_of(parameters.begin(), parameters.end(),
                                   [model](const auto& one) { return one.first == model; });
    if (model == nullptr || given) return;
    const bool is601 = InfoOf(first.home).model == PXColorModel_YCC;
    parameters.emplace_back(
        model, catalogue::Value{static_cast<double>(is601 ? PXColorModel_YCC : PXColorModel_YCC709)});
}

void PlanLegality(JobPlan& plan, const StepPlan& planned, const Signal& input)
{
    const Step& step = planned.step;
    if (!step.report.empty()) CheckReport(plan, step.report);
    if (!step.entry->legality || InfoOf(planned.format).ycc) return;
    plan.remarks.push_back(input.label + " is " + catalogue::FormatName(planned.format) +
                           ", and every colour of RGB is legal: " + step.entry->name +
                           " has nothing to do; 4:2:2 is what it works on");
}

} // namespace vfil::engine

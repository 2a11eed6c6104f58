/// \file
/// CheckJob: names and order; the parts are held against files by sourceplan.cpp, stepplan.cpp and
/// sinkplan.cpp.
#include "engine/checkjob.h"
#include "engine/failure.h"
#include "engine/planning.h"
#include "engine/text.h"
#include "engine/timing.h"

#include <algorithm>
#include <set>

namespace vfil::engine {

namespace {

// Concerning a part; a file that stands in a file is said with its place too.
template <class Work>
void At(const std::string& where, const std::string& step, Work work)
{
    try {
        Concerning(where, step, work);
    } catch (const host::FileError& error) {
        if (where.empty()) throw;
        throw RequestError(Fault{.where = where, .step = step, .text = error.what()});
    }
}

std::vector<std::string> NeedsOf(const Step& step)
{
    std::vector<std::string> needs = step.inputs;
    std::erase(needs, "");
    if (step.mask) needs.push_back(step.mask->input);
    return needs;
}

// All names of a job, each of which may stand once.
std::set<std::string> CollectNames(const Job& job)
{
    std::set<std::string> names;
    const auto add = [&](const std::string& name) {
        if (!names.insert(name).second) throw RequestError("the name '" + name + "' is given twice");
    };
    for (const Source& source : job.sources)
        At(source.where, source.name, [&] { add(source.name); });
    for (const Step& step : job.steps) {
        for (const std::string& result : step.results)
            if (!result.empty()) At(step.where, NameOf(step), [&] { add(result); });
    }
    return names;
}

void CheckName(const std::set<std::string>& names, const std::string& name)
{
    if (names.contains(name)) return;
    throw RequestError("nothing is named '" + name + "'" + DidYouMean(name, {names.begin(), names.end()}));
}

void CheckCounts(const Step& step)
{
    const std::vector<catalogue::Input>& inputs = step.entry->inputs;
    const auto check = [&](std::size_t given, std::size_t wanted, const std::string& text) {
        if (given == wanted) return;
        throw RequestError(step.entry->name + text + std::to_string(wanted) + ", not " +
                           std::to_string(given));
    };
    check(step.inputs.size(), inputs.size(), ": the count of inputs is ");
    check(step.results.size(), step.entry->outputs.size(), ": the count of results is ");
    for (std::size_t i = 0; i < inputs.size(); ++i) {
        if (step.inputs[i].empty() && !inputs[i].optional && !inputs[i].orFirst)
            throw RequestError(step.entry->name + " needs its input " + inputs[i].role);
    }
}

void CheckNames(const Job& job)
{
    const std::set<std::string> names = CollectNames(job);
    for (const Step& step : job.steps) {
        At(step.where, NameOf(step), [&] {
            CheckCounts(step);
            for (const std::string& name : NeedsOf(step))
                CheckName(names, name);
        });
    }
    for (const Sink& sink : job.sinks)
        At(sink.where, sink.result, [&] { CheckName(names, sink.result); });
}

void CheckStreams(const Job& job)
{
    const auto streams = [](const auto& files) {
        return std::count_if(files.begin(), files.end(), [](const auto& file) { return file.path == "-"; });
    };
    if (streams(job.sources) > 1) throw RequestError("standard input (-) is read twice");
    if (streams(job.sinks) > 1) throw RequestError("standard output (-) is written twice");
}

// Plans the steps whose inputs are there, until none is left.
void PlanSteps(JobPlan& plan, std::vector<Step> steps)
{
    const auto isReady = [&](const Step& step) {
        const std::vector<std::string> needs = NeedsOf(step);
        return std::all_of(needs.begin(), needs.end(),
                           [&](const std::string& name) { return FindSignal(plan, name).has_value(); });
    };
    while (!steps.empty()) {
        const auto ready = std::find_if(steps.begin(), steps.end(), isReady);
        if (ready == steps.end()) {
            At(steps.front().where, NameOf(steps.front()), [&] {
                throw RequestError("the steps run in a circle: " + steps.front().entry->name +
                                   " waits for its own result");
            });
        }
        const std::string where = ready->where;
        At(where, NameOf(*ready), [&] { PlanStep(plan, std::move(*ready)); });
        steps.erase(ready);
    }
}

// Where one picture is given to an operator of two, it may be both.
void ShareFirstInputs(Step& step)
{
    for (std::size_t i = 1; i < step.inputs.size(); ++i)
        if (step.entry->inputs[i].orFirst && step.inputs[i].empty()) step.inputs[i] = step.inputs.front();
}

// What is judged are samples of 4:2:2: clips that go into it are read as such.
void ReadAsJudged(Job& job)
{
    for (const Step& step : job.steps) {
        if (!step.entry->legality) continue;
        for (Source& source : job.sources)
            if (source.name == step.inputs.front()) source.overrides.subsampled = true;
    }
}

} // namespace

CheckedJob CheckJob(Job job)
{
    CheckNames(job);
    ReadAsJudged(job);
    for (Step& step : job.steps)
        ShareFirstInputs(step);
    CheckStreams(job);
    auto plan = std::make_unique<JobPlan>();
    plan->settings = job.settings;
    for (Source& source : job.sources) {
        const std::string where = source.where;
        const std::string name = source.name;
        At(where, name, [&] { PlanSource(*plan, std::move(source)); });
    }
    PlanSteps(*plan, std::move(job.steps));
    for (Sink& sink : job.sinks) {
        const std::string where = sink.where;
        const std::string name = sink.result;
        At(where, name, [&] { PlanSink(*plan, std::move(sink)); });
    }
    PlanTimes(*plan);
    const bool part = plan->settings.endFrame || plan->settings.firstFrame > 0;
    if (part && !plan->clip) throw RequestError(OfRun("frames") + " needs a clip to choose from");
    return CheckedJob(std::move(plan));
}

} // namespace vfil::engine

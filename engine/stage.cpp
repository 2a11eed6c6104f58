/// \file
/// The steps of a job in a row.
#include "engine/stage.h"

#include <algorithm>

namespace vfil::engine {

namespace {

std::vector<Converter> Converters(const Conversion& conversion, const RunSettings& settings, long count)
{
    std::vector<Converter> converters;
    for (long i = 0; i < count; ++i)
        converters.emplace_back(conversion, settings);
    return converters;
}

} // namespace

Stage::Stage(const JobPlan& plan, KeyColours& colours, const Stage* pictures, const Probe* probe)
    : m_plan(plan), m_pictures(pictures), m_probe(probe)
{
    for (const engine::Signal& signal : plan.signals)
        m_signals.emplace_back(static_cast<std::size_t>(signal.end - signal.first));
    for (const SourcePlan& source : plan.sources) {
        const engine::Signal& signal = plan.signals[source.signal];
        m_sources.push_back(Converters(source.conversion, plan.settings, signal.end - signal.first));
    }
    for (const StepPlan& step : plan.steps) {
        m_steps.emplace_back();
        for (long run = step.firstRun; run < step.endRun; ++run)
            m_steps.back().push_back({run,
                                      StepRunner(plan, step, colours),
                                      std::vector<host::PicturePtr>(step.inputs.size()),
                                      {}});
    }
    for (const SinkPlan& sink : plan.sinks)
        m_sinks.push_back(Converters(sink.conversion, plan.settings, plan.signals[sink.signal].count));
}

const host::PicturePtr& Stage::Signal(std::size_t signal, long frame) const
{
    return m_signals[signal][static_cast<std::size_t>(frame - m_plan.signals[signal].first)];
}

void Stage::Put(std::size_t signal, long frame, const host::PicturePtr& picture)
{
    m_signals[signal][static_cast<std::size_t>(frame - m_plan.signals[signal].first)] = picture;
}

host::PicturePtr Stage::FrameFor(const StepInput& input, long run) const
{
    if (!input.signal) return {};
    if (!m_plan.signals[*input.signal].clip) return Signal(*input.signal, 0);
    const host::PicturePtr& frame = Signal(*input.signal, run * input.stride + input.offset);
    if (frame || !input.otherwise) return frame;
    return Signal(*input.signal, run * input.stride + *input.otherwise);
}

// Makes ready what of a step's inputs this stage has, and takes the rest from the other one, where a step
// runs once.
void Stage::Prepare(std::size_t step, StepRun& run, Stopwatch& watch)
{
    const StepPlan& planned = m_plan.steps[step];
    const StepRun* other = m_pictures ? &m_pictures->m_steps[step].front() : nullptr;
    for (std::size_t i = 0; i < run.inputs.size(); ++i) {
        if (planned.inputs[i].isFirst)
            run.inputs[i] = run.inputs.front();
        else if (const host::PicturePtr picture = FrameFor(planned.inputs[i], run.number))
            run.inputs[i] = run.runner.PrepareInput(i, picture, watch);
        else
            run.inputs[i] = other ? other->inputs[i] : host::PicturePtr();
    }
    if (!planned.mask) return;
    if (const host::PicturePtr picture = FrameFor(planned.mask->input, run.number))
        run.mask = run.runner.PrepareMask(picture, watch);
    else
        run.mask = other ? other->mask : host::PicturePtr();
}

// False before and behind a clip: there is nothing to work on.
bool Stage::IsComplete(const StepPlan& step, const StepRun& run) const
{
    for (std::size_t i = 0; i < run.inputs.size(); ++i) {
        const StepInput& input = step.inputs[i];
        if (input.signal && !input.otherwise && !run.inputs[i]) return false;
    }
    return !step.mask || run.mask;
}

void Stage::Execute(const StepPlan& step, StepRun& run, Stopwatch& watch)
{
    Frames results(step.outputs.size());
    const bool complete = IsComplete(step, run);
    if (complete) results = run.runner.Run(run.inputs, run.mask, watch);
    // A frame beside those of this time is only looked at: it is made again at its own.
    bool beside = !complete;
    for (std::size_t i = 0; i < results.size(); ++i) {
        const StepOutput& output = step.outputs[i];
        if (!output.signal) continue;
        const long frame = run.number * output.stride + output.offset;
        Put(*output.signal, frame, results[i]);
        beside = beside || frame < 0 || frame >= m_plan.signals[*output.signal].count;
    }
    if (!m_probe || beside) return;
    if (auto sight = m_probe->Look(step, run.inputs, results)) m_sights.emplace_back(&step, std::move(sight));
}

void Stage::Run(const std::vector<Frames>& sources, Stopwatch& watch)
{
    watch.Start();
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const std::size_t signal = m_plan.sources[i].signal;
        for (std::size_t k = 0; k < sources[i].size(); ++k)
            m_signals[signal][k] = sources[i][k] ? m_sources[i][k].Convert(sources[i][k]) : sources[i][k];
    }
    watch.Lap(Phase::Convert);
    m_sights.clear();
    for (std::size_t i = 0; i < m_steps.size(); ++i) {
        for (StepRun& run : m_steps[i]) {
            Prepare(i, run, watch);
            if (m_plan.steps[i].clip == (m_pictures != nullptr)) Execute(m_plan.steps[i], run, watch);
        }
    }
}

void Stage::Tell(Probe& probe)
{
    for (auto& [step, sight] : m_sights)
        probe.Take(*step, std::move(sight));
    m_sights.clear();
}

host::PicturePtr Stage::ForSink(std::size_t sink, long frame, Stopwatch& watch)
{
    watch.Start();
    host::PicturePtr picture =
        m_sinks[sink][static_cast<std::size_t>(frame)].Convert(Signal(m_plan.sinks[sink].signal, frame));
    watch.Lap(Phase::Convert);
    return picture;
}

} // namespace vfil::engine

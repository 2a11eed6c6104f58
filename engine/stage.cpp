/// \file
/// The steps of a job in a row.
#include "engine/stage.h"

namespace vfil::engine {

Stage::Stage(const JobPlan& plan, KeyColours& colours, const Stage* pictures, const Probe* probe)
    : m_plan(plan), m_pictures(pictures), m_probe(probe), m_signals(plan.signals.size())
{
    for (const SourcePlan& source : plan.sources)
        m_sources.emplace_back(source.conversion, plan.settings);
    for (const StepPlan& step : plan.steps)
        m_steps.push_back(
            {StepRunner(plan, step, colours), std::vector<host::PicturePtr>(step.inputs.size()), {}});
    for (const SinkPlan& sink : plan.sinks)
        m_sinks.emplace_back(sink.conversion, plan.settings);
}

host::PicturePtr Stage::SignalOf(const StepInput& input) const
{
    return input.signal ? m_signals[*input.signal] : host::PicturePtr();
}

// Makes ready what of a step's inputs this stage has, and takes the rest from the other one.
void Stage::Prepare(std::size_t index, Stopwatch& watch)
{
    const StepPlan& step = m_plan.steps[index];
    StepState& state = m_steps[index];
    const StepState* other = m_pictures ? &m_pictures->m_steps[index] : nullptr;
    for (std::size_t i = 0; i < state.inputs.size(); ++i) {
        if (step.inputs[i].isFirst)
            state.inputs[i] = state.inputs.front();
        else if (const host::PicturePtr picture = SignalOf(step.inputs[i]))
            state.inputs[i] = state.runner.PrepareInput(i, picture, watch);
        else if (other)
            state.inputs[i] = other->inputs[i];
    }
    if (!step.mask) return;
    if (const host::PicturePtr picture = SignalOf(step.mask->input))
        state.mask = state.runner.PrepareMask(picture, watch);
    else if (other)
        state.mask = other->mask;
}

void Stage::Run(const std::vector<host::PicturePtr>& sources, Stopwatch& watch)
{
    watch.Start();
    for (std::size_t i = 0; i < sources.size(); ++i) {
        if (sources[i]) m_signals[m_plan.sources[i].signal] = m_sources[i].Convert(sources[i]);
    }
    watch.Lap(Phase::Convert);
    m_sights.clear();
    for (std::size_t i = 0; i < m_steps.size(); ++i) {
        const StepPlan& step = m_plan.steps[i];
        Prepare(i, watch);
        if (step.clip != (m_pictures != nullptr)) continue;
        const auto results = m_steps[i].runner.Run(m_steps[i].inputs, m_steps[i].mask, watch);
        for (std::size_t k = 0; k < results.size(); ++k) {
            if (step.outputs[k]) m_signals[*step.outputs[k]] = results[k];
        }
        if (!m_probe) continue;
        if (auto sight = m_probe->Look(step, m_steps[i].inputs, results))
            m_sights.emplace_back(&step, std::move(sight));
    }
}

void Stage::Tell(Probe& probe)
{
    for (auto& [step, sight] : m_sights)
        probe.Take(*step, std::move(sight));
    m_sights.clear();
}

host::PicturePtr Stage::ForSink(std::size_t sink, Stopwatch& watch)
{
    watch.Start();
    host::PicturePtr picture = m_sinks[sink].Convert(m_signals[m_plan.sinks[sink].signal]);
    watch.Lap(Phase::Convert);
    return picture;
}

} // namespace vfil::engine

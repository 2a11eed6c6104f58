/// \file
/// All steps of a job with their processors and pictures, for one thread at a time.
#pragma once

#include "engine/probe.h"
#include "engine/steprunner.h"

#include <utility>

namespace vfil::engine {

/// Runs the steps of a job on one picture of each source.
///
/// What does not change from frame to frame is made once, by a stage for pictures; the stages of the workers
/// take it from there.
class Stage {
public:
    /// The stage for what does not change.
    Stage(const JobPlan& plan, KeyColours& colours, const Probe* probe) : Stage(plan, colours, nullptr, probe)
    {}
    /// A stage for frames.
    ///
    /// \param pictures The stage for what does not change, which has run; must outlive this one.
    /// \param probe    Sees each step that has run; may be null. Must outlive this object.
    Stage(const JobPlan& plan, KeyColours& colours, const Stage* pictures, const Probe* probe);

    /// \param sources A picture a source; null where the source is the other stage's.
    void Run(const std::vector<host::PicturePtr>& sources, Stopwatch& watch);
    /// What a source gave or a step made; null when the other stage has it.
    const host::PicturePtr& Signal(std::size_t signal) const { return m_signals[signal]; }
    /// Hands on what the probe saw in the last run.
    void Tell(Probe& probe);
    /// A signal that this stage has, in the format of a sink.
    host::PicturePtr ForSink(std::size_t sink, Stopwatch& watch);

private:
    struct StepState {
        StepRunner runner;
        std::vector<host::PicturePtr> inputs; ///< prepared
        host::PicturePtr mask;
    };

    host::PicturePtr SignalOf(const StepInput& input) const;
    void Prepare(std::size_t index, Stopwatch& watch);

    const JobPlan& m_plan;
    const Stage* m_pictures;
    const Probe* m_probe;
    std::vector<std::pair<const StepPlan*, std::unique_ptr<Probe::Sight>>> m_sights;
    std::vector<Converter> m_sources;
    std::vector<StepState> m_steps;
    std::vector<Converter> m_sinks;
    std::vector<host::PicturePtr> m_signals;
};

} // namespace vfil::engine

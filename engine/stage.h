/// \file
/// All steps of a job with their processors and pictures, for one thread at a time.
#pragma once

#include "engine/feed.h"
#include "engine/probe.h"
#include "engine/steprunner.h"

#include <utility>

namespace vfil::engine {

/// Runs the steps of a job on a picture of each source, or the few that belong together.
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

    /// \param sources What Feed gives.
    void Run(const std::vector<Frames>& sources, Stopwatch& watch);
    /// A frame of what a source gave or a step made; null when the other stage has it.
    const host::PicturePtr& Signal(std::size_t signal, long frame) const;
    /// Hands on what the probe saw in the last run.
    void Tell(Probe& probe);
    /// A frame of a signal that this stage has, in the format of a sink.
    host::PicturePtr ForSink(std::size_t sink, long frame, Stopwatch& watch);

private:
    // One of the runs of a step at a time, with processor and pictures of its own.
    struct StepRun {
        long number;
        StepRunner runner;
        std::vector<host::PicturePtr> inputs; ///< prepared
        host::PicturePtr mask;
    };

    host::PicturePtr FrameFor(const StepInput& input, long run) const;
    void Prepare(std::size_t step, StepRun& run, Stopwatch& watch);
    bool IsComplete(const StepPlan& step, const StepRun& run) const;
    void Execute(const StepPlan& step, StepRun& run, Stopwatch& watch);
    void Put(std::size_t signal, long frame, const host::PicturePtr& picture);

    const JobPlan& m_plan;
    const Stage* m_pictures;
    const Probe* m_probe;
    std::vector<std::pair<const StepPlan*, std::unique_ptr<Probe::Sight>>> m_sights;
    // Each frame has a converter of its own, whose picture stays until the next run.
    std::vector<std::vector<Converter>> m_sources;
    std::vector<std::vector<StepRun>> m_steps;
    std::vector<std::vector<Converter>> m_sinks;
    std::vector<Frames> m_signals;
};

} // namespace vfil::engine

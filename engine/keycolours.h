/// \file
/// The colours of keys that are taken from pictures.
#pragma once

#include "engine/jobplan.h"
#include "engine/runevents.h"
#include <vfil/host/picture.h>

#include <map>

namespace vfil::engine {

/// Each colour is taken once, from the first picture that its step works on, and stays for all frames.
class KeyColours {
public:
    /// \param plan, events  Must outlive this object.
    KeyColours(const JobPlan& plan, RunEvents& events) : m_plan(plan), m_events(events) {}

    /// Whether a step that changes from frame to frame has to see a first frame.
    bool NeedFrame() const;
    /// The colour of a step with a place for it. What is known already may be asked by several threads.
    ///
    /// \param input The first input of the step, in the format in which it works.
    const catalogue::Value& Of(const StepPlan& step, const host::PicturePtr& input);
    /// Those that were taken.
    const std::map<const StepPlan*, catalogue::Value>& Taken() const { return m_taken; }

private:
    const JobPlan& m_plan;
    RunEvents& m_events;
    std::map<const StepPlan*, catalogue::Value> m_taken;
};

} // namespace vfil::engine

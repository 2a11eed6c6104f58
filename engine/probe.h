/// \file
/// What looks at the pictures of a running job.
#pragma once

#include "engine/jobplan.h"
#include <vfil/host/picture.h>

#include <memory>
#include <vector>

namespace vfil::engine {

/// Looks at what steps take and make, to measure it. It changes nothing.
class Probe {
public:
    /// What was seen of a step in a frame.
    struct Sight {
        Sight() = default;
        Sight(const Sight&) = delete;
        Sight& operator=(const Sight&) = delete;
        virtual ~Sight() = default;
    };

    Probe() = default;
    Probe(const Probe&) = delete;
    Probe& operator=(const Probe&) = delete;
    virtual ~Probe() = default;

    /// Looks at a step that has just run. Comes from all threads of the run at once, in any order.
    ///
    /// \param inputs  As the step worked on them, converted.
    /// \param results As the step left them. Both hold until the call returns.
    /// \return what Take gets, or null
    virtual std::unique_ptr<Sight> Look(const StepPlan& step, const std::vector<host::PicturePtr>& inputs,
                                        const std::vector<host::PicturePtr>& results) const = 0;
    /// Takes what was seen: frame by frame in their order, one call at a time, before the frame counts as
    /// done. Frames that are not written are not told of.
    virtual void Take(const StepPlan& step, std::unique_ptr<Sight> sight) = 0;
};

} // namespace vfil::engine

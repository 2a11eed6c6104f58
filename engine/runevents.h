/// \file
/// What a run tells, meanwhile and when it is done.
#pragma once

#include "engine/jobplan.h"
#include "engine/stopwatch.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vfil::engine {

/// What a run tells while it goes. The calls come one at a time, from any of the run's threads; they should
/// be short, since the run waits.
class RunEvents {
public:
    RunEvents() = default;
    RunEvents(const RunEvents&) = delete;
    RunEvents& operator=(const RunEvents&) = delete;
    virtual ~RunEvents() = default;

    /// Something that the user should know, as a line.
    virtual void OnRemark(const Message& text) = 0;
    /// A conversion that was inserted. All of them are told before the first frame.
    virtual void OnConversion(const InsertedConversion& conversion) = 0;
    /// A colour was taken from the first picture of a step.
    virtual void OnKeyColour(const StepPlan& /*step*/, const catalogue::Value& /*colour*/) {}
    /// Frames begin; \p count is absent when nobody knows it.
    virtual void OnFrames(std::optional<long> count) = 0;
    /// One more frame is written.
    virtual void OnFrame() = 0;
    /// The last frame is written.
    virtual void OnFramesEnd() = 0;
};

/// What became of the file of a sink.
struct WrittenFile {
    std::string codec;         ///< of a clip: "mpeg2video yuv422p"
    long frames = 0;           ///< 1 of a picture
    host::ReadOptions picture; ///< how to read a picture that is raw
};

/// What a run has to tell when it is done.
struct RunResult {
    Stopwatch watch;
    long frames = 0; ///< of clips
    double framesPerSecond = 0;
    std::vector<WrittenFile> files;                         ///< of the sinks, in their order
    std::map<const StepPlan*, catalogue::Value> keyColours; ///< that were taken from pictures
};

} // namespace vfil::engine

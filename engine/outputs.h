/// \file
/// The files of a job's sinks.
#pragma once

#include "engine/runevents.h"

#include <optional>
#include <string>
#include <vector>

namespace vfil::engine {

/// Writes clips frame by frame, and pictures at the end. Nothing stands under the final names before Finish.
/// For one thread at a time.
class Outputs {
public:
    /// \param plan, events  Must outlive this object.
    Outputs(const JobPlan& plan, RunEvents& events)
        : m_plan(plan), m_events(events), m_files(plan.sinks.size())
    {}

    /// Takes the next frame of a clip or the only picture of a picture file.
    ///
    /// \throws RunError, host::FileError, host::PipeClosed
    void Write(std::size_t sink, const host::PicturePtr& picture);
    /// Completes all files.
    ///
    /// \throws RunError, host::PipeClosed
    void Finish();
    /// Completes the clips and drops the pictures: what is kept of an interrupted run.
    void FinishClips();
    /// What became of the files, in the order of the sinks.
    std::vector<WrittenFile> Written() const;

private:
    struct File {
        std::optional<host::VideoWriter> clip;
        host::PicturePtr picture;
        long frames = 0;
    };

    void Open(std::size_t sink, const host::Picture& first);

    const JobPlan& m_plan;
    RunEvents& m_events;
    std::vector<File> m_files;
};

} // namespace vfil::engine

/// \file
/// The files of a job's sinks.
#pragma once

#include "tools/vfil/jobplan.h"

#include <optional>
#include <string>
#include <vector>

namespace vfil::tool {

/// Writes clips frame by frame, and pictures at the end. Nothing stands under the final names before Finish.
/// For one thread at a time.
class Outputs {
public:
    explicit Outputs(const JobPlan& plan) : m_plan(plan), m_files(plan.sinks.size()) {}

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
    /// What was written in words, once it is finished: "mpeg2video yuv422p 352x288, 25 frames".
    std::string Description(std::size_t sink) const;
    /// What a picture that was written says of itself.
    host::PictureInfo InspectWritten(std::size_t sink) const;
    long Frames(std::size_t sink) const { return m_files[sink].frames; }

private:
    struct File {
        std::optional<host::VideoWriter> clip;
        host::PicturePtr picture;
        long frames = 0;
    };

    void Open(std::size_t sink, const host::Picture& first);

    const JobPlan& m_plan;
    std::vector<File> m_files;
};

} // namespace vfil::tool

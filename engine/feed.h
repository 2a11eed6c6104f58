/// \file
/// The frames of a job's sources, in order.
#pragma once

#include "engine/jobplan.h"

#include <string>
#include <utility>
#include <vector>

namespace vfil::engine {

/// Reads pictures once and clips frame by frame. For one thread at a time.
class Feed {
public:
    /// \param plan Its readers stand before their first frame.
    explicit Feed(const JobPlan& plan) : m_plan(plan) {}

    /// The pictures of the sources that are no clips; null for the others.
    std::vector<host::PicturePtr> Pictures() const;
    /// The next frame of each clip, the first time that of the range; null for the others. Empty behind the
    /// last frame of the shortest clip.
    ///
    /// \throws RequestError  A clip has no frame in the range.
    std::vector<host::PicturePtr> Frames();
    /// Gives frames back, to be the next ones.
    void PutBack(std::vector<host::PicturePtr> frames) { m_returned = std::move(frames); }
    /// The frames of the shortest clip in the range, when all say so.
    std::optional<long> Count() const;
    /// Behind the last frame: what to say when clips differ in length, or nothing.
    const std::string& Remark() const { return m_remark; }

private:
    void SkipToFirst();
    void CompareLengths(const std::vector<host::PicturePtr>& frames);

    const JobPlan& m_plan;
    long m_next = 0;
    bool m_started = false;
    std::vector<host::PicturePtr> m_returned;
    std::string m_remark;
};

} // namespace vfil::engine

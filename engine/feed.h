/// \file
/// The frames of a job's sources, in order.
#pragma once

#include "engine/jobplan.h"

#include <deque>
#include <string>
#include <utility>
#include <vector>

namespace vfil::engine {

/// The frames of a signal that are looked at at a time: Signal::first to Signal::end. Null where there is
/// none.
using Frames = std::vector<host::PicturePtr>;

/// Reads pictures once and clips frame by frame. For one thread at a time.
class Feed {
public:
    /// \param plan Its readers stand before their first frame.
    explicit Feed(const JobPlan& plan) : m_plan(plan), m_reels(plan.sources.size()) {}

    /// The pictures of the sources that are no clips; nothing for the others.
    std::vector<Frames> Pictures() const;
    /// The next frames of each clip, the first time those at the start of the range, with what is looked at
    /// beside them; nothing for the other sources. Empty behind the last frame of the shortest clip. Who
    /// looks beside them shares frames with the next call's, also beyond the range, as far as the clip goes.
    ///
    /// \throws RequestError  A clip has no frame in the range, or too few at its end.
    std::vector<Frames> Next();
    /// Gives frames back, to be the next ones.
    void PutBack(std::vector<Frames> frames) { m_returned = std::move(frames); }
    /// How often Next gives frames, when all clips say how many they have.
    std::optional<long> Count() const;
    /// Behind the last frame: what to say when clips differ in length, or nothing.
    const std::string& Remark() const { return m_remark; }

private:
    // What of a clip is in memory.
    struct Reel {
        std::deque<host::PicturePtr> frames;
        long first = 0; ///< number of the first of them
        bool ended = false;

        long End() const { return first + static_cast<long>(frames.size()); }
    };

    const Signal& SignalOf(std::size_t source) const { return m_plan.signals[m_plan.sources[source].signal]; }
    void SkipToFirst();
    void ReadUntil(std::size_t source, long end);
    long Available();
    Frames Window(std::size_t source) const;
    [[noreturn]] void RefuseRest(long count) const;
    void CompareLengths();

    const JobPlan& m_plan;
    std::vector<Reel> m_reels; ///< of the sources
    long m_next = 0;           ///< frame 0 of the next time
    bool m_started = false;
    std::vector<Frames> m_returned;
    std::string m_remark;
};

} // namespace vfil::engine

/// \file
/// Reading of pictures and frames.
#include "engine/feed.h"
#include "engine/failure.h"
#include "engine/interrupt.h"

#include <algorithm>

namespace vfil::engine {

namespace {

host::ReadOptions ReadingOf(const Source& source)
{
    if (IsRaw(source.path)) return source.rawOptions;
    host::ReadOptions options;
    options.format = source.format;
    return options;
}

host::PicturePtr ReadStill(const SourcePlan& source, volatile long* interrupt)
{
    host::PicturePtr picture = host::ReadPicture(source.source.path, ReadingOf(source.source));
    if (source.source.overrides.premultiplied && source.picture.alpha != host::AlphaState::None)
        picture->SetPremultiplied(*source.source.overrides.premultiplied);
    StopIfInterrupted(interrupt);
    return picture;
}

[[noreturn]] void RefuseRange(const SourcePlan& source, long frames)
{
    throw RequestError(source.source.path + " has " + std::to_string(frames) +
                       " frames, none of which is in " + OfRun("frames"));
}

} // namespace

std::vector<Frames> Feed::Pictures() const
{
    std::vector<Frames> pictures;
    for (const SourcePlan& source : m_plan.sources) {
        pictures.emplace_back();
        if (!source.IsClip()) pictures.back() = {ReadStill(source, m_plan.settings.interrupt)};
    }
    return pictures;
}

void Feed::SkipToFirst()
{
    m_started = true;
    m_next = m_plan.settings.firstFrame;
    for (std::size_t i = 0; i < m_reels.size(); ++i) {
        const SourcePlan& source = m_plan.sources[i];
        if (!source.IsClip()) continue;
        Reel& reel = m_reels[i];
        for (const long first = std::max(0L, m_next + SignalOf(i).first); reel.first < first; ++reel.first) {
            if (!source.reader->Skip()) RefuseRange(source, reel.first);
            StopIfInterrupted(m_plan.settings.interrupt);
        }
    }
}

// What lies before the range is looked at, but not shown.
void Feed::ReadUntil(std::size_t source, long end)
{
    Reel& reel = m_reels[source];
    host::VideoReader& reader = *m_plan.sources[source].reader;
    while (!reel.ended && reel.End() < end) {
        StopIfInterrupted(m_plan.settings.interrupt);
        const bool shown = reel.End() >= m_plan.settings.firstFrame;
        host::PicturePtr frame = shown ? reader.Read() : reader.ReadBefore();
        reel.ended = !frame;
        if (frame) reel.frames.push_back(std::move(frame));
    }
}

// How many frames all clips have at this time.
long Feed::Available()
{
    long count = m_plan.sourceFrames;
    if (m_plan.settings.endFrame) count = std::min(count, *m_plan.settings.endFrame - m_next);
    for (std::size_t i = 0; i < m_reels.size(); ++i) {
        if (!m_plan.sources[i].IsClip()) continue;
        ReadUntil(i, m_next + count);
        count = std::min(count, m_reels[i].End() - m_next);
    }
    return std::max(0L, count);
}

Frames Feed::Window(std::size_t source) const
{
    Frames frames;
    const Reel& reel = m_reels[source];
    const Signal& signal = SignalOf(source);
    for (long i = m_next + signal.first; i < m_next + signal.end; ++i) {
        const bool there = i >= reel.first && i < reel.End();
        frames.push_back(there ? reel.frames[static_cast<std::size_t>(i - reel.first)] : host::PicturePtr());
    }
    return frames;
}

std::vector<Frames> Feed::Next()
{
    if (!m_returned.empty()) return std::exchange(m_returned, {});
    if (!m_started) SkipToFirst();
    const bool ended = m_plan.settings.endFrame && m_next >= *m_plan.settings.endFrame;
    const long count = ended ? 0 : Available();
    if (count < m_plan.sourceFrames) {
        if (!ended && count == 0) CompareLengths();
        if (count > 0) RefuseRest(count);
        return {};
    }
    std::vector<Frames> all;
    for (std::size_t i = 0; i < m_reels.size(); ++i) {
        all.emplace_back();
        if (!m_plan.sources[i].IsClip()) continue;
        Reel& reel = m_reels[i];
        ReadUntil(i, m_next + SignalOf(i).end);
        all.back() = Window(i);
        for (; !reel.frames.empty() && reel.first < m_next + count + SignalOf(i).first; ++reel.first)
            reel.frames.pop_front();
    }
    m_next += count;
    return all;
}

// Frames at the end that make no whole one.
void Feed::RefuseRest(long count) const
{
    const long frames = m_next + count - m_plan.settings.firstFrame;
    std::string clip;
    for (std::size_t i = 0; clip.empty() && i < m_reels.size(); ++i)
        if (m_plan.sources[i].IsClip() && m_reels[i].End() <= m_next + count)
            clip = m_plan.sources[i].source.path;
    const bool chosen = m_plan.settings.endFrame || m_plan.settings.firstFrame > 0;
    throw RequestError(clip + " has " + std::to_string(frames) + " frames" + (chosen ? " in the range" : "") +
                       ", and " + std::to_string(m_plan.sourceFrames) +
                       " become one; choose an even count with " + OfRun("frames") + ", such as " +
                       std::to_string(m_plan.settings.firstFrame) + ":" + std::to_string(m_next));
}

void Feed::CompareLengths()
{
    const SourcePlan* shorter = nullptr;
    const SourcePlan* longer = nullptr;
    for (std::size_t i = 0; i < m_reels.size(); ++i) {
        if (!m_plan.sources[i].IsClip()) continue;
        ReadUntil(i, m_next + 1);
        (m_reels[i].End() > m_next ? longer : shorter) = &m_plan.sources[i];
    }
    if (m_next == m_plan.settings.firstFrame) {
        RefuseRange(*shorter, m_next);
    }
    if (!longer) return;
    m_remark = shorter->source.path + " ends after " + std::to_string(m_next) + " frames, before " +
               longer->source.path + ": the result ends there";
}

std::optional<long> Feed::Count() const
{
    std::optional<long> count;
    for (const SourcePlan& source : m_plan.sources) {
        if (!source.IsClip()) continue;
        const auto frames = source.reader->Info().frames;
        if (!frames) return std::nullopt;
        count = std::min(count.value_or(*frames), *frames);
    }
    if (count && m_plan.settings.endFrame) count = std::min(*count, *m_plan.settings.endFrame);
    if (!count) return std::nullopt;
    return std::max(0L, *count - m_plan.settings.firstFrame) / m_plan.sourceFrames;
}

} // namespace vfil::engine

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

std::vector<host::PicturePtr> Feed::Pictures() const
{
    std::vector<host::PicturePtr> pictures;
    for (const SourcePlan& source : m_plan.sources)
        pictures.push_back(source.IsClip() ? host::PicturePtr()
                                           : ReadStill(source, m_plan.settings.interrupt));
    return pictures;
}

void Feed::SkipToFirst()
{
    m_started = true;
    for (m_next = 0; m_next < m_plan.settings.firstFrame; ++m_next) {
        for (const SourcePlan& source : m_plan.sources) {
            if (!source.IsClip() || source.reader->Skip()) continue;
            RefuseRange(source, m_next);
        }
        StopIfInterrupted(m_plan.settings.interrupt);
    }
}

std::vector<host::PicturePtr> Feed::Frames()
{
    if (!m_returned.empty()) return std::exchange(m_returned, {});
    if (!m_started) SkipToFirst();
    if (m_plan.settings.endFrame && m_next >= *m_plan.settings.endFrame) return {};
    std::vector<host::PicturePtr> frames;
    bool ended = false;
    for (const SourcePlan& source : m_plan.sources) {
        frames.push_back(source.IsClip() ? source.reader->Read() : host::PicturePtr());
        ended = ended || (source.IsClip() && !frames.back());
    }
    if (!ended) {
        ++m_next;
        return frames;
    }
    CompareLengths(frames);
    return {};
}

void Feed::CompareLengths(const std::vector<host::PicturePtr>& frames)
{
    const SourcePlan* shorter = nullptr;
    const SourcePlan* longer = nullptr;
    for (std::size_t i = 0; i < frames.size(); ++i) {
        if (m_plan.sources[i].IsClip()) (frames[i] ? longer : shorter) = &m_plan.sources[i];
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
    return count ? std::optional(std::max(0L, *count - m_plan.settings.firstFrame)) : std::nullopt;
}

} // namespace vfil::engine

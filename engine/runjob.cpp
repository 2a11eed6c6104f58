/// \file
/// RunJob: pictures once, frames by workers.
#include "engine/runjob.h"
#include "catalogue/names.h"
#include "engine/feed.h"
#include "engine/interrupt.h"
#include "engine/outputs.h"
#include "engine/planning.h"
#include "engine/stage.h"
#include "engine/workers.h"
#include "host/pixelrows.h"
#include <vfil/host/picturefactory.h>

#include <algorithm>
#include <chrono>
#include <thread>

namespace vfil::engine {

namespace {

bool HasClearPixels(const host::Picture& picture)
{
    const vfILFormatInfo& info = picture.FormatInfo();
    if (!info.alpha) return false;
    if (!info.alphaPlane) return !host::IsOpaque(picture);
    const std::uint8_t* plane = std::min(picture.AlphaRow(0), picture.AlphaRow(picture.Height() - 1));
    const auto pixels =
        static_cast<std::size_t>(picture.Width()) * static_cast<std::size_t>(picture.Height());
    return std::any_of(plane, plane + pixels, [](std::uint8_t alpha) { return alpha != 255; });
}

// A codec without alpha shows clear pixels as if they were opaque: nobody wants to find that out later.
void CheckOpaque(const JobPlan& plan, const SinkPlan& sink, const host::Picture& picture)
{
    if (!sink.checkOpaque || !HasClearPixels(picture)) return;
    const std::string format = catalogue::FormatName(sink.settings.format);
    Message remedy = "; " + Named("to") + " " + format + " keeps them";
    if (!InfoOf(sink.settings.format).alpha) {
        remedy = "; " + Named("to") + " rgba32 with " + Named("codec") +
                 " qtrle (.mov) or ffv1 (.mkv) keeps them, and " + Named("to") + " " + format + " drops them";
    }
    const Signal& signal = plan.signals[sink.signal];
    if (signal.ofCanvas) remedy += ", and " + Named("default-color") + " 0,0,0 fills what no pixel gets to";
    throw RunError(sink.sink.path + " shows no alpha, and " + signal.label + " has clear pixels" + remedy);
}

// What goes into the files of all sinks whose pictures a stage makes.
std::vector<Frames> SinkPictures(const JobPlan& plan, Stage& stage, Stopwatch& watch)
{
    std::vector<Frames> pictures(plan.sinks.size());
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        const std::size_t signal = plan.sinks[i].signal;
        for (long frame = 0; frame < plan.signals[signal].count; ++frame) {
            const host::PicturePtr& picture = stage.Signal(signal, frame);
            if (!picture) continue;
            CheckOpaque(plan, plan.sinks[i], *picture);
            pictures[i].push_back(stage.ForSink(i, frame, watch));
        }
    }
    return pictures;
}

void Write(const std::vector<Frames>& pictures, Outputs& outputs, Stopwatch& watch)
{
    watch.Start();
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        for (const host::PicturePtr& picture : pictures[i])
            outputs.Write(i, picture);
    }
    watch.Lap(Phase::Write);
}

// Frames through all steps.
class FrameWorker final : public Worker {
public:
    FrameWorker(const JobPlan& plan, KeyColours& colours, const Stage& pictures, Feed& feed, Outputs& outputs,
                RunEvents& events, Probe* probe)
        : m_plan(plan), m_stage(plan, colours, &pictures, probe), m_feed(feed), m_outputs(outputs),
          m_events(events), m_probe(probe)
    {}

    bool Take() override
    {
        StopIfInterrupted(m_plan.settings.interrupt);
        m_watch.Start();
        m_frames = m_feed.Next();
        m_watch.Lap(Phase::Read);
        return !m_frames.empty();
    }

    void Work() override
    {
        m_stage.Run(m_frames, m_watch);
        m_made = SinkPictures(m_plan, m_stage, m_watch);
    }

    void Deliver() override
    {
        Write(m_made, m_outputs, m_watch);
        if (m_probe) m_stage.Tell(*m_probe);
        m_delivered += m_plan.sourceFrames;
        m_events.OnFrame();
    }

    const Stopwatch& Watch() const { return m_watch; }
    long Frames() const { return m_delivered; }

private:
    const JobPlan& m_plan;
    Stage m_stage;
    Feed& m_feed;
    Outputs& m_outputs;
    RunEvents& m_events;
    Probe* m_probe;
    Stopwatch m_watch;
    long m_delivered = 0;
    std::vector<engine::Frames> m_frames;
    std::vector<engine::Frames> m_made;
};

unsigned WorkerCount(const RunSettings& settings)
{
    if (settings.threads != 0) return settings.threads;
    return std::max(1U, std::thread::hardware_concurrency());
}

// Lets the steps see the first frame, which stays to be worked on, for the colours that they take of it.
void TakeColours(const JobPlan& plan, KeyColours& colours, const Stage& pictures, Feed& feed)
{
    if (!colours.NeedFrame()) return;
    const std::vector<Frames> first = feed.Next();
    if (first.empty()) return;
    Stopwatch unused;
    Stage(plan, colours, &pictures, nullptr).Run(first, unused);
    feed.PutBack(first);
}

void RunFrames(const JobPlan& plan, KeyColours& colours, const Stage& pictures, Outputs& outputs,
               RunEvents& events, Probe* probe, RunResult& result)
{
    Feed feed(plan);
    TakeColours(plan, colours, pictures, feed);
    events.OnFrames(feed.Count());
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::unique_ptr<Worker>> workers;
    std::vector<const FrameWorker*> frameWorkers;
    for (unsigned i = 0; i < WorkerCount(plan.settings); ++i) {
        auto worker = std::make_unique<FrameWorker>(plan, colours, pictures, feed, outputs, events, probe);
        frameWorkers.push_back(worker.get());
        workers.push_back(std::move(worker));
    }
    try {
        WorkerLine().Run(workers);
    } catch (const Interrupted&) {
        // The frames so far are worth keeping.
        outputs.FinishClips();
        throw;
    }
    for (const FrameWorker* worker : frameWorkers) {
        result.watch.Add(worker->Watch());
        result.frames += worker->Frames();
    }
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    result.framesPerSecond = seconds > 0 ? static_cast<double>(result.frames) / seconds : 0;
    events.OnFramesEnd();
    if (!feed.Remark().empty()) events.OnRemark(feed.Remark());
}

void Announce(const JobPlan& plan, RunEvents& events)
{
    for (const Message& remark : plan.remarks)
        events.OnRemark(remark);
    for (const InsertedConversion& inserted : plan.insertions)
        events.OnConversion(inserted);
}

} // namespace

RunResult RunJob(const CheckedJob& job, RunEvents& events, Probe* probe)
{
    const JobPlan& plan = job.Plan();
    host::RegisterPictureClass();
    Announce(plan, events);
    RunResult result;
    Stopwatch& watch = result.watch;
    watch.Start();
    const std::vector<Frames> sources = Feed(plan).Pictures();
    watch.Lap(Phase::Read);
    KeyColours colours(plan, events);
    Stage pictures(plan, colours, probe);
    pictures.Run(sources, watch);
    if (probe) pictures.Tell(*probe);
    Outputs outputs(plan, events);
    Write(SinkPictures(plan, pictures, watch), outputs, watch);
    if (plan.clip) RunFrames(plan, colours, pictures, outputs, events, probe, result);
    watch.Start();
    outputs.Finish();
    watch.Lap(Phase::Write);
    result.files = outputs.Written();
    result.keyColours = colours.Taken();
    return result;
}

} // namespace vfil::engine

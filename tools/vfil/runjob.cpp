/// \file
/// RunJob: pictures once, frames by workers, and what is said of it all.
#include "catalogue/names.h"
#include "host/pixelrows.h"
#include "tools/vfil/failure.h"
#include "tools/vfil/feed.h"
#include "tools/vfil/interrupt.h"
#include "tools/vfil/jobreport.h"
#include "tools/vfil/outputs.h"
#include "tools/vfil/progress.h"
#include "tools/vfil/stage.h"
#include "tools/vfil/workers.h"
#include <vfil/host/picturefactory.h>

#include <algorithm>
#include <thread>

namespace vfil::tool {

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
    std::string remedy = "; --to " + format + " keeps them";
    if (!InfoOf(sink.settings.format).alpha) {
        remedy = "; --to rgba32 with --codec qtrle (.mov) or ffv1 (.mkv) keeps them, and --to " + format +
                 " drops them";
    }
    throw RunError(sink.sink.path + " shows no alpha, and " + plan.signals[sink.signal].label +
                   " has clear pixels" + remedy);
}

// What goes into the files of all sinks whose pictures a stage makes.
std::vector<host::PicturePtr> SinkPictures(const JobPlan& plan, Stage& stage, Stopwatch& watch)
{
    std::vector<host::PicturePtr> pictures(plan.sinks.size());
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        const host::PicturePtr& signal = stage.Signal(plan.sinks[i].signal);
        if (!signal) continue;
        CheckOpaque(plan, plan.sinks[i], *signal);
        pictures[i] = stage.ForSink(i, watch);
    }
    return pictures;
}

void Write(const std::vector<host::PicturePtr>& pictures, Outputs& outputs, Stopwatch& watch)
{
    watch.Start();
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        if (pictures[i]) outputs.Write(i, pictures[i]);
    }
    watch.Lap(Phase::Write);
}

// Frames through all steps.
class FrameWorker final : public Worker {
public:
    FrameWorker(const JobPlan& plan, const Stage& pictures, Feed& feed, Outputs& outputs, Progress& progress)
        : m_plan(plan), m_stage(plan, &pictures), m_feed(feed), m_outputs(outputs), m_progress(progress)
    {}

    bool Take() override
    {
        StopIfInterrupted();
        m_watch.Start();
        m_frames = m_feed.Frames();
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
        m_progress.Tick();
    }

    const Stopwatch& Watch() const { return m_watch; }

private:
    const JobPlan& m_plan;
    Stage m_stage;
    Feed& m_feed;
    Outputs& m_outputs;
    Progress& m_progress;
    Stopwatch m_watch;
    std::vector<host::PicturePtr> m_frames;
    std::vector<host::PicturePtr> m_made;
};

unsigned WorkerCount(const RunSettings& settings)
{
    if (settings.threads != 0) return settings.threads;
    return std::max(1U, std::thread::hardware_concurrency());
}

void RunFrames(const JobPlan& plan, const Stage& pictures, Outputs& outputs, Stopwatch& watch,
               RunResult& result)
{
    Feed feed(plan);
    Progress progress(plan.settings, feed.Count());
    std::vector<std::unique_ptr<Worker>> workers;
    std::vector<const FrameWorker*> frameWorkers;
    for (unsigned i = 0; i < WorkerCount(plan.settings); ++i) {
        auto worker = std::make_unique<FrameWorker>(plan, pictures, feed, outputs, progress);
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
    for (const FrameWorker* worker : frameWorkers)
        watch.Add(worker->Watch());
    progress.Finish();
    result.frames = progress.Frames();
    result.framesPerSecond = progress.FramesPerSecond();
    if (!feed.Remark().empty()) Remark(plan, feed.Remark());
}

} // namespace

void RunJob(CheckedJob job)
{
    const JobPlan& plan = job.Plan();
    host::RegisterPictureClass();
    AnnounceRun(plan);
    RunResult result;
    Stopwatch& watch = result.watch;
    watch.Start();
    const std::vector<host::PicturePtr> sources = Feed(plan).Pictures();
    watch.Lap(Phase::Read);
    Stage pictures(plan);
    pictures.Run(sources, watch);
    Outputs outputs(plan);
    Write(SinkPictures(plan, pictures, watch), outputs, watch);
    if (plan.clip) RunFrames(plan, pictures, outputs, watch, result);
    watch.Start();
    outputs.Finish();
    watch.Lap(Phase::Write);
    ReportRun(plan, outputs, result);
}

} // namespace vfil::tool

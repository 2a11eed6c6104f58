/// \file
/// The part of CheckJob that holds a sink against what is to be written.
#include "catalogue/names.h"
#include "engine/failure.h"
#include "engine/planning.h"
#include "engine/settings.h"
#include "engine/text.h"
#include "engine/words.h"
#include "host/pixelrows.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>

namespace vfil::engine {

using catalogue::FormatName;
using host::IsFileFormat;

namespace {

// Deep colour has no place in these: known before the run, unlike clear pixels.
bool HoldsBytesOnly(const std::string& path)
{
    const std::string ending = UpperCase(std::filesystem::path(path).extension().string());
    return ending == ".JPG" || ending == ".JPEG";
}

void CheckFolder(const std::string& output)
{
    if (output == "-") return;
    const std::filesystem::path path(output);
    const std::string folder = path.has_parent_path() ? path.parent_path().string() : ".";
    std::error_code ignored;
    if (std::filesystem::is_directory(path, ignored)) {
        throw RequestError(output + " is a folder; " + OutputFile() + " takes the name of a picture or clip");
    }
    if (!host::IsVideo(output)) host::CheckWritable(path);
    if (!std::filesystem::is_directory(folder, ignored))
        throw RequestError(output + ": the folder " + folder + " does not exist");
    if (access(folder.c_str(), W_OK) != 0)
        throw RequestError(output + ": the folder " + folder + " is read-only");
}

void CheckNotRead(const JobPlan& plan, const std::string& output)
{
    if (output == "-") return;
    for (const SourcePlan& source : plan.sources) {
        if (!host::SamePath(source.source.path, output)) continue;
        throw RequestError(output + " is read and written; " + OutputFile() + " takes another file");
    }
    for (const SinkPlan& other : plan.sinks) {
        if (other.sink.path == output) throw RequestError(output + " is written twice");
    }
    for (const StepPlan& step : plan.steps) {
        if (step.step.report == output) throw RequestError(output + " is written twice");
    }
}

// The format in which a signal is written unless something else is asked for.
GUID HomeOf(const Signal& signal)
{
    return FindConversion(signal.format, signal.home) ? signal.home : signal.format;
}

// A sink as a picture takes what picture files hold, or, with raw pixels, anything.
GUID PictureFormat(const SinkPlan& sink, const Signal& signal)
{
    const std::string& path = sink.sink.path;
    const GUID& present = signal.format;
    if (IsRaw(path)) return sink.sink.to.value_or(HomeOf(signal));
    if (sink.sink.to) {
        if (IsFileFormat(*sink.sink.to)) return *sink.sink.to;
        throw RequestError(path + " cannot hold " + FormatName(*sink.sink.to) + "; only a .raw file can");
    }
    if (IsFileFormat(present)) return present;
    const bool deep = InfoOf(present).sampleBytes == 2 && !HoldsBytesOnly(path);
    return deep ? PXFormat_RGBA64 : PXFormat_RGBA32;
}

void CheckDepth(const std::string& path, const GUID& format)
{
    if (InfoOf(format).sampleBytes == 1 || !HoldsBytesOnly(path)) return;
    throw RequestError(path + " cannot hold the 16 bits of " + FormatName(format) +
                       "; write .png or .tif, or add " + Named("format") +
                       (IsMono(format) ? " mono8" : " rgba32"));
}

host::Matrix MatrixOf(const GUID& format, host::Matrix fallback)
{
    const vfILFormatInfo& info = InfoOf(format);
    if (!info.ycc) return fallback;
    return info.model == PXColorModel_YCC709 ? host::Matrix::Bt709 : host::Matrix::Bt601;
}

host::Ratio RateOf(host::Ratio rate, int doublings)
{
    for (; doublings > 0; --doublings)
        (rate.denominator % 2 == 0 ? rate.denominator /= 2 : rate.numerator *= 2);
    for (; doublings < 0; ++doublings)
        (rate.numerator % 2 == 0 ? rate.numerator /= 2 : rate.denominator *= 2);
    return rate;
}

host::VideoSettings SettingsLike(const SinkPlan& sink, const Signal& signal, const host::VideoReader& like)
{
    const host::VideoInfo& info = like.Info();
    host::VideoSettings settings;
    settings.width = signal.width;
    settings.height = signal.height;
    settings.rate = RateOf(info.rate, signal.doublings);
    settings.aspect = info.aspect;
    settings.matrix = info.matrix.value;
    settings.range = info.range.value;
    settings.fieldOrder = signal.fieldOrder;
    settings.codec = sink.sink.codec;
    settings.container = sink.sink.container;
    settings.codecOptions = sink.sink.codecOptions;
    settings.likeInput = &like;
    settings.likeSampling = !sink.sink.to; // who names a format has decided about it
    return settings;
}

// Of what the clip may hold, the format nearest to the wanted one that can be made.
GUID ClipFormat(const SinkPlan& sink, const Signal& signal, const GUID& wanted)
{
    const std::string& path = sink.sink.path;
    host::VideoSettings settings = sink.settings;
    settings.format = wanted;
    settings.matrix = MatrixOf(wanted, settings.matrix);
    const std::vector<GUID> formats = host::FormatsOfVideo(path, settings);
    if (formats.empty()) {
        // The writer knows why.
        [[maybe_unused]] const host::VideoWriter writer(path, settings);
        throw RequestError(path + " cannot be written as a clip");
    }
    if (sink.sink.to && std::find(formats.begin(), formats.end(), wanted) == formats.end()) {
        throw RequestError(path + " cannot hold " + FormatName(wanted) + "; it takes " +
                           FormatNames(formats) + ", and other codecs more: see " + Named("codec"));
    }
    // Alpha comes first: when the codec takes none after all, the writer names those that do.
    for (const bool alpha : {settings.alpha != host::AlphaState::None, false}) {
        for (const GUID& format : formats) {
            if ((InfoOf(format).alpha || !alpha) && FindConversion(signal.format, format)) return format;
        }
    }
    throw RequestError(path + " cannot hold " + FormatName(signal.format) + "; it takes " +
                       FormatNames(formats));
}

void PlanClip(const JobPlan& plan, SinkPlan& sink, const Signal& signal)
{
    if (!signal.clipRoot && plan.sources.empty()) {
        throw RequestError(sink.sink.path + " would be a clip, and " + signal.label +
                           " is one picture; write .png, .jpg, .tif or .raw");
    }
    if (!signal.clipRoot) {
        throw RequestError(sink.sink.path +
                           " would be a clip, and all that is read are pictures; write a picture "
                           "(.png, .jpg, .tif, .raw), or read at least one clip");
    }
    const host::VideoReader& like = *plan.sources[*signal.clipRoot].reader;
    sink.settings = SettingsLike(sink, signal, like);
    // Who names a format has decided about alpha; pixels that nobody asked to keep clear are watched instead.
    const bool mayKeep = signal.alpha || signal.mayClear;
    const bool keepsAlpha = sink.sink.to ? mayKeep && InfoOf(*sink.sink.to).alpha : signal.alpha;
    sink.settings.alpha = keepsAlpha ? host::AlphaState::Straight : host::AlphaState::None;
    const GUID format = ClipFormat(sink, signal, sink.sink.to.value_or(HomeOf(signal)));
    sink.settings.format = format;
    sink.settings.matrix = MatrixOf(format, sink.settings.matrix);
    // The full range of RGB is none that YCC would inherit.
    if (InfoOf(format).ycc && !InfoOf(like.Info().format).ycc) sink.settings.range = host::Range::Studio;
    if (!InfoOf(format).alpha) sink.settings.alpha = host::AlphaState::None;
    const bool shows = sink.settings.alpha != host::AlphaState::None;
    sink.checkOpaque = !shows && !sink.sink.to && (signal.alpha || signal.mayClear);
}

void PlanPicture(const JobPlan& plan, const SinkPlan& sink, const Signal& signal)
{
    const RunSettings& settings = plan.settings;
    if (!signal.clip) return;
    const bool halved = signal.doublings < 0;
    const long frames = settings.endFrame.value_or(0) - settings.firstFrame;
    if (settings.endFrame && (halved ? frames == 1L << -signal.doublings : frames << signal.doublings == 1))
        return;
    const std::string start = sink.sink.path + " is one picture, and ";
    if (signal.doublings > 0) {
        throw RequestError(start + signal.label + " has two frames for each of " +
                           plan.sources[*signal.clipRoot].source.path + "; write a clip, or add " +
                           Named(kSameRateSetting));
    }
    throw RequestError(start + plan.sources[*signal.clipRoot].source.path + " a clip; choose " +
                       (halved ? "two frames" : "a frame") + ", such as " + OfRun("frames") +
                       (halved ? " 10:12" : " 10:11") + ", or write a clip");
}

} // namespace

void PlanSink(JobPlan& plan, Sink sink)
{
    CheckFolder(sink.path);
    CheckNotRead(plan, sink.path);
    SinkPlan planned;
    planned.sink = std::move(sink);
    planned.signal = *FindSignal(plan, planned.sink.result);
    planned.clip = host::IsVideo(planned.sink.path);
    const Signal signal = plan.signals[planned.signal];
    GUID format{};
    if (planned.clip) {
        PlanClip(plan, planned, signal);
        format = planned.settings.format;
    } else {
        PlanPicture(plan, planned, signal);
        format = PictureFormat(planned, signal);
        CheckDepth(planned.sink.path, format);
    }
    const auto conversion = Insert(plan, signal, format);
    if (!conversion) {
        throw RequestError(signal.label + " is " + FormatName(signal.format) +
                           ", from which nothing leads to " + FormatName(format));
    }
    planned.conversion = *conversion;
    plan.sinks.push_back(std::move(planned));
}

} // namespace vfil::engine

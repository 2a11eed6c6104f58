/// \file
/// The part of CheckJob that opens sources, and what all its parts share.
#include "catalogue/names.h"
#include "engine/failure.h"
#include "engine/planning.h"
#include "engine/settings.h"
#include "engine/text.h"
#include "host/pixelrows.h"

#include <algorithm>

namespace vfil::engine {

using catalogue::FormatName;

namespace {

GUID FormatAsRead(const Source& source, const host::PictureInfo& info)
{
    if (!source.format) return info.format;
    if (IsMono(*source.format) && !IsMono(info.format)) {
        throw RequestError(source.path + " is " + FormatName(info.format) + ", which " + Named("format") +
                           " " + FormatName(*source.format) + " does not make grey; take " + Named("format") +
                           " rgba32 or rgba64");
    }
    return *source.format;
}

void OpenPicture(SourcePlan& source, Signal& signal)
{
    const std::string& path = source.source.path;
    const host::ReadOptions& raw = source.source.rawOptions;
    if (IsRaw(path) && (!raw.format || raw.width == 0)) {
        throw RequestError(path + ": raw pixels need a format and a size (" + Named("in-format") +
                           " rgba32 " + Named("in-size") + " 720x576)");
    }
    source.picture = host::InspectPicture(path, IsRaw(path) ? raw : host::ReadOptions());
    signal.format = FormatAsRead(source.source, source.picture);
    signal.width = source.picture.width;
    signal.height = source.picture.height;
    signal.fieldOrder = source.source.overrides.fieldOrder.value_or(host::FieldOrder::Progressive);
    signal.alpha = source.picture.alpha != host::AlphaState::None;
}

void OpenClip(JobPlan& plan, SourcePlan& source, Signal& signal)
{
    source.reader = std::make_shared<host::VideoReader>(source.source.path, source.source.overrides);
    const host::VideoInfo& info = source.reader->Info();
    signal.format = info.format;
    signal.width = info.width;
    signal.height = info.height;
    signal.clip = true;
    signal.fieldOrder = info.fieldOrder.value;
    signal.alpha = info.alpha.value != host::AlphaState::None;
    signal.clipRoot = plan.sources.size();
    for (const std::string& remark : info.remarks)
        plan.remarks.push_back(source.source.path + ": " + remark);
    if (!source.source.format) return;
    const GUID wanted = *source.source.format;
    const auto conversion = Insert(plan, signal, wanted);
    if (!conversion) {
        throw RequestError(source.source.path + " is " + FormatName(info.format) + ", which " +
                           Named("format") + " does not turn into " + FormatName(wanted));
    }
    source.conversion = *conversion;
    signal.format = wanted;
}

} // namespace

const vfILFormatInfo& InfoOf(const GUID& format)
{
    return *vfILFindFormat(format);
}

bool IsMono(const GUID& format)
{
    return InfoOf(format).model == PXColorModel_MONO;
}

bool IsDeep(const GUID& format)
{
    return InfoOf(format).sampleBytes == 2;
}

std::optional<std::size_t> FindSignal(const JobPlan& plan, const std::string& name)
{
    const auto found = std::find_if(plan.signals.begin(), plan.signals.end(),
                                    [&](const Signal& signal) { return signal.name == name; });
    if (found == plan.signals.end()) return std::nullopt;
    return static_cast<std::size_t>(found - plan.signals.begin());
}

std::optional<Conversion> Insert(JobPlan& plan, const Signal& signal, const GUID& to)
{
    auto conversion = FindConversion(signal.format, to);
    if (!conversion || conversion->empty()) return conversion;
    const auto isShallow = [](const ConversionHop& hop) { return InfoOf(hop.to).sampleBytes == 1; };
    if (InfoOf(signal.format).sampleBytes == 2 && !plan.loses16Bits &&
        std::any_of(conversion->begin(), conversion->end(), isShallow)) {
        plan.loses16Bits = true;
        plan.remarks.push_back(signal.label + " falls from 16 bits to 8 on its way from " +
                               FormatName(signal.format) + " to " + FormatName(to));
    }
    if (InfoOf(to).subsampled && signal.width % 2 != 0) {
        const Message even = signal.label + " is " + std::to_string(signal.width) + " pixels wide, and " +
                             FormatName(to) + " takes an even width; ";
        if (signal.ofCanvas)
            throw RequestError(even + "see " + Named(kCanvasSetting) + ", or take another format with " +
                               Named("to"));
        throw RequestError(even + "cut it first, with " +
                           OperatorUse{catalogue::Copier().name, "roi",
                                       NumberList({0, 0, signal.width - 1, signal.height})});
    }
    plan.insertions.push_back({signal.label, signal.format, *conversion});
    return conversion;
}

void PlanSource(JobPlan& plan, Source source)
{
    SourcePlan planned;
    planned.source = std::move(source);
    Signal signal;
    signal.name = planned.source.name;
    signal.label = planned.source.path;
    if (host::IsVideo(planned.source.path))
        OpenClip(plan, planned, signal);
    else
        OpenPicture(planned, signal);
    signal.home = signal.format;
    planned.signal = plan.signals.size();
    plan.clip = plan.clip || signal.clip;
    plan.signals.push_back(std::move(signal));
    plan.sources.push_back(std::move(planned));
}

} // namespace vfil::engine

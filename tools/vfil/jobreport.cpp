/// \file
/// The reports of a run.
#include "tools/vfil/jobreport.h"
#include "catalogue/names.h"
#include "engine/runjob.h"
#include "tools/vfil/legalreport.h"
#include "tools/vfil/progress.h"
#include "tools/vfil/report.h"
#include "tools/vfil/text.h"
#include "tools/vfil/valuetext.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iostream>

namespace vfil::tool {

using catalogue::FormatName;
using engine::JobPlan;
using engine::RunResult;
using engine::SinkPlan;
using engine::SourcePlan;
using engine::StepPlan;
using engine::WrittenFile;
using Json = nlohmann::ordered_json;

namespace {

// A converter by its command; the host's own for grey.
std::vector<std::string> ConverterNames(const engine::Conversion& conversion)
{
    std::vector<std::string> names;
    for (const engine::ConversionHop& hop : conversion)
        names.push_back(hop.entry ? hop.entry->name : "the host");
    return names;
}

std::ostream& ReportStream(const JobPlan& plan)
{
    const bool piped = std::any_of(plan.sinks.begin(), plan.sinks.end(),
                                   [](const SinkPlan& sink) { return sink.sink.path == "-"; });
    return piped ? std::cerr : std::cout;
}

Json BoxRecord(const vfILBbox2l& box)
{
    return {box.GetOffsetX(), box.GetOffsetY(), box.GetSizeX(), box.GetSizeY()};
}

Json StepRecord(const StepPlan& planned, const RunResult& result, const LegalReports& legality)
{
    Json parameters = Json::object();
    for (const auto& [parameter, value] : planned.step.parameters)
        parameters[parameter->name] = ValueRecord(*parameter, value);
    if (const auto taken = result.keyColours.find(&planned); taken != result.keyColours.end()) {
        const catalogue::Parameter& parameter = *planned.step.keyColour->parameter;
        parameters[parameter.name] = ValueRecord(parameter, taken->second);
    }
    Json record = {{"operator", planned.step.entry->name},
                   {"parameters", parameters},
                   {"roi", BoxRecord(planned.roi)},
                   {"outputOffset", {planned.outputOffset[0], planned.outputOffset[1]}},
                   {"channels", ChannelLetters(planned.step.mode)},
                   {"format", FormatName(planned.format)}};
    if (Json judged = legality.Record(planned); !judged.is_null()) record["legality"] = std::move(judged);
    return record;
}

Json InputRecords(const JobPlan& plan)
{
    Json records = Json::array();
    for (const SourcePlan& source : plan.sources) {
        const std::string& path = source.source.path;
        records.push_back(source.IsClip() ? Record(path, source.reader->Info())
                                          : Record(path, source.picture));
    }
    return records;
}

// What a picture that was written says of itself.
host::PictureInfo Inspect(const SinkPlan& sink, const WrittenFile& written)
{
    const std::string& path = sink.sink.path;
    return host::InspectPicture(path, engine::IsRaw(path) ? written.picture : host::ReadOptions());
}

// "mpeg2video yuv422p 352x288, 25 frames"
std::string DescriptionOf(const SinkPlan& sink, const WrittenFile& written)
{
    if (!sink.clip) return Describe(Inspect(sink, written));
    return written.codec + " " + SizeText(sink.settings.width, sink.settings.height) + ", " +
           std::to_string(written.frames) + (written.frames == 1 ? " frame" : " frames");
}

Json OutputRecord(const SinkPlan& sink, const WrittenFile& written)
{
    if (!sink.clip) return Record(sink.sink.path, Inspect(sink, written));
    return {{"file", sink.sink.path},
            {"type", DescriptionOf(sink, written)},
            {"width", sink.settings.width},
            {"height", sink.settings.height},
            {"format", FormatName(sink.settings.format)},
            {"frames", written.frames}};
}

Json ConversionRecords(const JobPlan& plan)
{
    Json records = Json::array();
    for (const engine::InsertedConversion& inserted : plan.insertions) {
        records.push_back({{"of", inserted.label},
                           {"from", FormatName(inserted.from)},
                           {"to", FormatName(inserted.conversion.back().to)},
                           {"by", ConverterNames(inserted.conversion)}});
    }
    return records;
}

Json TimeRecord(const engine::Stopwatch& watch)
{
    Json record;
    for (std::size_t i = 0; i < engine::kPhaseNames.size(); ++i)
        record[engine::kPhaseNames[i]] = watch.Milliseconds()[i];
    return record;
}

// A single command has its step and its output at the top, a chain has lists of them.
Json RunRecord(const JobPlan& plan, const RunResult& result, const LegalReports& legality)
{
    const bool single = plan.steps.size() <= 1 && plan.sinks.size() <= 1;
    Json record = Json::object();
    if (single && !plan.steps.empty()) record = StepRecord(plan.steps.front(), result, legality);
    record["inputs"] = InputRecords(plan);
    if (single && !plan.sinks.empty()) {
        record["output"] = OutputRecord(plan.sinks.front(), result.files.front());
    } else if (!single) {
        for (const StepPlan& step : plan.steps)
            record["steps"].push_back(StepRecord(step, result, legality));
        for (std::size_t i = 0; i < plan.sinks.size(); ++i)
            record["outputs"].push_back(OutputRecord(plan.sinks[i], result.files[i]));
    }
    record["conversions"] = ConversionRecords(plan);
    if (plan.clip) {
        record["frames"] = result.frames;
        record["framesPerSecond"] = result.framesPerSecond;
    }
    record["milliseconds"] = TimeRecord(result.watch);
    return record;
}

// Remarks and progress on standard error.
class Terminal final : public engine::RunEvents {
public:
    explicit Terminal(const ReportSettings& settings) : m_settings(settings) {}

    void OnRemark(const engine::Message& text) override
    {
        if (!m_settings.quiet) std::cerr << "vfil: " << LineOf(text, m_settings.wording) << '\n';
    }
    void OnConversion(const engine::InsertedConversion& inserted) override
    {
        if (!m_settings.verbose) return;
        OnRemark(inserted.label + ": " + FormatName(inserted.from) + " to " +
                 FormatName(inserted.conversion.back().to) + " by " +
                 Join(ConverterNames(inserted.conversion), ", "));
    }
    void OnKeyColour(const StepPlan& step, const catalogue::Value& colour) override
    {
        if (!m_settings.verbose) return;
        const engine::ColourPlace& place = *step.step.keyColour;
        OnRemark(step.step.entry->name + ": --" + place.parameter->name + " " +
                 ValueText(*place.parameter, colour) + ", the mean at " +
                 engine::NumberList({place.x, place.y, place.radius}));
    }
    void OnFrames(std::optional<long> count) override { m_progress.emplace(m_settings, count); }
    void OnFrame() override { m_progress->Tick(); }
    void OnFramesEnd() override
    {
        m_progress->Finish();
        m_progress.reset();
    }

private:
    ReportSettings m_settings;
    std::optional<Progress> m_progress;
};

void Report(const JobPlan& plan, const ReportSettings& settings, const RunResult& result,
            const LegalReports& legality)
{
    if (settings.json) {
        PrintRecord(RunRecord(plan, result, legality), ReportStream(plan));
        return;
    }
    if (settings.quiet) return;
    for (std::size_t i = 0; i < plan.sinks.size(); ++i)
        ReportStream(plan) << plan.sinks[i].sink.path << ": " << DescriptionOf(plan.sinks[i], result.files[i])
                           << '\n';
    for (const std::string& line : legality.Lines())
        ReportStream(plan) << line << '\n';
}

} // namespace

void RunAndReport(const engine::CheckedJob& job, const ReportSettings& settings)
{
    Terminal terminal(settings);
    LegalReports legality(job.Plan(), settings.json);
    RunResult result;
    try {
        result = engine::RunJob(job, terminal, legality.AreWanted() ? &legality : nullptr);
    } catch (const engine::Interrupted&) {
        // They tell of the frames so far, as the clips have them.
        if (job.Plan().clip) legality.Finish();
        throw;
    }
    legality.Finish();
    Report(job.Plan(), settings, result, legality);
}

} // namespace vfil::tool

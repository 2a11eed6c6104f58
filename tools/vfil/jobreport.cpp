/// \file
/// The reports of a run.
#include "tools/vfil/jobreport.h"
#include "catalogue/names.h"
#include "tools/vfil/options.h"
#include "tools/vfil/report.h"
#include "tools/vfil/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <iostream>

namespace vfil::tool {

using catalogue::FormatName;
using Json = nlohmann::ordered_json;

namespace {

// A converter by its command; the host's own for grey.
std::vector<std::string> ConverterNames(const Conversion& conversion)
{
    std::vector<std::string> names;
    for (const ConversionHop& hop : conversion)
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

Json StepRecord(const StepPlan& planned)
{
    Json parameters = Json::object();
    for (const auto& [parameter, value] : planned.step.parameters)
        parameters[parameter->name] = ValueRecord(*parameter, value);
    return {{"operator", planned.step.entry->name},
            {"parameters", parameters},
            {"roi", BoxRecord(planned.roi)},
            {"outputOffset", {planned.outputOffset[0], planned.outputOffset[1]}},
            {"channels", ChannelLetters(planned.step.mode)},
            {"format", FormatName(planned.format)}};
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

Json OutputRecord(const SinkPlan& sink, std::size_t index, const Outputs& outputs)
{
    if (!sink.clip) return Record(sink.sink.path, outputs.InspectWritten(index));
    return {{"file", sink.sink.path},
            {"type", outputs.Description(index)},
            {"width", sink.settings.width},
            {"height", sink.settings.height},
            {"format", FormatName(sink.settings.format)},
            {"frames", outputs.Frames(index)}};
}

Json ConversionRecords(const JobPlan& plan)
{
    Json records = Json::array();
    for (const InsertedConversion& inserted : plan.insertions) {
        records.push_back({{"of", inserted.label},
                           {"from", FormatName(inserted.from)},
                           {"to", FormatName(inserted.conversion.back().to)},
                           {"by", ConverterNames(inserted.conversion)}});
    }
    return records;
}

Json TimeRecord(const Stopwatch& watch)
{
    Json record;
    for (std::size_t i = 0; i < kPhaseNames.size(); ++i)
        record[kPhaseNames[i]] = watch.Milliseconds()[i];
    return record;
}

// A single command has its step and its output at the top, a chain has lists of them.
Json RunRecord(const JobPlan& plan, const Outputs& outputs, const RunResult& result)
{
    const bool single = plan.steps.size() <= 1 && plan.sinks.size() == 1;
    Json record = Json::object();
    if (single && !plan.steps.empty()) record = StepRecord(plan.steps.front());
    record["inputs"] = InputRecords(plan);
    if (single) {
        record["output"] = OutputRecord(plan.sinks.front(), 0, outputs);
    } else {
        for (const StepPlan& step : plan.steps)
            record["steps"].push_back(StepRecord(step));
        for (std::size_t i = 0; i < plan.sinks.size(); ++i)
            record["outputs"].push_back(OutputRecord(plan.sinks[i], i, outputs));
    }
    record["conversions"] = ConversionRecords(plan);
    if (plan.clip) {
        record["frames"] = result.frames;
        record["framesPerSecond"] = result.framesPerSecond;
    }
    record["milliseconds"] = TimeRecord(result.watch);
    return record;
}

} // namespace

void Remark(const JobPlan& plan, const std::string& text)
{
    if (!plan.settings.quiet) std::cerr << "vfil: " << text << '\n';
}

void AnnounceRun(const JobPlan& plan)
{
    for (const std::string& remark : plan.remarks)
        Remark(plan, remark);
    if (!plan.settings.verbose) return;
    for (const InsertedConversion& inserted : plan.insertions) {
        Remark(plan, inserted.label + ": " + FormatName(inserted.from) + " to " +
                         FormatName(inserted.conversion.back().to) + " by " +
                         Join(ConverterNames(inserted.conversion), ", "));
    }
}

void ReportRun(const JobPlan& plan, const Outputs& outputs, const RunResult& result)
{
    if (plan.settings.json) {
        PrintRecord(RunRecord(plan, outputs, result), ReportStream(plan));
        return;
    }
    if (plan.settings.quiet) return;
    for (std::size_t i = 0; i < plan.sinks.size(); ++i)
        ReportStream(plan) << plan.sinks[i].sink.path << ": " << outputs.Description(i) << '\n';
}

} // namespace vfil::tool

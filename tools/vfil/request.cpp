/// \file
/// A job, from the words and options of a command line.
#include "tools/vfil/request.h"
#include "engine/jobparts.h"
#include "engine/values.h"
#include "tools/vfil/interrupt.h"
#include "tools/vfil/text.h"
#include "tools/vfil/valuetext.h"

#include <algorithm>
#include <limits>
#include <string_view>

namespace vfil::tool {

using catalogue::Entry;
using engine::Job;
using engine::OfRun;
using engine::RunSettings;
using engine::Source;
using engine::Step;
using engine::Values;
using engine::YesOrNo;

namespace {

constexpr long kMostThreads = 256;

void TakeFrames(const Values& options, RunSettings& settings)
{
    const auto text = options.Get("frames");
    if (!text) return;
    const std::size_t colon = text->find(':');
    const auto bound = [&](std::string_view part, long fallback) {
        if (part.empty()) return fallback;
        const auto number = ParseIntegers(part, ',', 1);
        return number ? number->front() : -1;
    };
    if (colon != std::string::npos) {
        constexpr long kNoEnd = std::numeric_limits<long>::max();
        settings.firstFrame = bound(std::string_view(*text).substr(0, colon), 0);
        const long end = bound(std::string_view(*text).substr(colon + 1), kNoEnd);
        if (end != kNoEnd) settings.endFrame = end;
        if (settings.firstFrame >= 0 && end > settings.firstFrame) return;
    }
    engine::RefuseValue(OfRun("frames"), *text,
                        "a range A:B of frames, such as 10:20 for frames 10 .. 19, 10: or :20");
}

unsigned Threads(const Values& options)
{
    const auto text = options.Get("threads");
    if (!text) return 0;
    const auto number = ParseIntegers(*text, ',', 1);
    if (!number || number->front() < 1 || number->front() > kMostThreads) {
        engine::RefuseValue(OfRun("threads"), *text, "a count of 1 .. " + std::to_string(kMostThreads));
    }
    return static_cast<unsigned>(number->front());
}

std::string OutputPath(const Arguments& arguments)
{
    std::string path = arguments.options.Get("output").value_or("");
    if (path.empty()) throw RequestError("needs -o FILE, the picture or clip to write");
    return path;
}

void CheckWords(const std::vector<std::string>& words, std::size_t least, std::size_t most,
                const std::string& names)
{
    if (most == 0 && !words.empty())
        throw RequestError("reads no picture, and '" + words.front() + "' is none of its options");
    if (words.size() < least || words.size() > most) {
        throw RequestError("takes " + std::to_string(most) + (most == 1 ? " picture" : " pictures") + " (" +
                           names + "), not " + std::to_string(words.size()));
    }
    if (std::find(words.begin(), words.end(), "") != words.end())
        throw RequestError("the name of a picture (" + names + ") is empty");
}

void CheckRaw(const Job& job)
{
    for (const Source& source : job.sources) {
        if (!engine::IsRaw(source.path)) continue;
        if (!source.rawOptions.format || source.rawOptions.width == 0)
            throw RequestError(source.path + ": a raw picture needs --in-format FORMAT and --in-size WxH");
        if (source.format)
            throw RequestError("--format does not convert " + source.path +
                               ", whose format is --in-format's");
    }
}

bool Makes(const Entry& entry, const GUID& format)
{
    return std::any_of(entry.conversions.begin(), entry.conversions.end(),
                       [&](const catalogue::FormatPair& pair) { return pair.to == format; });
}

// Who asks for a report need not want the pictures.
bool AsksForReport(const Entry& entry, const Arguments& arguments)
{
    return entry.legality && (arguments.options.Has(engine::kReportSetting) || arguments.Flag("json"));
}

// The first output goes to -o, the others to the options of their roles. "to" stands for what the operator
// makes when that is its choice, else for what becomes of it.
void AddSinks(const Entry& entry, const Arguments& arguments, Step& step, Job& job)
{
    const bool reports = AsksForReport(entry, arguments);
    const bool made = step.to && Makes(entry, *step.to);
    if (!made && !catalogue::IsGenerator(entry)) step.to.reset();
    for (std::size_t i = 0; i < entry.outputs.size(); ++i) {
        const catalogue::Output& output = entry.outputs[i];
        const std::string result = i == 0 ? "the result" : output.role;
        const bool given = arguments.options.Has(i == 0 ? "output" : output.role);
        step.results.push_back(given || !output.optional ? result : "");
        if (step.results.back().empty() || (reports && !given)) continue;
        const std::string path =
            i == 0 ? OutputPath(arguments) : arguments.options.Get(output.role).value_or("");
        if (path.empty()) throw RequestError(std::string("needs --") + output.role + " FILE");
        job.sinks.push_back(engine::MakeSink(path, result, arguments.options));
        if (made) job.sinks.back().to.reset();
    }
    if (job.sinks.empty() && !reports) throw RequestError("needs -o FILE, the picture or clip to write");
}

// The options as they speak of the pictures that are read.
Values SourceValues(const Entry& entry, const Values& options)
{
    Values values = options;
    for (const engine::Setting& setting : engine::SourceSettings()) {
        const std::string option = SourceOptionOf(entry, setting.name);
        if (option == setting.name) continue;
        values.given.erase(setting.name);
        if (options.Has(option)) values.given[setting.name] = options.All(option);
    }
    return values;
}

} // namespace

Job MakeJob(const Entry& entry, const Arguments& arguments)
{
    const auto optional =
        std::count_if(entry.inputs.begin(), entry.inputs.end(),
                      [](const catalogue::Input& input) { return input.optional || input.orFirst; });
    const std::size_t most = entry.inputs.size();
    CheckWords(arguments.words, most - static_cast<std::size_t>(optional), most, PictureNames(entry));
    Job job;
    const Values reading = SourceValues(entry, arguments.options);
    Step step = engine::MakeStep(entry, arguments.options);
    step.inputs.resize(most);
    for (std::size_t i = 0; i < arguments.words.size(); ++i) {
        step.inputs[i] = entry.inputs[i].role;
        job.sources.push_back(engine::MakeSource(step.inputs[i], arguments.words[i], reading));
    }
    CheckRaw(job);
    if (step.mask) {
        // A mask takes the depth of the pictures by itself.
        job.sources.push_back(engine::MakeSource("mask", step.mask->input, reading));
        job.sources.back().format.reset();
        step.mask->input = "mask";
    }
    AddSinks(entry, arguments, step, job);
    job.steps.push_back(std::move(step));
    job.settings = MakeSettings(arguments);
    return job;
}

Job MakeConvertJob(const Arguments& arguments)
{
    CheckWords(arguments.words, 1, 1, "PICTURE");
    Job job;
    job.sources.push_back(engine::MakeSource("picture", arguments.words[0], arguments.options));
    CheckRaw(job);
    job.sinks.push_back(engine::MakeSink(OutputPath(arguments), "picture", arguments.options));
    job.settings = MakeSettings(arguments);
    return job;
}

RunSettings MakeSettings(const Arguments& arguments)
{
    const Values& options = arguments.options;
    RunSettings settings;
    TakeFrames(options, settings);
    settings.threads = Threads(options);
    settings.conversions = {YesOrNo(options, OfRun("filter")), YesOrNo(options, OfRun("dither"))};
    settings.plain = arguments.Flag("plain");
    settings.interrupt = InterruptFlag();
    return settings;
}

ReportSettings MakeReportSettings(const Arguments& arguments)
{
    ReportSettings settings;
    settings.progress =
        engine::OneOf<ProgressStyle>(arguments.options, OfRun("progress"),
                                     {{"none", ProgressStyle::None}, {"json", ProgressStyle::Json}})
            .value_or(ProgressStyle::Auto);
    settings.json = arguments.Flag("json");
    settings.quiet = arguments.Flag("quiet");
    settings.verbose = arguments.Flag("verbose");
    if (settings.json && settings.quiet) throw RequestError("--json and --quiet exclude each other");
    return settings;
}

} // namespace vfil::tool

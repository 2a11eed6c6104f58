/// \file
/// A job, from the words and options of a command line.
#include "tools/vfil/request.h"
#include "tools/vfil/failure.h"
#include "tools/vfil/text.h"
#include "tools/vfil/values.h"

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <limits>
#include <string_view>

namespace vfil::tool {

using catalogue::Entry;

namespace {

constexpr long kMostThreads = 256;

std::optional<bool> YesOrNo(const Arguments& arguments, const std::string& name)
{
    return arguments.Has(name) ? std::optional(arguments.Flag(name)) : std::nullopt;
}

// One of a few words, and what it stands for.
template <class T>
std::optional<T> OneOf(const Arguments& arguments, const std::string& name,
                       std::initializer_list<std::pair<const char*, T>> meanings)
{
    const auto text = arguments.Get(name);
    if (!text) return std::nullopt;
    std::vector<std::string> words;
    for (const auto& [word, meaning] : meanings) {
        if (*text == word) return meaning;
        words.emplace_back(word);
    }
    RefuseValue(name, *text, "one of " + Join(words, ", ") + DidYouMean(*text, words));
}

void TakeFrames(const Arguments& arguments, RunSettings& settings)
{
    const auto text = arguments.Get("frames");
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
    RefuseValue("frames", *text, "a range A:B of frames, such as 10:20 for frames 10 .. 19, 10: or :20");
}

unsigned Threads(const Arguments& arguments)
{
    const auto text = arguments.Get("threads");
    if (!text) return 0;
    const auto number = ParseIntegers(*text, ',', 1);
    if (!number || number->front() < 1 || number->front() > kMostThreads) {
        RefuseValue("threads", *text, "a count of 1 .. " + std::to_string(kMostThreads));
    }
    return static_cast<unsigned>(number->front());
}

std::vector<std::pair<std::string, std::string>> CodecOptions(const Arguments& arguments)
{
    std::vector<std::pair<std::string, std::string>> options;
    for (const std::string& text : arguments.All("codec-option")) {
        const std::size_t equals = text.find('=');
        if (equals == 0 || equals == std::string::npos)
            RefuseValue("codec-option", text, "NAME=VALUE, such as crf=18");
        options.emplace_back(text.substr(0, equals), text.substr(equals + 1));
    }
    return options;
}

std::string OutputPath(const Arguments& arguments)
{
    std::string path = arguments.Get("output").value_or("");
    if (path.empty()) throw RequestError("needs -o FILE, the picture or clip to write");
    return path;
}

void CheckWords(const std::vector<std::string>& words, std::size_t least, std::size_t most,
                const std::string& names)
{
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
        if (!IsRaw(source.path)) continue;
        if (!source.rawOptions.format || source.rawOptions.width == 0)
            throw RequestError(source.path + ": a raw picture needs --in-format FORMAT and --in-size WxH");
        if (source.format)
            throw RequestError("--format does not convert " + source.path +
                               ", whose format is --in-format's");
    }
}

} // namespace

bool IsRaw(const std::string& path)
{
    return UpperCase(std::filesystem::path(path).extension().string()) == ".RAW";
}

host::ReadOptions RawOptions(const Arguments& arguments)
{
    host::ReadOptions options;
    options.format = Format(arguments, "in-format");
    const vfILVector2l size = Size(arguments, "in-size").value_or(vfILVector2l());
    options.width = size[0];
    options.height = size[1];
    return options;
}

host::VideoOverrides Overrides(const Arguments& arguments)
{
    host::VideoOverrides overrides;
    overrides.matrix = OneOf<host::Matrix>(arguments, "matrix",
                                           {{"601", host::Matrix::Bt601}, {"709", host::Matrix::Bt709}});
    overrides.range = OneOf<host::Range>(arguments, "range",
                                         {{"studio", host::Range::Studio}, {"full", host::Range::Full}});
    overrides.fieldOrder = OneOf<host::FieldOrder>(arguments, "field-order",
                                                   {{"top", host::FieldOrder::TopFirst},
                                                    {"bottom", host::FieldOrder::BottomFirst},
                                                    {"progressive", host::FieldOrder::Progressive}});
    overrides.premultiplied = YesOrNo(arguments, "premultiplied");
    return overrides;
}

Source MakeSource(const std::string& name, const std::string& path, const Arguments& arguments)
{
    return {.name = name,
            .path = path,
            .format = Format(arguments, "format"),
            .rawOptions = RawOptions(arguments),
            .overrides = Overrides(arguments),
            .where = ""};
}

Sink MakeSink(const std::string& path, const std::string& result, const Arguments& arguments)
{
    return {.path = path,
            .result = result,
            .to = Format(arguments, "to"),
            .codec = arguments.Get("codec").value_or(""),
            .container = arguments.Get("container").value_or(""),
            .codecOptions = CodecOptions(arguments),
            .where = ""};
}

RunSettings MakeSettings(const Arguments& arguments)
{
    RunSettings settings;
    TakeFrames(arguments, settings);
    settings.threads = Threads(arguments);
    settings.conversions = {YesOrNo(arguments, "filter"), YesOrNo(arguments, "dither")};
    settings.progress = OneOf<ProgressStyle>(arguments, "progress",
                                             {{"none", ProgressStyle::None}, {"json", ProgressStyle::Json}})
                            .value_or(ProgressStyle::Auto);
    settings.plain = arguments.Flag("plain");
    settings.json = arguments.Flag("json");
    settings.quiet = arguments.Flag("quiet");
    settings.verbose = arguments.Flag("verbose");
    if (settings.json && settings.quiet) throw RequestError("--json and --quiet exclude each other");
    return settings;
}

namespace {

bool Makes(const Entry& entry, const GUID& format)
{
    return std::any_of(entry.conversions.begin(), entry.conversions.end(),
                       [&](const catalogue::FormatPair& pair) { return pair.to == format; });
}

// The first output goes to -o, the others to the options of their roles. "to" stands for what the operator
// makes when that is its choice, else for what becomes of it.
void AddSinks(const Entry& entry, const Arguments& arguments, Step& step, Job& job)
{
    const bool made = step.to && Makes(entry, *step.to);
    if (!made) step.to.reset();
    for (std::size_t i = 0; i < entry.outputs.size(); ++i) {
        const catalogue::Output& output = entry.outputs[i];
        const std::string result = i == 0 ? "the result" : output.role;
        const bool given = arguments.Has(i == 0 ? "output" : output.role);
        step.results.push_back(given || !output.optional ? result : "");
        if (step.results.back().empty()) continue;
        const std::string path = i == 0 ? OutputPath(arguments) : arguments.Get(output.role).value_or("");
        if (path.empty()) throw RequestError(std::string("needs --") + output.role + " FILE");
        job.sinks.push_back(MakeSink(path, result, arguments));
        if (made) job.sinks.back().to.reset();
    }
    if (job.sinks.empty()) throw RequestError("needs -o FILE, the picture or clip to write");
}

} // namespace

Job MakeJob(const Entry& entry, const Arguments& arguments)
{
    const auto optional = std::count_if(entry.inputs.begin(), entry.inputs.end(),
                                        [](const catalogue::Input& input) { return input.optional; });
    const std::size_t most = entry.inputs.size();
    CheckWords(arguments.words, most - static_cast<std::size_t>(optional), most, PictureNames(entry));
    Job job;
    Step step = MakeStep(entry, arguments);
    step.inputs.resize(most);
    for (std::size_t i = 0; i < arguments.words.size(); ++i) {
        step.inputs[i] = entry.inputs[i].role;
        job.sources.push_back(MakeSource(step.inputs[i], arguments.words[i], arguments));
    }
    CheckRaw(job);
    if (step.mask) {
        // A mask takes the depth of the pictures by itself.
        job.sources.push_back(MakeSource("mask", step.mask->input, arguments));
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
    job.sources.push_back(MakeSource("picture", arguments.words[0], arguments));
    CheckRaw(job);
    job.sinks.push_back(MakeSink(OutputPath(arguments), "picture", arguments));
    job.settings = MakeSettings(arguments);
    return job;
}

} // namespace vfil::tool

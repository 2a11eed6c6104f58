/// \file
/// vfil key-auto.
#include "engine/execute.h"
#include "engine/jobparts.h"
#include "engine/values.h"
#include "keyauto/findkey.h"
#include "score/mattereader.h"
#include "score/score.h"
#include "tools/vfil/commands.h"
#include "tools/vfil/interrupt.h"
#include "tools/vfil/jobreport.h"
#include "tools/vfil/report.h"
#include "tools/vfil/text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace vfil::tool {

using keyauto::Finding;
using keyauto::Key;
using Json = nlohmann::ordered_json;

namespace {

// The picture, or the first frame of the clip, as the keyers see it.
host::PicturePtr ReadPlate(const std::string& path, const engine::Values& options)
{
    if (!host::IsVideo(path)) {
        host::ReadOptions reading;
        if (engine::IsRaw(path)) reading = engine::RawOptions(options);
        if (reading.format && *reading.format != PXFormat_RGBA32)
            throw RequestError(path + ": a raw plate is rgba32, which the keyers take");
        reading.format = PXFormat_RGBA32;
        return host::ReadPicture(path, reading);
    }
    const host::PicturePtr frame = host::VideoReader(path, engine::Overrides(options)).Read();
    if (!frame) throw RequestError(path + " has no frame");
    const auto toColour = engine::FindConversion(frame->Format(), PXFormat_RGBA32);
    if (!toColour) throw RequestError(path + ": its format cannot be keyed; RGB and YCC can");
    return engine::Converter(*toColour, engine::RunSettings()).Convert(frame);
}

// Whether the picture is converted when it is read for the keyers.
bool IsConverted(const std::string& path)
{
    return !host::IsVideo(path) && !engine::IsRaw(path) &&
           host::InspectPicture(path).format != PXFormat_RGBA32;
}

Finding Find(const host::PicturePtr& plate, const std::string& keyer)
{
    try {
        return keyauto::FindKey(plate, keyer);
    } catch (const keyauto::NothingToKey& nothing) {
        throw engine::RunError(nothing.what());
    }
}

std::string ColourText(const catalogue::Value& colour)
{
    std::ostringstream text;
    text << '#' << std::hex << std::setfill('0');
    for (const double v : {colour.x, colour.y, colour.z})
        text << std::setw(2) << std::lround(255 * v);
    return text.str();
}

std::string ValueText(const catalogue::Parameter& parameter, const catalogue::Value& value)
{
    if (parameter.type == catalogue::ParameterType::Colour) return ColourText(value);
    return NumberText(value.x);
}

const catalogue::Parameter& ParameterOf(const catalogue::Entry& entry, const std::string& name)
{
    return *std::find_if(entry.parameters.begin(), entry.parameters.end(),
                         [&](const catalogue::Parameter& parameter) { return parameter.name == name; });
}

// The command line that keys the plate: what was found, and what the user said of files.
Arguments CommandOf(const catalogue::Entry& entry, const Key& key, const Arguments& arguments)
{
    Arguments command;
    command.words = arguments.words;
    for (const auto& [name, value] : key.settings)
        command.options.given[name] = {ValueText(ParameterOf(entry, name), value)};
    if (IsConverted(command.words.front())) command.options.given["format"] = {"rgba32"};
    for (const auto& [name, values] : arguments.options.given) {
        if (name != "keyer" && name != "truth" && name != "json" && name != "quiet")
            command.options.given[name] = values;
    }
    return command;
}

std::string Quoted(const std::string& word)
{
    constexpr const char* kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=.,:/@%";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) return word;
    std::string quoted = "'";
    for (const char c : word)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string LineOf(const std::string& keyer, const Arguments& command)
{
    std::string line = "vfil " + keyer;
    for (const std::string& word : command.words)
        line += " " + Quoted(word);
    if (!command.options.Has("output")) line += " -o OUT.png";
    for (const auto& [name, values] : command.options.given) {
        for (const std::string& value : values)
            line += (name == "output" ? " -o " : " --" + name + " ") + Quoted(value);
    }
    return line;
}

score::Score Compare(const Key& key, const host::PicturePtr& plate, const Arguments& arguments)
{
    const std::string path = arguments.options.Get("truth").value_or("");
    score::MatteOptions options;
    if (engine::IsRaw(path)) options.raw = engine::RawOptions(arguments.options);
    const std::optional<score::Matte> truth = score::MatteReader(path, options).Next();
    if (!truth) throw RequestError(path + " has no frame");
    if (truth->width != plate->Width() || truth->height != plate->Height()) {
        throw RequestError(path + " is " + SizeText(truth->width, truth->height) + ", and the plate is " +
                           SizeText(plate->Width(), plate->Height()));
    }
    keyauto::Trial trial(key.keyer, plate);
    return score::Compare(score::MatteOf(*trial.Run(key.settings), score::Channel::Alpha), *truth);
}

Json NumberOrNull(const std::optional<double>& number)
{
    return number ? Json(*number) : Json();
}

Json KeyRecord(const Key& key)
{
    const catalogue::Entry& entry = *catalogue::Find(key.keyer);
    Json parameters;
    for (const auto& [name, value] : key.settings)
        parameters[name] = ValueRecord(ParameterOf(entry, name), value);
    return {{"keyer", key.keyer}, {"parameters", parameters}, {"distance", key.distance}};
}

Json FindingRecord(const Finding& finding, const std::string& line)
{
    Json record = {{"screen",
                    {{"kind", finding.blue ? "blue" : "green"},
                     {"colour", ColourText(finding.screen)},
                     {"share", finding.screenShare}}},
                   {"solidShare", finding.solidShare},
                   {"edgeWidth", finding.edgeWidth},
                   {"command", line}};
    for (const Key& key : finding.keys)
        record["keys"].push_back(KeyRecord(key));
    return record;
}

Json ScoreRecord(const score::Score& score)
{
    return {{"meanSquaredError", NumberOrNull(score.MeanSquaredError())},
            {"edgeError", NumberOrNull(score.EdgeError())},
            {"screenLeft", NumberOrNull(score.ScreenLeftShare())},
            {"solidLost", NumberOrNull(score.SolidLostShare())}};
}

std::string Fixed(const std::optional<double>& number, int digits)
{
    if (!number) return "-";
    std::ostringstream text;
    text << std::fixed << std::setprecision(digits) << *number;
    return text.str();
}

void Print(const Finding& finding, const std::string& line, const std::optional<score::Score>& score)
{
    const auto printTerm = [](const std::string& term) -> std::ostream& {
        return std::cout << "  " << std::left << std::setw(18) << term;
    };
    std::cout << line << '\n';
    printTerm("screen") << (finding.blue ? "blue " : "green ") << ColourText(finding.screen) << ", alone in "
                        << Fixed(100 * finding.screenShare, 1) << " % of the picture\n";
    printTerm("subject") << "solid in " << Fixed(100 * finding.solidShare, 1) << " %, edges "
                         << Fixed(finding.edgeWidth, 0) << " pixels wide\n";
    for (const Key& key : finding.keys)
        printTerm(key.keyer) << Fixed(key.distance, 1) << " from the matte that the plate suggests\n";
    if (!score) return;
    printTerm("against the truth") << "mean squared error " << Fixed(score->MeanSquaredError(), 2)
                                   << ", mean error on the edge " << Fixed(score->EdgeError(), 2) << '\n';
}

// The keyer that the user wants, or "".
std::string KeyerName(const engine::Values& options)
{
    std::string name = options.Get("keyer").value_or("");
    const std::vector<std::string> known = keyauto::Keyers();
    if (options.Has("keyer") && std::find(known.begin(), known.end(), name) == known.end())
        engine::RefuseValue(engine::Named("keyer"), name,
                            "one of " + Join(known, ", ") + DidYouMean(name, known));
    return name;
}

void CheckOutput(const Arguments& arguments)
{
    const std::string path = arguments.options.Get("output").value_or("");
    if (path.empty() || path == "-")
        throw RequestError("-o takes the name of a file; standard output has what was found");
    if (!host::IsVideo(path)) host::CheckWritable(path);
}

} // namespace

void RunKeyAuto(const Arguments& arguments)
{
    if (arguments.words.size() != 1)
        throw RequestError("takes 1 picture (PLATE), not " + std::to_string(arguments.words.size()));
    const engine::Values& options = arguments.options;
    if (arguments.Flag("json") && arguments.Flag("quiet"))
        throw RequestError("--json and --quiet exclude each other");
    const std::string keyer = KeyerName(options);
    if (options.Has("output")) CheckOutput(arguments);
    const host::PicturePtr plate = ReadPlate(arguments.words.front(), options);
    const Finding finding = Find(plate, keyer);
    const Key& best = finding.keys.front();
    const catalogue::Entry& entry = *catalogue::Find(best.keyer);
    const Arguments command = CommandOf(entry, best, arguments);
    const std::string line = LineOf(best.keyer, command);
    std::optional<score::Score> score;
    if (options.Has("truth")) score = Compare(best, plate, arguments);
    if (options.Has("output")) {
        ReportSettings reports;
        reports.quiet = true;
        RunAndReport(engine::CheckJob(MakeJob(entry, command)), reports);
    }
    if (arguments.Flag("quiet")) return;
    if (!arguments.Flag("json")) return Print(finding, line, score);
    Json record = FindingRecord(finding, line);
    if (score) record["truth"] = ScoreRecord(*score);
    PrintRecord(record, std::cout);
}

} // namespace vfil::tool

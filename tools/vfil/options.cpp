/// \file
/// The options of the command.
#include "tools/vfil/options.h"
#include "engine/settings.h"
#include "keyauto/findkey.h"
#include "tools/vfil/text.h"
#include "tools/vfil/valuetext.h"

#include <algorithm>
#include <map>

namespace vfil::tool {

using catalogue::Entry;
using catalogue::Parameter;
using catalogue::ParameterType;

namespace {

// Without a default these say themselves what happens then.
bool IsList(ParameterType type)
{
    return type == ParameterType::Numbers || type == ParameterType::Size || type == ParameterType::Stops;
}

// A flag that is set unless somebody says no.
bool IsUsually(const Parameter& parameter)
{
    return parameter.type == ParameterType::Flag && parameter.fallback && parameter.fallback->x != 0;
}

std::string ParameterSummary(const Parameter& parameter)
{
    std::vector<std::string> notes;
    for (const catalogue::Choice& choice : parameter.choices) {
        notes.emplace_back(choice.name);
        if (*choice.summary != '\0') notes.back() += std::string(": ") + choice.summary;
    }
    if (parameter.type == ParameterType::Flag)
        notes.push_back(IsUsually(parameter) ? "--no-" + parameter.name + " for the opposite"
                                             : "=no for the opposite");
    else if (parameter.choices.empty())
        notes.push_back(RangeText(parameter));
    if (*parameter.unit != '\0') notes.emplace_back(parameter.unit);
    const bool told = parameter.fallback || !IsList(parameter.type);
    if (parameter.required || told)
        notes.push_back(parameter.required ? "required" : "default " + DefaultText(parameter));
    return std::string(parameter.summary) + " (" + Join(notes, "; ") + ")";
}

std::string FileSummary(const Parameter& parameter)
{
    const bool curve = parameter.type == ParameterType::Curve;
    return (curve ? "a file with the numbers or points for --" : "a file with the table for --") +
           parameter.name + (curve ? "" : ", a row a line") + "; what follows a # is a remark";
}

std::string PlaceSummary(const Parameter& parameter)
{
    return "take --" + parameter.name +
           " from the first picture, of a clip from its first frame: the mean of the pixels around X,Y, y "
           "up, up "
           "to RADIUS away (default 0: that pixel); --verbose tells it";
}

Option OutputOption()
{
    return {
        .name = "output",
        .letter = "o",
        .value = "FILE",
        .summary =
            "the file to write, required: a picture (.png, .jpg, .jpeg, .tif, .tiff or .raw) or a clip; - "
            "is a clip on standard output"};
}

// Settings as options; each has its summary among those given.
std::vector<Option> Described(const std::vector<engine::Setting>& settings,
                              const std::map<std::string, std::string>& summaries)
{
    std::vector<Option> options;
    options.reserve(settings.size());
    for (const engine::Setting& setting : settings) {
        options.push_back({.name = setting.name,
                           .letter = "",
                           .value = setting.form,
                           .summary = summaries.at(setting.name),
                           .choices = setting.choices,
                           .repeats = setting.repeats});
    }
    return options;
}

std::vector<Option> Combine(const std::vector<std::vector<Option>>& groups)
{
    std::vector<Option> options;
    for (const std::vector<Option>& group : groups)
        options.insert(options.end(), group.begin(), group.end());
    return options;
}

} // namespace

std::vector<Option> ParameterOptions(const Entry& entry)
{
    std::map<std::string, std::string> summaries;
    for (const Parameter& parameter : entry.parameters) {
        summaries[parameter.name] = ParameterSummary(parameter);
        summaries[engine::FileSettingOf(parameter)] = FileSummary(parameter);
        summaries[engine::PlaceSettingOf(parameter)] = PlaceSummary(parameter);
    }
    if (catalogue::IsGenerator(entry)) {
        summaries[engine::kCanvasSetting] = "size of the picture in pixels, required";
        summaries[engine::kFormatSetting] = "format of the picture (default rgba32)";
        return Described(engine::ParameterSettings(entry), summaries);
    }
    summaries[engine::kReportSetting] = "tell, as comma-separated values, of each frame how many pixels are "
                                        "not legal, before and after, and in "
                                        "what; without -o nothing else is written";
    summaries[engine::kReportChromaSetting] =
        "by which chroma reports judge the right pixel of a pair: its own, as it is stored, or the mean with "
        "that of the next pair (default own)";
    summaries[engine::kSameRateSetting] =
        "of each frame of a clip make only the field that is first, so that the clip keeps its rate";
    summaries[engine::kFieldOrderSetting] = "which field of the frames is the earlier one (default top); of "
                                            "clips that are read: --in-field-order";
    summaries[engine::kCanvasSetting] =
        "size of the output in pixels, around the middle of the picture, or from 0,0 where the options say "
        "where the picture goes on it; same: that of the picture; fit: just large enough for all of it, for "
        "clips of 4:2:2 and 4:2:0 an even one (default what the other options ask for, else same)";
    std::vector<Option> options = Described(engine::ParameterSettings(entry), summaries);
    for (Option& option : options) {
        option.opposite = std::any_of(entry.parameters.begin(), entry.parameters.end(), [&](const auto& own) {
            return own.name == option.name && IsUsually(own);
        });
    }
    return options;
}

const std::vector<Option>& StepOptions()
{
    static const std::vector<Option> options = Described(
        engine::StepSettings(),
        {
            {"roi", "region of the first picture to work on, in pixels, x and y of its bottom-left corner "
                    "with y up (default the whole dominant picture)"},
            {"output-offset",
             "where the bottom-left pixel of the region lands in the output, in pixels, y up (default 0,0)"},
            {"output-size",
             "size of the output in pixels (default that of the region plus the output offset)"},
            {"mask",
             "picture or clip that bounds the operation by its box and, where the operator samples it, mixes "
             "the result with the input by one channel: red, green, blue, alpha or mono (default mono for a "
             "grey picture, alpha for one with alpha, else red); its depth follows the pictures"},
            {"mask-offset",
             "position of the mask's bottom-left pixel in the first picture, in pixels, y up (default 0,0)"},
            {"channels", "channels to work on, letters of rgba (default what 'vfil help OPERATOR' says, "
                         "without a for a picture that has no alpha)"},
            {"fields", "work only on rows with odd or even y, counted from the bottom row, which is 0; the "
                       "others show the dominant picture; both: all rows at once, as without this, also "
                       "where the rows of one field would get into the other"},
            {"default-color",
             "colour of output pixels that have no source, each component 0 .. 1 (default 0,0,0,0)"},
        });
    return options;
}

const std::vector<Option>& SourceOptions()
{
    static const std::vector<Option> options = Described(
        engine::SourceSettings(),
        {
            {"format",
             "format to which the pictures and clips are converted when read (default as the file has it)"},
            {"in-format", "format of .raw pictures"},
            {"in-size", "size of .raw pictures in pixels"},
            {"matrix", "weights of the YCC colour of clips, when the file is wrong or does not say"},
            {"range", "range of the samples of clips, likewise"},
            {"field-order", "which field of an interlaced clip comes first, likewise"},
            {"premultiplied",
             "whether the colour of pictures and clips is multiplied by their alpha, likewise"},
        });
    return options;
}

const std::vector<Option>& SinkOptions()
{
    static const std::vector<Option> options = Described(
        engine::SinkSettings(),
        {
            {"to", "format of the result, to which it is converted before it is written (default that of the "
                   "first picture or clip, as far as the file can hold it)"},
            {"codec", "codec of the clip to write (default that of the first clip where it will do, else the "
                      "container's)"},
            {"codec-option", "option of the codec, such as crf=18; may be given several times"},
            {"container", "container of the clip to write (default by the name's ending, nut for -)"},
        });
    return options;
}

const std::vector<Option>& RunOptions()
{
    static const std::vector<Option> options = {
        {"frames", "", "A:B",
         "frames of the clips to work on: from A, counted from 0, up to B, which is left out; either may be "
         "absent"},
        {"threads", "", "N", "frames that are worked on at the same time (default one a processor)"},
        {"filter",
         "",
         "yes|no",
         "average chroma when conversions halve it (default yes), interpolate it when they double it "
         "(default no)",
         {"yes", "no"}},
        {"dither", "", "yes|no", "dither in conversions to YCC (default no)", {"yes", "no"}},
        {"progress",
         "",
         "none|json",
         "how far a clip is, on standard error: nothing, or a record a line (default a bar on a terminal)",
         {"none", "json"}},
        {"plain", "", "", "use the plain arithmetic instead of the machine's vector instructions"},
        {"json", "", "", "write a record of the result to standard output"},
        {"verbose", "", "", "name the conversions that were inserted, on standard error"},
        {"quiet", "", "", "write nothing to standard output, no remarks and no progress"},
    };
    return options;
}

const std::vector<Option>& SharedOptions()
{
    static const std::vector<Option> options =
        Combine({{OutputOption()}, StepOptions(), SourceOptions(), SinkOptions(), RunOptions()});
    return options;
}

std::vector<Option> OutputOptions(const Entry& entry)
{
    std::vector<Option> options;
    for (std::size_t i = 1; i < entry.outputs.size(); ++i) {
        options.push_back({.name = entry.outputs[i].role,
                           .letter = "",
                           .value = "FILE",
                           .summary = entry.outputs[i].summary});
    }
    return options;
}

std::string SourceOptionOf(const Entry& entry, const std::string& setting)
{
    const auto own = engine::ParameterSettings(entry);
    const auto isSame = [&](const engine::Setting& other) { return other.name == setting; };
    return (std::any_of(own.begin(), own.end(), isSame) ? "in-" : "") + setting;
}

std::vector<Option> SharedOptionsOf(const Entry& entry)
{
    if (!catalogue::IsGenerator(entry)) return SharedOptions();
    std::vector<Option> options = SharedOptions();
    std::erase_if(options, [](const Option& option) {
        const char* const kept[] = {"output", "to", "filter", "dither", "plain", "json", "verbose", "quiet"};
        return std::find(std::begin(kept), std::end(kept), option.name) == std::end(kept);
    });
    return options;
}

std::vector<Option> OptionsOf(const Entry& entry)
{
    std::vector<Option> shared = SharedOptionsOf(entry);
    for (Option& option : shared)
        option.name = SourceOptionOf(entry, option.name);
    return Combine({ParameterOptions(entry), OutputOptions(entry), shared});
}

namespace {

std::vector<Option> ChainOptions()
{
    return Combine({{{.name = "input",
                      .letter = "",
                      .value = "NAME=FILE",
                      .summary = "read this file for the input of that name; may be given several times",
                      .repeats = true},
                     {.name = "output",
                      .letter = "o",
                      .value = "NAME=FILE",
                      .summary = "write the output of that name to this file; may be given several times",
                      .repeats = true}},
                    RunOptions()});
}

// Those of the options for reading by which a matte can be read.
std::vector<Option> ScoreOptions()
{
    std::vector<Option> options = {
        {"diff", "", "FILE",
         "write what matte minus truth is, as a grey picture, or as a clip where one is compared: mid grey "
         "where they are equal, lighter where the matte holds too much, darker where it holds too little"},
        {"channel",
         "",
         "alpha|luma",
         "what the mattes are (default alpha of a clip that has it and of a picture that is not opaque "
         "everywhere, else luma)",
         {"alpha", "luma"}},
        {"json", "", "", "write a record, with each frame's figures, to standard output"}};
    for (const Option& option : SourceOptions()) {
        if (option.name == "in-format" || option.name == "in-size" || option.name == "range")
            options.push_back(option);
    }
    options.back().summary = "range of the luma of clips, when the file is wrong or does not say";
    return options;
}

std::vector<Option> FieldsOptions()
{
    std::vector<Option> options = {
        {"frames", "", "N|A:B",
         "look at so many frames, or at those from A, counted from 0, up to B, which is left out (default "
         "600)"},
        {"check", "", "", "exit with status 1 when what is measured is not what the clip says"},
        {"json", "", "", "write a record, with the figures, to standard output"}};
    for (const Option& option : SourceOptions())
        if (option.name == "field-order") options.push_back(option);
    options.back().summary = "what to take for the clip's word, instead of its own";
    return options;
}

// The keyers work on RGBA of 8 bits, whatever the plate has.
std::vector<Option> KeyAutoOptions()
{
    Option output = OutputOption();
    output.summary = "run the command that was found, and write its result, the plate with the matte as its "
                     "alpha, to this file: a picture, or a clip where the plate is one";
    std::vector<Option> options = {
        output,
        {"keyer", "", "NAME", "take this keyer (default the one that does best)", keyauto::Keyers()},
        {"truth", "", "MATTE",
         "tell how near the matte is to the true one, of a clip on its first frame; it has no say in what is "
         "found"},
        {"json", "", "", "write a record of what was found to standard output"},
        {"quiet", "", "", "write nothing to standard output"}};
    for (const Option& option : SourceOptions())
        if (option.name != "format" && option.name != "premultiplied") options.push_back(option);
    return Combine({options, SinkOptions()});
}

} // namespace

const std::vector<Command>& Commands()
{
    static const std::vector<Command> commands = {
        {"list",
         "[--json]",
         "list the operators",
         {{"json", "", "", "write all that is known of them, as JSON"}},
         false},
        {"convert", "PICTURE -o FILE [--to FORMAT]",
         "convert a picture or clip to another format, container or codec; the pair of formats says by which "
         "converters",
         Combine({{OutputOption()}, SourceOptions(), SinkOptions(), RunOptions()})},
        {"run", "CHAIN.toml... [--input NAME=FILE]... [--output NAME=FILE]...",
         "run chains of operators that stand in files, on pictures or clips", ChainOptions()},
        {"info", "FILE... [--json]", "show what pictures and clips hold, and who says so",
         Combine({{{"json", "", "", "write a JSON array"}}, SourceOptions()})},
        {"fields", "CLIP [--json] [--check] [--frames N|A:B]",
         "measure how the fields of a clip follow each other in time, beside what the clip says",
         FieldsOptions()},
        {"score", "MATTE TRUTH [--json] [--diff FILE]",
         "tell how near a matte is to the true one: pictures or clips", ScoreOptions()},
        {"key-auto", "PLATE [-o FILE] [--keyer NAME] [--truth MATTE] [--json]",
         "find keyer and parameters for a plate with a green or blue screen: a picture, or a clip by its "
         "first "
         "frame",
         KeyAutoOptions()},
        {"help", "[OPERATOR]", "explain an operator or the command", {}},
        {"completion", "bash", "write a completion script", {}, true, {"bash"}},
        {"man", "", "write the manual page, as roff", {}, false},
    };
    return commands;
}

std::vector<std::string> CommandNames()
{
    std::vector<std::string> names;
    for (const Entry& entry : catalogue::Entries()) {
        names.push_back(entry.name);
        if (!entry.alias.empty()) names.push_back(entry.alias);
    }
    for (const Command& command : Commands())
        names.push_back(command.name);
    return names;
}

} // namespace vfil::tool

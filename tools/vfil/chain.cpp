/// \file
/// From a chain file to a job.
#include "tools/vfil/chain.h"
#include "catalogue/catalogue.h"
#include "tools/vfil/chainfile.h"
#include "tools/vfil/failure.h"
#include "tools/vfil/job.h"
#include "tools/vfil/request.h"
#include "tools/vfil/text.h"

#include <algorithm>
#include <map>
#include <set>

namespace vfil::tool {

namespace {

using catalogue::Entry;
using Options = std::vector<Option>;

// Files that the command line gives to names.
using Files = std::map<std::string, std::string>;

std::vector<std::string> With(std::vector<std::string> names, const Options& options)
{
    for (const Option& option : options)
        names.push_back(option.name);
    return names;
}

[[noreturn]] void RefuseOption(const std::string& option, const std::string& text)
{
    throw RequestError("--" + option + " " + text);
}

Files FilesOf(const Arguments& arguments, const std::string& option)
{
    Files files;
    for (const std::string& text : arguments.All(option)) {
        const std::size_t equals = text.find('=');
        if (equals == 0 || equals == std::string::npos || equals + 1 == text.size())
            RefuseOption(option, "'" + text + "' is not NAME=FILE");
        if (!files.emplace(text.substr(0, equals), text.substr(equals + 1)).second)
            RefuseOption(option, "gives " + text.substr(0, equals) + " two files");
    }
    return files;
}

// Everything that a step of an operator may say, besides its name, operator and inputs.
Options StepOptionsOf(const Entry& entry)
{
    Options options = ParameterOptions(entry);
    options.insert(options.end(), StepOptions().begin(), StepOptions().end());
    if (!entry.conversions.empty()) {
        const auto to = std::find_if(SinkOptions().begin(), SinkOptions().end(),
                                     [](const Option& option) { return option.name == "to"; });
        options.push_back(*to);
    }
    return options;
}

// All options that a chain file can hold.
Options OptionsInFiles()
{
    Options all = SourceOptions();
    all.insert(all.end(), SinkOptions().begin(), SinkOptions().end());
    for (const Entry& entry : catalogue::Entries()) {
        const Options options = StepOptionsOf(entry);
        all.insert(all.end(), options.begin(), options.end());
    }
    return all;
}

// The reading of one file.
class Chain {
public:
    Chain(std::string path, const Arguments& arguments)
        : m_file(std::move(path)), m_inputs(FilesOf(arguments, "input")),
          m_outputs(FilesOf(arguments, "output"))
    {
        m_file.CheckNames(m_file.Root(), {"inputs", "step", "outputs"});
        m_job.settings = MakeSettings(arguments);
        ReadFiles("inputs", "input", m_inputs, &Chain::ReadInput);
        ReadSteps();
        ReadFiles("outputs", "output", m_outputs, &Chain::ReadOutput);
        if (m_job.sinks.empty()) m_file.Refuse(m_file.Root(), "there are no outputs");
        AddMaskFiles();
        DropUnusedResults();
    }

    Job TakeJob() { return std::move(m_job); }
    /// What is made or read for nothing, as a line, or nothing.
    std::string Unused() const;

private:
    using Place = const toml::node&;

    using Reader = void (Chain::*)(const std::string& name, Place place, const toml::table& table,
                                   const std::string& path);

    void ReadFiles(const char* section, const std::string& option, const Files& given, Reader read);
    std::string FileOf(const std::string& name, Place entry, const std::string& option,
                       const Files& given) const;
    void ReadInput(const std::string& name, Place place, const toml::table& table, const std::string& path);
    void ReadOutput(const std::string& name, Place place, const toml::table& table, const std::string& path);
    void ReadSteps();
    void ReadStep(const toml::table& table);
    const Entry& Operator(const toml::table& table) const;
    std::vector<std::string> StepInputs(const Entry& entry, const toml::table& table) const;
    std::vector<std::string> InputsByRole(const Entry& entry, const toml::table& table) const;
    void AddMaskFiles();
    void DropUnusedResults();
    std::set<std::string> UsedNames() const;
    bool IsKnown(const std::string& name) const;

    ChainFile m_file;
    Files m_inputs;
    Files m_outputs;
    Job m_job;
};

[[noreturn]] void RefuseName(const std::string& option, const std::string& name,
                             const std::vector<std::string>& names)
{
    RefuseOption(option, name + ": the chain has no such " + option + DidYouMean(name, names));
}

// An entry of [inputs] or [outputs] is a file, or a table with one.
void Chain::ReadFiles(const char* section, const std::string& option, const Files& given, Reader read)
{
    static const toml::table kNothing;
    std::vector<std::string> names;
    const toml::node* const node = m_file.Root().get(section);
    const toml::table& table = node ? m_file.Table(*node, section) : kNothing;
    for (const auto& [name, entry] : ChainFile::InOrder(table)) {
        names.push_back(name);
        const toml::table* const details = entry->as_table();
        (this->*read)(name, *entry, details ? *details : kNothing, FileOf(name, *entry, option, given));
    }
    for (const auto& [name, path] : given) {
        if (std::find(names.begin(), names.end(), name) == names.end()) RefuseName(option, name, names);
    }
}

// The command line has the last word.
std::string Chain::FileOf(const std::string& name, Place entry, const std::string& option,
                          const Files& given) const
{
    if (const auto found = given.find(name); found != given.end()) return found->second;
    const toml::table* const details = entry.as_table();
    const toml::node* const file = details ? details->get("file") : &entry;
    std::string path = file ? m_file.Text(*file, "the file of " + name) : "";
    if (path.empty()) {
        m_file.Refuse(entry,
                      option + " '" + name + "' has no file; add one, or --" + option + " " + name + "=FILE");
    }
    return path;
}

void Chain::ReadInput(const std::string& name, Place place, const toml::table& table, const std::string& path)
{
    m_file.CheckNames(table, With({"file"}, SourceOptions()));
    const Arguments arguments = m_file.Take(table, SourceOptions());
    m_job.sources.push_back(m_file.At(table, [&] { return MakeSource(name, path, arguments); }));
    m_job.sources.back().where = m_file.Where(place);
}

void Chain::ReadOutput(const std::string& name, Place place, const toml::table& table,
                       const std::string& path)
{
    m_file.CheckNames(table, With({"file", "result"}, SinkOptions()));
    const toml::node* const node = table.get("result");
    const std::string result = node ? m_file.Text(*node, "the result of an output") : name;
    const Arguments arguments = m_file.Take(table, SinkOptions());
    m_job.sinks.push_back(m_file.At(table, [&] { return MakeSink(path, result, arguments); }));
    m_job.sinks.back().where = m_file.Where(place);
}

void Chain::ReadSteps()
{
    const toml::node* const node = m_file.Root().get("step");
    if (!node) return;
    const toml::array* const steps = node->as_array();
    if (!steps) m_file.Refuse(*node, "steps are tables [[step]]");
    for (const toml::node& step : *steps)
        ReadStep(m_file.Table(step, "a step"));
}

const Entry& Chain::Operator(const toml::table& table) const
{
    const toml::node* const node = table.get("operator");
    if (!node) m_file.Refuse(table, "the step has no operator");
    const std::string name = m_file.Text(*node, "an operator");
    if (const Entry* entry = catalogue::Find(name)) return *entry;
    std::vector<std::string> names;
    for (const Entry& entry : catalogue::Entries())
        names.push_back(entry.name);
    m_file.Refuse(*node, "unknown operator '" + name + "'" + DidYouMean(name, names));
}

void Chain::ReadStep(const toml::table& table)
{
    const Entry& entry = Operator(table);
    const Options options = StepOptionsOf(entry);
    m_file.CheckNames(table, With({"name", "operator", "inputs"}, options));
    const Arguments arguments = m_file.Take(table, options);
    Step step = m_file.At(table, [&] { return MakeStep(entry, arguments); });
    const toml::node* const node = table.get("name");
    const std::string name = node ? m_file.Text(*node, "the name of a step") : entry.name;
    step.inputs = StepInputs(entry, table);
    for (const catalogue::Output& output : entry.outputs)
        step.results.push_back(entry.outputs.size() == 1 ? name : name + "." + output.role);
    step.where = m_file.Where(table);
    m_job.steps.push_back(std::move(step));
}

// Names in the order of the operator's inputs, or by their roles. What is left out is "".
std::vector<std::string> Chain::StepInputs(const Entry& entry, const toml::table& table) const
{
    const toml::node* const node = table.get("inputs");
    if (!node) m_file.Refuse(table, entry.name + " has no inputs");
    std::vector<std::string> names;
    if (const toml::table* roles = node->as_table()) {
        names = InputsByRole(entry, *roles);
    } else if (const toml::array* list = node->as_array()) {
        for (const toml::node& name : *list)
            names.push_back(m_file.Text(name, "the name of an input"));
    } else {
        names.push_back(m_file.Text(*node, "inputs of one name"));
    }
    names.resize(std::max(names.size(), entry.inputs.size()));
    return names;
}

std::vector<std::string> Chain::InputsByRole(const Entry& entry, const toml::table& table) const
{
    std::vector<std::string> roles;
    std::vector<std::string> names;
    for (const catalogue::Input& input : entry.inputs) {
        roles.emplace_back(input.role);
        const toml::node* const node = table.get(input.role);
        names.push_back(node ? m_file.Text(*node, "the name of an input") : "");
    }
    m_file.CheckNames(table, roles);
    return names;
}

bool Chain::IsKnown(const std::string& name) const
{
    const auto makes = [&](const Step& step) {
        return std::find(step.results.begin(), step.results.end(), name) != step.results.end();
    };
    return std::any_of(m_job.sources.begin(), m_job.sources.end(),
                       [&](const Source& source) { return source.name == name; }) ||
           std::any_of(m_job.steps.begin(), m_job.steps.end(), makes);
}

// A mask that no input or step has the name of is a file, if it looks like one.
void Chain::AddMaskFiles()
{
    for (const Step& step : m_job.steps) {
        if (!step.mask || IsKnown(step.mask->input)) continue;
        const std::string& path = step.mask->input;
        if (path.find_first_of("./") == std::string::npos) continue;
        m_job.sources.push_back(MakeSource(path, path, {}));
        m_job.sources.back().where = step.where;
    }
}

std::set<std::string> Chain::UsedNames() const
{
    std::set<std::string> names;
    for (const Step& step : m_job.steps) {
        names.insert(step.inputs.begin(), step.inputs.end());
        if (step.mask) names.insert(step.mask->input);
    }
    for (const Sink& sink : m_job.sinks)
        names.insert(sink.result);
    return names;
}

// A splitter need not make what nobody asks for.
void Chain::DropUnusedResults()
{
    const std::set<std::string> used = UsedNames();
    for (Step& step : m_job.steps) {
        const auto isUsed = [&](const std::string& result) { return used.contains(result); };
        if (std::none_of(step.results.begin(), step.results.end(), isUsed)) continue;
        for (std::string& result : step.results)
            if (!isUsed(result)) result.clear();
    }
}

std::string Chain::Unused() const
{
    const std::set<std::string> used = UsedNames();
    const auto line = [](const std::string& where, const std::string& name) {
        return where + "no step and no output uses '" + name + "'";
    };
    for (const Source& source : m_job.sources)
        if (!used.contains(source.name)) return line(source.where, source.name);
    for (const Step& step : m_job.steps) {
        const auto isUsed = [&](const std::string& result) { return used.contains(result); };
        if (std::none_of(step.results.begin(), step.results.end(), isUsed))
            return line(step.where, step.results.front());
    }
    return "";
}

CheckedJob CheckChain(const std::string& path, const Arguments& arguments)
{
    try {
        Chain chain(path, arguments);
        const std::string unused = chain.Unused();
        CheckedJob job = CheckJob(chain.TakeJob());
        if (!unused.empty()) throw RequestError(unused);
        return job;
    } catch (const RequestError& error) {
        throw RequestError(WithoutDashes(error.what(), OptionsInFiles()));
    }
}

} // namespace

const std::vector<Option>& ChainOptions()
{
    static const Options options = [] {
        Options all = {{.name = "input",
                        .letter = "",
                        .value = "NAME=FILE",
                        .summary = "read this file for the input of that name; may be given several times",
                        .repeats = true},
                       {.name = "output",
                        .letter = "o",
                        .value = "NAME=FILE",
                        .summary = "write the output of that name to this file; may be given several times",
                        .repeats = true}};
        all.insert(all.end(), RunOptions().begin(), RunOptions().end());
        return all;
    }();
    return options;
}

void RunChains(const Arguments& arguments)
{
    if (arguments.words.empty()) throw RequestError("takes the name of a chain file");
    for (const std::string& path : arguments.words)
        RunJob(CheckChain(path, arguments));
}

} // namespace vfil::tool

/// \file
/// From a chain file to a job.
#include "engine/chain.h"
#include "catalogue/catalogue.h"
#include "engine/chainfile.h"
#include "engine/jobparts.h"
#include "engine/text.h"

#include <algorithm>
#include <optional>
#include <set>

namespace vfil::engine {

namespace {

using catalogue::Entry;

std::vector<std::string> With(std::vector<std::string> names, const std::vector<Setting>& settings)
{
    for (const Setting& setting : settings)
        names.push_back(setting.name);
    return names;
}

// The reading of one file.
class Chain {
public:
    Chain(const std::string& path, const ChainFiles& inputs, const ChainFiles& outputs,
          const RunSettings& settings)
        : m_file(path), m_inputs(inputs), m_outputs(outputs)
    {
        m_file.CheckNames(m_file.Root(), {"inputs", "step", "outputs"});
        m_job.settings = settings;
        ReadFiles("inputs", "input", m_inputs, &Chain::ReadInput);
        ReadSteps();
        ReadFiles("outputs", "output", m_outputs, &Chain::ReadOutput);
        if (m_job.sinks.empty()) m_file.Refuse(m_file.Root(), "there are no outputs");
        AddMaskFiles();
        DropUnusedResults();
    }

    Job TakeJob() { return std::move(m_job); }
    /// What is made or read for nothing, if anything.
    std::optional<Fault> Unused() const;

private:
    using Place = const toml::node&;

    using Reader = void (Chain::*)(const std::string& name, Place place, const toml::table& table,
                                   const std::string& path);

    void ReadFiles(const char* section, const std::string& kind, const ChainFiles& given, Reader read);
    std::string FileOf(const std::string& name, Place entry, const std::string& kind,
                       const ChainFiles& given) const;
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
    const ChainFiles& m_inputs;
    const ChainFiles& m_outputs;
    Job m_job;
};

[[noreturn]] void RefuseName(const std::string& kind, const std::string& name,
                             const std::vector<std::string>& names)
{
    throw RequestError(OfRun(kind) + " " + name + ": the chain has no such " + kind +
                       DidYouMean(name, names));
}

// An entry of [inputs] or [outputs] is a file, or a table with one.
void Chain::ReadFiles(const char* section, const std::string& kind, const ChainFiles& given, Reader read)
{
    static const toml::table kNothing;
    std::vector<std::string> names;
    const toml::node* const node = m_file.Root().get(section);
    const toml::table& table = node ? m_file.Table(*node, section) : kNothing;
    for (const auto& [name, entry] : ChainFile::InOrder(table)) {
        names.push_back(name);
        const toml::table* const details = entry->as_table();
        (this->*read)(name, *entry, details ? *details : kNothing, FileOf(name, *entry, kind, given));
    }
    for (const auto& [name, path] : given) {
        if (std::find(names.begin(), names.end(), name) == names.end()) RefuseName(kind, name, names);
    }
}

// Who calls has the last word.
std::string Chain::FileOf(const std::string& name, Place entry, const std::string& kind,
                          const ChainFiles& given) const
{
    if (const auto found = given.find(name); found != given.end()) return found->second;
    const toml::table* const details = entry.as_table();
    const toml::node* const file = details ? details->get("file") : &entry;
    std::string path = file ? m_file.Text(*file, "the file of " + name) : "";
    if (path.empty()) {
        m_file.Refuse(entry, kind + " '" + name + "' has no file; add one, or " + OfRun(kind) + " " + name +
                                 "=FILE");
    }
    return path;
}

void Chain::ReadInput(const std::string& name, Place place, const toml::table& table, const std::string& path)
{
    m_file.CheckNames(table, With({"file"}, SourceSettings()));
    const Values values = m_file.Take(table, SourceSettings());
    m_job.sources.push_back(m_file.At(table, [&] { return MakeSource(name, path, values); }));
    m_job.sources.back().where = m_file.Where(place);
}

void Chain::ReadOutput(const std::string& name, Place place, const toml::table& table,
                       const std::string& path)
{
    m_file.CheckNames(table, With({"file", "result"}, SinkSettings()));
    const toml::node* const node = table.get("result");
    const std::string result = node ? m_file.Text(*node, "the result of an output") : name;
    const Values values = m_file.Take(table, SinkSettings());
    m_job.sinks.push_back(m_file.At(table, [&] { return MakeSink(path, result, values); }));
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
    const std::vector<Setting> settings = SettingsOfStep(entry);
    m_file.CheckNames(table, With({"name", "operator", "inputs"}, settings));
    const Values values = m_file.Take(table, settings);
    Step step = m_file.At(table, [&] { return MakeStep(entry, values); });
    const toml::node* const node = table.get("name");
    const std::string name = node ? m_file.Text(*node, "the name of a step") : entry.name;
    step.inputs = StepInputs(entry, table);
    for (const catalogue::Output& output : entry.outputs)
        step.results.push_back(name + "." + output.role);
    // The fields of a clip are one result, unless somebody asks for the second one.
    if (entry.outputs.size() == 1 || entry.fields == catalogue::FieldUse::Splits) step.results.front() = name;
    step.where = m_file.Where(table);
    m_job.steps.push_back(std::move(step));
}

// Names in the order of the operator's inputs, or by their roles. What is left out is "".
std::vector<std::string> Chain::StepInputs(const Entry& entry, const toml::table& table) const
{
    const toml::node* const node = table.get("inputs");
    if (!node && catalogue::IsGenerator(entry)) return {};
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

std::optional<Fault> Chain::Unused() const
{
    const std::set<std::string> used = UsedNames();
    const auto fault = [](const std::string& where, const std::string& name) {
        return Fault{.where = where, .step = name, .text = "no step and no output uses '" + name + "'"};
    };
    for (const Source& source : m_job.sources)
        if (!used.contains(source.name)) return fault(source.where, source.name);
    for (const Step& step : m_job.steps) {
        const auto isUsed = [&](const std::string& result) { return used.contains(result); };
        if (std::none_of(step.results.begin(), step.results.end(), isUsed))
            return fault(step.where, step.results.front());
    }
    return std::nullopt;
}

} // namespace

CheckedJob CheckChain(const std::string& path, const ChainFiles& inputs, const ChainFiles& outputs,
                      const RunSettings& settings)
{
    Chain chain(path, inputs, outputs, settings);
    const std::optional<Fault> unused = chain.Unused();
    CheckedJob job = CheckJob(chain.TakeJob());
    if (unused) throw RequestError(*unused);
    return job;
}

} // namespace vfil::engine

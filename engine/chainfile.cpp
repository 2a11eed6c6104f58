/// \file
/// TOML to texts for settings.
#include "engine/chainfile.h"
#include "engine/failure.h"
#include "engine/text.h"
#include "engine/values.h"

#include <algorithm>
#include <optional>

namespace vfil::engine {

namespace {

const char* KindName(const toml::node& node)
{
    switch (node.type()) {
    case toml::node_type::table:
        return "a table";
    case toml::node_type::array:
        return "an array";
    case toml::node_type::string:
        return "a string";
    case toml::node_type::integer:
    case toml::node_type::floating_point:
        return "a number";
    case toml::node_type::boolean:
        return "true or false";
    default:
        return "a date or time";
    }
}

// A string, number or boolean as text.
std::optional<std::string> Scalar(const toml::node& node)
{
    if (const auto* text = node.as_string()) return text->get();
    if (const auto* number = node.as_integer()) return std::to_string(number->get());
    if (const auto* number = node.as_floating_point()) return NumberText(number->get());
    if (const auto* flag = node.as_boolean()) return flag->get() ? "yes" : "no";
    return std::nullopt;
}

std::optional<std::vector<std::string>> Scalars(const toml::array& array)
{
    std::vector<std::string> texts;
    for (const toml::node& node : array) {
        const auto text = Scalar(node);
        if (!text) return std::nullopt;
        texts.push_back(*text);
    }
    return texts;
}

// An array of rows as a setting of a table of numbers takes it.
std::optional<std::string> Rows(const toml::node& node)
{
    const toml::array* const array = node.as_array();
    if (!array) return std::nullopt;
    std::vector<std::string> rows;
    for (const toml::node& row : *array) {
        const auto numbers = row.is_array() ? Scalars(*row.as_array()) : std::nullopt;
        if (!numbers) return std::nullopt;
        rows.push_back(Join(*numbers, " "));
    }
    return Join(rows, "; ");
}

// The entries of a table as a setting that repeats takes them.
std::optional<std::vector<std::string>> Assignments(const toml::table& table)
{
    std::vector<std::string> texts;
    for (const auto& [name, node] : table) {
        const auto text = Scalar(node);
        if (!text) return std::nullopt;
        texts.emplace_back(name.str());
        texts.back() += "=" + *text;
    }
    return texts;
}

// What stands between the parts of a value.
const char* SeparatorOf(const Setting& setting)
{
    if (setting.form == kStopsForm) return " ";
    return setting.form.starts_with(kSizeForm) ? "x" : ",";
}

} // namespace

ChainFile::ChainFile(std::string path) : m_path(std::move(path))
{
    const std::string text = ReadText(m_path);
    try {
        m_root = toml::parse(text, m_path);
    } catch (const toml::parse_error& error) {
        throw RequestError(Fault{.where = m_path + ":" + std::to_string(error.source().begin.line) + ": ",
                                 .text = std::string(error.description())});
    }
}

std::string ChainFile::Where(const toml::node& node) const
{
    return m_path + ":" + std::to_string(std::max(1U, node.source().begin.line)) + ": ";
}

void ChainFile::Refuse(const toml::node& node, const Message& text) const
{
    throw RequestError(Fault{.where = Where(node), .parameter = text.Subject(), .text = text});
}

std::vector<std::pair<std::string, const toml::node*>> ChainFile::InOrder(const toml::table& table)
{
    std::vector<std::pair<std::string, const toml::node*>> entries;
    for (const auto& [name, node] : table)
        entries.emplace_back(name.str(), &node);
    std::stable_sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
        return a.second->source().begin < b.second->source().begin;
    });
    return entries;
}

const toml::table& ChainFile::Table(const toml::node& node, const std::string& what) const
{
    if (const toml::table* table = node.as_table()) return *table;
    Refuse(node, what + " is a table, not " + KindName(node));
}

std::string ChainFile::Text(const toml::node& node, const std::string& what) const
{
    if (const auto* text = node.as_string()) return text->get();
    Refuse(node, what + " is a string, not " + KindName(node));
}

void ChainFile::CheckNames(const toml::table& table, const std::vector<std::string>& known) const
{
    for (const auto& [name, node] : InOrder(table)) {
        if (std::find(known.begin(), known.end(), name) == known.end())
            Refuse(*node, "unknown name '" + name + "'" + DidYouMean(name, known));
    }
}

std::vector<std::string> ChainFile::TextsOf(const toml::node& node, const Setting& setting) const
{
    if (const auto scalar = Scalar(node)) return {*scalar};
    if (const auto rows = setting.form == kTableForm ? Rows(node) : std::nullopt) return {*rows};
    std::optional<std::vector<std::string>> texts;
    if (const toml::array* array = node.as_array()) texts = Scalars(*array);
    if (texts && !setting.repeats) return {Join(*texts, SeparatorOf(setting))};
    if (const toml::table* table = node.as_table(); table && setting.repeats) texts = Assignments(*table);
    if (texts) return *texts;
    const std::string right = setting.form.empty() ? "true or false" : setting.form;
    Refuse(node, setting.name + " takes " + right + ", not " + KindName(node) +
                     (node.is_array() ? " of such things" : ""));
}

Values ChainFile::Take(const toml::table& table, const std::vector<Setting>& settings) const
{
    Values values;
    for (const Setting& setting : settings) {
        if (const toml::node* node = table.get(setting.name))
            values.given[setting.name] = TextsOf(*node, setting);
    }
    return values;
}

void ChainFile::Complain(const toml::table& table, Fault fault) const
{
    const toml::node* const entry = table.get(fault.parameter);
    fault.where = Where(entry ? *entry : table);
    throw RequestError(fault);
}

} // namespace vfil::engine

/// \file
/// TOML to options.
#include "tools/vfil/chainfile.h"
#include "tools/vfil/failure.h"
#include "tools/vfil/text.h"
#include "tools/vfil/values.h"

#include <algorithm>
#include <optional>

namespace vfil::tool {

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

// A string, number or boolean as one would write it on the command line.
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

// An array of rows as an option of a table of numbers takes it.
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

// The entries of a table as an option that repeats takes them.
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

std::vector<std::string> NamesOf(const std::vector<Option>& options)
{
    std::vector<std::string> names;
    names.reserve(options.size());
    for (const Option& option : options)
        names.push_back(option.name);
    return names;
}

bool IsNameCharacter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '-';
}

// The name of the option that stands at `begin`, with its two dashes.
std::string OptionAt(const std::string& text, std::size_t begin)
{
    const auto end =
        std::find_if_not(text.begin() + static_cast<std::ptrdiff_t>(begin), text.end(), IsNameCharacter);
    return {text.begin() + static_cast<std::ptrdiff_t>(begin), end};
}

} // namespace

ChainFile::ChainFile(std::string path) : m_path(std::move(path))
{
    const std::string text = ReadText(m_path);
    try {
        m_root = toml::parse(text, m_path);
    } catch (const toml::parse_error& error) {
        throw RequestError(m_path + ":" + std::to_string(error.source().begin.line) + ": " +
                           std::string(error.description()));
    }
}

std::string ChainFile::Where(const toml::node& node) const
{
    return m_path + ":" + std::to_string(std::max(1U, node.source().begin.line)) + ": ";
}

void ChainFile::Refuse(const toml::node& node, const std::string& text) const
{
    throw RequestError(Where(node) + text);
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

std::vector<std::string> ChainFile::Values(const toml::node& node, const Option& option) const
{
    if (const auto scalar = Scalar(node)) return {*scalar};
    if (const auto rows = option.value == kTablePlaceholder ? Rows(node) : std::nullopt) return {*rows};
    std::optional<std::vector<std::string>> texts;
    if (const toml::array* array = node.as_array()) texts = Scalars(*array);
    if (texts && !option.repeats) return {Join(*texts, option.value == "WxH" ? "x" : ",")};
    if (const toml::table* table = node.as_table(); table && option.repeats) texts = Assignments(*table);
    if (texts) return *texts;
    const std::string right = option.value.empty() ? "true or false" : option.value;
    Refuse(node, option.name + " takes " + right + ", not " + KindName(node) +
                     (node.is_array() ? " of such things" : ""));
}

Arguments ChainFile::Take(const toml::table& table, const std::vector<Option>& options) const
{
    Arguments arguments;
    for (const Option& option : options) {
        if (const toml::node* node = table.get(option.name))
            arguments.options[option.name] = Values(*node, option);
    }
    return arguments;
}

void ChainFile::Complain(const toml::table& table, const std::string& text) const
{
    const toml::node* place = &table;
    if (text.starts_with("--")) {
        if (const toml::node* node = table.get(OptionAt(text, 0).substr(2))) place = node;
    }
    Refuse(*place, text);
}

std::string WithoutDashes(std::string text, const std::vector<Option>& options)
{
    const std::vector<std::string> names = NamesOf(options);
    for (std::size_t at = text.find("--"); at != std::string::npos; at = text.find("--", at)) {
        const std::string name = OptionAt(text, at).substr(2);
        const bool ours = std::find(names.begin(), names.end(), name) != names.end();
        if (ours)
            text.erase(at, 2);
        else
            at += 2;
    }
    return text;
}

} // namespace vfil::tool

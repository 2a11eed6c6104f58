/// \file
/// A chain file as tables of values with their places, for the reader of chains. The syntax is TOML; what a
/// value may be is told by the options of the command.
#pragma once

#include "tools/vfil/arguments.h"

#include <string>
#include <utility>
#include <vector>

#include <toml++/toml.h>

namespace vfil::tool {

/// The text of a chain file, parsed.
class ChainFile {
public:
    /// \throws RequestError  The file cannot be read, or is no TOML.
    explicit ChainFile(std::string path);

    const toml::table& Root() const { return m_root; }
    /// "chain.toml:12: ", what messages about a value begin with.
    std::string Where(const toml::node& node) const;
    [[noreturn]] void Refuse(const toml::node& node, const std::string& text) const;

    /// The entries of a table in the order of the file.
    static std::vector<std::pair<std::string, const toml::node*>> InOrder(const toml::table& table);
    /// \throws RequestError  The value is no table, here; no string, below. \p what says what it is: "step".
    const toml::table& Table(const toml::node& node, const std::string& what) const;
    std::string Text(const toml::node& node, const std::string& what) const;
    /// Checks that all names in a table are among those known.
    void CheckNames(const toml::table& table, const std::vector<std::string>& known) const;
    /// The entries of a table that are options, as the command line would have them. Others are left out.
    Arguments Take(const toml::table& table, const std::vector<Option>& options) const;
    /// Runs `make` on what a table says; its complaints get the line of the entry that they speak of.
    template <class Make>
    auto At(const toml::table& table, Make make) const
    {
        try {
            return make();
        } catch (const std::runtime_error& error) {
            Complain(table, error.what());
        }
    }

private:
    std::vector<std::string> Values(const toml::node& node, const Option& option) const;
    [[noreturn]] void Complain(const toml::table& table, const std::string& text) const;

    std::string m_path;
    toml::table m_root;
};

/// A message about options with their names as a chain file has them, without the dashes.
std::string WithoutDashes(std::string text, const std::vector<Option>& options);

} // namespace vfil::tool

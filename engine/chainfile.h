/// \file
/// A chain file as tables of values with their places, for the reader of chains. The syntax is TOML; what a
/// value may be is told by the settings.
#pragma once

#include "engine/failure.h"
#include "engine/settings.h"

#include <string>
#include <utility>
#include <vector>

#include <toml++/toml.h>

namespace vfil::engine {

/// The text of a chain file, parsed.
class ChainFile {
public:
    /// \throws RequestError  The file cannot be read, or is no TOML.
    explicit ChainFile(std::string path);

    const toml::table& Root() const { return m_root; }
    /// "chain.toml:12: ", what messages about a value begin with.
    std::string Where(const toml::node& node) const;
    [[noreturn]] void Refuse(const toml::node& node, const Message& text) const;

    /// The entries of a table in the order of the file.
    static std::vector<std::pair<std::string, const toml::node*>> InOrder(const toml::table& table);
    /// \throws RequestError  The value is no table, here; no string, below. \p what says what it is: "step".
    const toml::table& Table(const toml::node& node, const std::string& what) const;
    std::string Text(const toml::node& node, const std::string& what) const;
    /// Checks that all names in a table are among those known.
    void CheckNames(const toml::table& table, const std::vector<std::string>& known) const;
    /// The entries of a table that are settings, as text. Others are left out.
    Values Take(const toml::table& table, const std::vector<Setting>& settings) const;
    /// Runs `make` on what a table says; its complaints get the line of the entry that they speak of.
    template <class Make>
    auto At(const toml::table& table, Make make) const
    {
        try {
            return make();
        } catch (const RequestError& error) {
            Complain(table, error.What());
        }
    }

private:
    std::vector<std::string> TextsOf(const toml::node& node, const Setting& setting) const;
    [[noreturn]] void Complain(const toml::table& table, Fault fault) const;

    std::string m_path;
    toml::table m_root;
};

} // namespace vfil::engine

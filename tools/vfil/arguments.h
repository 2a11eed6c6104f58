/// \file
/// The words and options of a command line, taken apart but not yet understood.
#pragma once

#include "engine/settings.h"
#include "tools/vfil/options.h"

#include <string>
#include <vector>

namespace vfil::tool {

/// A command line without its first two words.
struct Arguments {
    std::vector<std::string> words; ///< what is no option
    engine::Values options;         ///< those given, with each of their values; a flag has "true" or what
                                    ///< stood behind =
    bool help = false;              ///< --help was among them

    /// \throws RequestError for a value that is neither yes nor no.
    bool Flag(const std::string& name) const { return options.Flag(engine::OfRun(name)); }
};

/// \param options What the command takes, beside --help.
/// \throws RequestError for an unknown option, an option given twice, one without its value.
Arguments ParseArguments(const std::vector<Option>& options, std::vector<std::string> words);

} // namespace vfil::tool

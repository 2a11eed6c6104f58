/// \file
/// The options of the command, as data: parsing, help, the man page and completion are made from it.
#pragma once

#include <catalogue/catalogue.h>

#include <string>
#include <vector>

namespace vfil::tool {

/// One option.
struct Option {
    std::string name;   ///< without the dashes
    std::string letter; ///< of the short form, or ""
    std::string value;  ///< what stands for the value in help; "" for a flag
    std::string summary;
    std::vector<std::string> choices = {}; ///< the words that it takes, when these are few
    bool repeats = false;                  ///< may be given more than once
    bool opposite = false;                 ///< a flag that --no-NAME says no to
};

/// The options that the parameters of an operator make.
std::vector<Option> ParameterOptions(const catalogue::Entry& entry);

/// The options that name the outputs of an operator behind the first, by their roles.
std::vector<Option> OutputOptions(const catalogue::Entry& entry);

/// The options of how an operator works, beside its parameters.
const std::vector<Option>& StepOptions();
/// The options of how pictures and clips are read.
const std::vector<Option>& SourceOptions();
/// The options of how a result is written.
const std::vector<Option>& SinkOptions();
/// The options of a run as a whole.
const std::vector<Option>& RunOptions();

/// The options that all operators share: those of the four groups, and --output.
const std::vector<Option>& SharedOptions();

/// The option of a setting that all operators share: its name, unless the operator has a parameter of that
/// name.
std::string SourceOptionOf(const catalogue::Entry& entry, const std::string& setting);

/// What an operator takes of the options that all share: one that reads nothing has no use for most.
std::vector<Option> SharedOptionsOf(const catalogue::Entry& entry);

/// All options of an operator.
std::vector<Option> OptionsOf(const catalogue::Entry& entry);

/// A command that is not an operator.
struct Command {
    std::string name;
    std::string arguments; ///< as in a usage line
    std::string summary;
    std::vector<Option> options;
    bool takesWords = true;
    std::vector<std::string> words = {}; ///< that it takes, when these are few
};

/// The commands beside the operators.
const std::vector<Command>& Commands();

/// The names of all operators and commands.
std::vector<std::string> CommandNames();

} // namespace vfil::tool

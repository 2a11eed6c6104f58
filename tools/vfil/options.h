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
    bool file = false;                     ///< takes the path of a file
    bool repeats = false;                  ///< may be given more than once
};

/// The value of an option that takes a table of numbers, in help.
inline constexpr const char* kTablePlaceholder = "TABLE";

/// The option that takes the value of a parameter, which is a table, from a file.
std::string FileOptionOf(const catalogue::Parameter& parameter);

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

/// The pictures that an operator reads, as in a usage line: "BACK FRONT", "FILL [KEY]".
std::string PictureNames(const catalogue::Entry& entry);

/// The names of formats: "rgba32, rgba64".
std::string FormatNames(const std::vector<GUID>& formats);

/// The letters of the channels in a mode: "rgba".
std::string ChannelLetters(unsigned long mode);

/// The values that a parameter takes, in words: "0 .. 1", "zero, full, computed".
std::string RangeText(const catalogue::Parameter& parameter);

/// A value of a parameter as one writes it: "0.5", "computed", "yes", "3,-2".
std::string ValueText(const catalogue::Parameter& parameter, const catalogue::Value& value);

/// The default of a parameter in words.
std::string DefaultText(const catalogue::Parameter& parameter);

} // namespace vfil::tool

/// \file
/// The bash completion script.
#include "catalogue/catalogue.h"
#include "tools/vfil/commands.h"
#include "tools/vfil/text.h"

#include <map>
#include <sstream>

namespace vfil::tool {

namespace {

std::string OptionWords(const std::vector<Option>& options)
{
    std::string words;
    for (const Option& option : options)
        words += "--" + option.name + " " + (option.opposite ? "--no-" + option.name + " " : "");
    return words + "--help";
}

// An option has the same choices wherever it stands, so the word before the cursor decides.
std::map<std::string, std::string> ChoicesByOption()
{
    std::map<std::string, std::string> choices;
    const auto take = [&](const std::vector<Option>& options) {
        for (const Option& option : options) {
            if (!option.choices.empty()) choices["--" + option.name] = Join(option.choices, " ");
        }
    };
    for (const catalogue::Entry& entry : catalogue::Entries())
        take(OptionsOf(entry));
    for (const Command& command : Commands())
        take(command.options);
    return choices;
}

void WriteOptionCases(std::ostream& out)
{
    for (const catalogue::Entry& entry : catalogue::Entries()) {
        out << "        " << entry.name << ") options='" << OptionWords(OptionsOf(entry)) << "' ;;\n";
    }
    for (const Command& command : Commands()) {
        out << "        " << command.name << ") options='" << OptionWords(command.options) << "'";
        const std::vector<std::string> words = command.name == "help" ? CommandNames() : command.words;
        if (!words.empty()) out << " words='" << Join(words, " ") << "'";
        out << " ;;\n";
    }
}

} // namespace

std::string BashCompletion()
{
    std::ostringstream out;
    out << "# bash completion for vfil\n"
           "_vfil()\n"
           "{\n"
           "    local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} options= words=\n"
           "    COMPREPLY=()\n"
           "    if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
           "        COMPREPLY=($(compgen -W '"
        << Join(CommandNames(), " ")
        << " --help --version' -- \"$word\"))\n"
           "        return\n"
           "    fi\n"
           "    case $before in\n";
    for (const auto& [option, choices] : ChoicesByOption()) {
        out << "        " << option << ") COMPREPLY=($(compgen -W '" << choices
            << "' -- \"$word\")); return ;;\n";
    }
    out << "    esac\n"
           "    case ${COMP_WORDS[1]} in\n";
    WriteOptionCases(out);
    out << "    esac\n"
           "    case $word in\n"
           "        -*) COMPREPLY=($(compgen -W \"$options\" -- \"$word\")) ;;\n"
           "        *) if [ -n \"$words\" ]; then COMPREPLY=($(compgen -W \"$words\" -- \"$word\"))\n"
           "           else COMPREPLY=($(compgen -f -- \"$word\")); fi ;;\n"
           "    esac\n"
           "}\n"
           "complete -o filenames -F _vfil vfil\n";
    return out.str();
}

} // namespace vfil::tool

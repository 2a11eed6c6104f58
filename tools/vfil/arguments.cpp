/// \file
/// Parsing by CLI11. Values stay text here, so that messages about them are made in one place.
#include "tools/vfil/arguments.h"
#include "tools/vfil/text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <map>

namespace vfil::tool {

namespace {

struct Parser {
    CLI::App app;
    std::map<std::string, CLI::Option*> options;
    CLI::Option* help = nullptr;
    std::vector<std::string> words;
};

std::string Flags(const Option& option)
{
    return (option.letter.empty() ? "" : "-" + option.letter + ",") + "--" + option.name +
           (option.opposite ? ",!--no-" + option.name : "");
}

void Declare(Parser& parser, const std::vector<Option>& options)
{
    parser.app.set_help_flag();
    parser.app.allow_extras();
    parser.help = parser.app.add_flag("-h,--help");
    parser.app.add_option("words", parser.words);
    for (const Option& option : options) {
        const bool flag = option.value.empty();
        CLI::Option* declared =
            flag ? parser.app.add_flag(Flags(option))
                 : parser.app.add_option(Flags(option), CLI::callback_t([](const auto&) { return true; }));
        declared->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
        if (!flag) declared->type_size(1)->expected(1);
        parser.options[option.name] = declared;
    }
}

// CLI11 leaves the words of options that it does not know among the remaining ones.
void RefuseUnknown(const CLI::App& app, const std::vector<Option>& options)
{
    std::vector<std::string> known = {"--help"};
    for (const Option& option : options) {
        known.push_back("--" + option.name);
        if (option.opposite) known.push_back("--no-" + option.name);
    }
    for (const std::string& word : app.remaining()) {
        if (word == "--") continue;
        const std::string name = word.substr(0, word.find('='));
        throw RequestError("unknown option '" + name + "'" + DidYouMean(name, known));
    }
}

void RefuseRepeated(const std::vector<Option>& options, const Arguments& arguments)
{
    for (const Option& option : options) {
        const std::size_t count = arguments.options.All(option.name).size();
        if (option.repeats || count < 2) continue;
        throw RequestError("--" + option.name + " is given " + std::to_string(count) + " times");
    }
}

} // namespace

Arguments ParseArguments(const std::vector<Option>& options, std::vector<std::string> words)
{
    Parser parser;
    Declare(parser, options);
    try {
        std::reverse(words.begin(), words.end()); // the order in which CLI11 takes a vector
        parser.app.parse(words);
    } catch (const CLI::ArgumentMismatch& error) {
        const std::string text = error.what();
        throw RequestError(text.substr(0, text.find(':')) + " needs a value");
    } catch (const CLI::ParseError& error) {
        throw RequestError(error.what());
    }
    RefuseUnknown(parser.app, options);

    Arguments arguments;
    arguments.words = std::move(parser.words);
    arguments.help = parser.help->count() > 0;
    for (const auto& [name, option] : parser.options) {
        if (option->count() > 0) arguments.options.given[name] = option->results();
    }
    RefuseRepeated(options, arguments);
    return arguments;
}

} // namespace vfil::tool

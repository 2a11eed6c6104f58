/// \file
/// The command vfil: finds the operator or command, and turns failures into one line and an exit status.
#include "tools/vfil/chain.h"
#include "tools/vfil/commands.h"
#include "tools/vfil/interrupt.h"
#include "tools/vfil/jobreport.h"
#include "tools/vfil/status.h"
#include "tools/vfil/text.h"
#include "tools/vfil/wording.h"

#include <algorithm>
#include <iostream>
#include <new>

namespace vfil::tool {

namespace {

void Run(engine::Job job, const Arguments& arguments)
{
    const ReportSettings reports = MakeReportSettings(arguments);
    RunAndReport(engine::CheckJob(std::move(job)), reports);
}

int RunCommand(const Command& command, const std::vector<std::string>& words)
{
    Arguments arguments = ParseArguments(command.options, words);
    if (arguments.help) {
        arguments.words = {command.name};
        RunHelp(arguments);
        return kDone;
    }
    if (!command.takesWords && !arguments.words.empty()) {
        throw RequestError("takes no '" + arguments.words.front() + "'");
    }
    if (command.name == "info") return RunInfo(arguments);
    if (command.name == "convert") {
        CatchInterrupts();
        Run(MakeConvertJob(arguments), arguments);
    }
    if (command.name == "run") {
        CatchInterrupts();
        RunChains(arguments);
    }
    if (command.name == "score") {
        CatchInterrupts();
        RunScore(arguments);
    }
    if (command.name == "fields") {
        CatchInterrupts();
        return RunFields(arguments);
    }
    if (command.name == "key-auto") {
        CatchInterrupts();
        RunKeyAuto(arguments);
    }
    if (command.name == "list") RunList(arguments);
    if (command.name == "help") RunHelp(arguments);
    if (command.name == "man") std::cout << ManPage();
    if (command.name == "completion") {
        if (arguments.words != command.words) throw RequestError("knows one shell: vfil completion bash");
        std::cout << BashCompletion();
    }
    return kDone;
}

int RunOperatorCommand(const catalogue::Entry& entry, const std::vector<std::string>& words)
{
    Arguments arguments = ParseArguments(OptionsOf(entry), words);
    if (arguments.help) {
        arguments.words = {entry.name};
        RunHelp(arguments);
        return kDone;
    }
    CatchInterrupts();
    Run(MakeJob(entry, arguments), arguments);
    return kDone;
}

int Dispatch(const std::string& name, const std::vector<std::string>& words)
{
    if (const catalogue::Entry* entry = catalogue::Find(name)) return RunOperatorCommand(*entry, words);
    const std::vector<Command>& commands = Commands();
    const auto command =
        std::find_if(commands.begin(), commands.end(), [&](const Command& c) { return c.name == name; });
    if (command != commands.end()) return RunCommand(*command, words);
    if (name.starts_with('-'))
        throw RequestError("the first word is an operator, not '" + name + "'; see vfil help");
    throw RequestError("unknown operator '" + name + "'" + DidYouMean(name, CommandNames()) +
                       " ('vfil list' shows them all)");
}

// Runs `work`, with failures as one line behind the name of the program or of the command.
template <class Work>
int Guarded(const std::string& name, Work work)
{
    const auto fail = [&](const std::string& text, int status) {
        std::cerr << name << ": " << text << '\n';
        return status;
    };
    const Wording wording = name == "vfil run" ? Wording::Entries : Wording::Options;
    try {
        const int status = work();
        std::cout.flush();
        return std::cout ? status : fail("standard output cannot be written", kRunFailed);
    } catch (const host::PipeClosed&) {
        return kDone;
    } catch (const RequestError& error) {
        return fail(LineOf(error.What(), wording), kWrongRequest);
    } catch (const engine::RunError& error) {
        return fail(LineOf(error.What(), wording), kRunFailed);
    } catch (const host::FileError& error) {
        return fail(error.what(), kWrongRequest);
    } catch (const engine::Interrupted& error) {
        return fail(error.what(), kInterrupted);
    } catch (const std::bad_alloc&) {
        return fail("memory is short for pictures of this size", kRunFailed);
    } catch (const std::exception& error) {
        return fail(error.what(), kRunFailed);
    }
}

int Main(const std::vector<std::string>& words)
{
    if (words.empty()) {
        return Guarded("vfil", []() -> int {
            throw RequestError("no operator is given; 'vfil list' shows them, 'vfil help' explains");
        });
    }
    const std::string& name = words.front();
    const std::vector<std::string> rest(words.begin() + 1, words.end());
    if (name == "--version")
        return Guarded("vfil", [] { return std::cout << "vfil " VFIL_VERSION "\n", kDone; });
    if (name == "--help" || name == "-h") return Guarded("vfil", [&] { return Dispatch("help", rest); });
    const std::vector<std::string> names = CommandNames();
    const bool known = std::find(names.begin(), names.end(), name) != names.end();
    return Guarded(known ? "vfil " + name : "vfil", [&] { return Dispatch(name, rest); });
}

} // namespace

} // namespace vfil::tool

int main(int argc, char** argv)
{
    return vfil::tool::Main({argv + std::min(argc, 1), argv + argc});
}

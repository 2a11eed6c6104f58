/// \file
/// vfil run.
#include "tools/vfil/chain.h"
#include "engine/chain.h"
#include "tools/vfil/jobreport.h"
#include "tools/vfil/text.h"

namespace vfil::tool {

namespace {

engine::ChainFiles FilesOf(const Arguments& arguments, const std::string& option)
{
    engine::ChainFiles files;
    for (const std::string& text : arguments.options.All(option)) {
        const std::size_t equals = text.find('=');
        std::string wrong = "--" + option;
        if (equals == 0 || equals == std::string::npos || equals + 1 == text.size())
            throw RequestError(wrong.append(" '").append(text).append("' is not NAME=FILE"));
        if (!files.emplace(text.substr(0, equals), text.substr(equals + 1)).second)
            throw RequestError(wrong.append(" gives ").append(text, 0, equals).append(" two files"));
    }
    return files;
}

} // namespace

void RunChains(const Arguments& arguments)
{
    if (arguments.words.empty()) throw RequestError("takes the name of a chain file");
    const engine::ChainFiles inputs = FilesOf(arguments, "input");
    const engine::ChainFiles outputs = FilesOf(arguments, "output");
    ReportSettings reports = MakeReportSettings(arguments);
    reports.wording = Wording::Entries;
    for (const std::string& path : arguments.words)
        RunAndReport(engine::CheckChain(path, inputs, outputs, MakeSettings(arguments)), reports);
}

} // namespace vfil::tool

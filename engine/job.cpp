/// \file
/// What the parts of a job say of themselves.
#include "engine/job.h"
#include "engine/text.h"

#include <filesystem>

namespace vfil::engine {

bool IsRaw(const std::string& path)
{
    return UpperCase(std::filesystem::path(path).extension().string()) == ".RAW";
}

std::string NameOf(const Step& step)
{
    for (const std::string& result : step.results)
        if (!result.empty()) return result;
    return step.entry->name;
}

} // namespace vfil::engine

/// \file
/// vfil info.
#include "tools/vfil/commands.h"
#include "tools/vfil/failure.h"
#include "tools/vfil/report.h"
#include "tools/vfil/request.h"

#include <nlohmann/json.hpp>

#include <iostream>

namespace vfil::tool {

int RunInfo(const Arguments& arguments)
{
    if (arguments.words.empty()) throw RequestError("takes one or more picture files");
    const bool json = arguments.Flag("json");
    const host::ReadOptions raw = RawOptions(arguments);
    nlohmann::ordered_json records = nlohmann::ordered_json::array();
    int status = kDone;
    for (const std::string& path : arguments.words) {
        try {
            const host::PictureInfo info =
                host::InspectPicture(path, IsRaw(path) ? raw : host::ReadOptions());
            if (json)
                records.push_back(Record(path, info));
            else
                std::cout << path << ": " << Describe(info) << '\n';
        } catch (const host::FileError& error) {
            std::cerr << "vfil info: " << error.what() << '\n';
            status = kWrongRequest;
        }
    }
    if (json) PrintRecord(records);
    return status;
}

} // namespace vfil::tool

/// \file
/// vfil info.
#include "engine/jobparts.h"
#include "tools/vfil/commands.h"
#include "tools/vfil/report.h"
#include "tools/vfil/status.h"
#include "tools/vfil/text.h"

#include <nlohmann/json.hpp>

#include <iomanip>
#include <iostream>

namespace vfil::tool {

namespace {

using Json = nlohmann::ordered_json;

// What is known of a file: printed, or added to the records.
void Show(const std::string& path, const Arguments& arguments, Json* records)
{
    if (!host::IsVideo(path)) {
        const host::PictureInfo info = host::InspectPicture(
            path, engine::IsRaw(path) ? engine::RawOptions(arguments.options) : host::ReadOptions());
        if (records)
            records->push_back(Record(path, info));
        else
            std::cout << path << ": " << Describe(info) << '\n';
        return;
    }
    const host::VideoReader reader(path, engine::Overrides(arguments.options));
    if (records) {
        records->push_back(Record(path, reader.Info()));
        return;
    }
    std::cout << path << ": clip\n";
    for (const auto& [term, text] : DescribeClip(reader.Info()))
        std::cout << "  " << std::left << std::setw(14) << term << text << '\n';
}

} // namespace

int RunInfo(const Arguments& arguments)
{
    if (arguments.words.empty()) throw RequestError("takes one or more picture files or clips");
    const bool json = arguments.Flag("json");
    Json records = Json::array();
    int status = kDone;
    for (const std::string& path : arguments.words) {
        try {
            Show(path, arguments, json ? &records : nullptr);
        } catch (const host::FileError& error) {
            std::cerr << "vfil info: " << error.what() << '\n';
            status = kWrongRequest;
        }
    }
    if (json) PrintRecord(records, std::cout);
    return status;
}

} // namespace vfil::tool

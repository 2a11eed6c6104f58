/// \file
/// Descriptions of pictures.
#include "tools/vfil/report.h"
#include "catalogue/names.h"
#include "tools/vfil/options.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <iostream>

namespace vfil::tool {

using catalogue::ParameterType;

std::string SizeText(long width, long height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

const char* AlphaName(host::AlphaState alpha)
{
    switch (alpha) {
    case host::AlphaState::None:
        return "none";
    case host::AlphaState::Straight:
        return "straight";
    case host::AlphaState::Premultiplied:
        return "premultiplied";
    }
    return "";
}

std::string Describe(const host::PictureInfo& info)
{
    const std::string alpha = info.alpha == host::AlphaState::None ? "no" : AlphaName(info.alpha);
    return std::string(info.fileType) + " " + SizeText(info.width, info.height) + ", " +
           catalogue::FormatName(info.format) + ", " + std::to_string(info.depth) + " bits, " +
           std::to_string(info.channels) + (info.channels == 1 ? " channel, " : " channels, ") + alpha +
           " alpha";
}

nlohmann::ordered_json Record(const std::string& path, const host::PictureInfo& info)
{
    return {{"file", path},
            {"type", info.fileType},
            {"width", info.width},
            {"height", info.height},
            {"format", catalogue::FormatName(info.format)},
            {"depth", info.depth},
            {"channels", info.channels},
            {"alpha", AlphaName(info.alpha)}};
}

nlohmann::ordered_json NumberRecord(const catalogue::Parameter& parameter, double number)
{
    if (parameter.type == ParameterType::Number) return number;
    return static_cast<std::int64_t>(number);
}

nlohmann::ordered_json ValueRecord(const catalogue::Parameter& parameter, const catalogue::Value& value)
{
    switch (parameter.type) {
    case ParameterType::Flag:
        return value.x != 0;
    case ParameterType::Point:
        return nlohmann::ordered_json::array(
            {NumberRecord(parameter, value.x), NumberRecord(parameter, value.y)});
    case ParameterType::Choice:
        return ValueText(parameter, value);
    case ParameterType::Number:
    case ParameterType::Integer:
        break;
    }
    return NumberRecord(parameter, value.x);
}

void PrintRecord(const nlohmann::ordered_json& record)
{
    std::cout << record.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

} // namespace vfil::tool

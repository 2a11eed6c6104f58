/// \file
/// Descriptions of pictures.
#include "tools/vfil/report.h"
#include "catalogue/names.h"
#include "tools/vfil/text.h"
#include "tools/vfil/valuetext.h"

#include <nlohmann/json.hpp>

#include <cstdint>
#include <ostream>

namespace vfil::tool {

using catalogue::ParameterType;

namespace {

const char* MatrixName(host::Matrix matrix)
{
    return matrix == host::Matrix::Bt709 ? "709" : "601";
}

const char* RangeName(host::Range range)
{
    return range == host::Range::Full ? "full" : "studio";
}

std::string FieldOrderText(host::FieldOrder order)
{
    const std::string name = FieldOrderName(order);
    return order == host::FieldOrder::Progressive ? name : "interlaced, " + name + " field first";
}

template <class T, class Name>
std::string StatedText(const host::Stated<T>& stated, Name name)
{
    return std::string(name(stated.value)) + " (" + OriginName(stated.origin) + ")";
}

template <class T>
nlohmann::ordered_json StatedRecord(const host::Stated<T>& stated, const char* (*name)(T))
{
    return {{"value", name(stated.value)}, {"from", OriginName(stated.origin)}};
}

std::string RatioText(const host::Ratio& ratio)
{
    if (ratio.numerator == 0) return "not stated";
    const std::string above = std::to_string(ratio.numerator);
    return ratio.denominator == 1 ? above : above + "/" + std::to_string(ratio.denominator);
}

} // namespace

const char* FieldOrderName(host::FieldOrder order)
{
    switch (order) {
    case host::FieldOrder::Progressive:
        return "progressive";
    case host::FieldOrder::TopFirst:
        return "top";
    case host::FieldOrder::BottomFirst:
        return "bottom";
    }
    return "";
}

const char* OriginName(host::Origin origin)
{
    switch (origin) {
    case host::Origin::Stream:
        return "stream";
    case host::Origin::Frame:
        return "frame";
    case host::Origin::Override:
        return "override";
    case host::Origin::Default:
        return "default";
    }
    return "";
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
    const bool whole = parameter.type == ParameterType::Integer || parameter.type == ParameterType::Point ||
                       parameter.type == ParameterType::Size || parameter.list.whole;
    return whole ? nlohmann::ordered_json(static_cast<std::int64_t>(number)) : nlohmann::ordered_json(number);
}

namespace {

// An array of rows.
nlohmann::ordered_json TableRecord(const catalogue::Table& table)
{
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (auto row = table.numbers.begin(); row != table.numbers.end(); row += table.columns)
        rows.push_back(std::vector<double>(row, row + table.columns));
    return rows;
}

} // namespace

nlohmann::ordered_json ValueRecord(const catalogue::Parameter& parameter, const catalogue::Value& value)
{
    switch (parameter.type) {
    case ParameterType::Flag:
        return value.x != 0;
    case ParameterType::Point:
    case ParameterType::Pair:
    case ParameterType::Size:
        return nlohmann::ordered_json::array(
            {NumberRecord(parameter, value.x), NumberRecord(parameter, value.y)});
    case ParameterType::Box:
    case ParameterType::Colour:
        return nlohmann::ordered_json::array({value.x, value.y, value.z, value.w});
    case ParameterType::Choice:
    case ParameterType::Set:
        return ValueText(parameter, value);
    case ParameterType::Table:
    case ParameterType::Stops:
        return TableRecord(value.table);
    case ParameterType::Curve:
    case ParameterType::Numbers:
        return value.table.numbers;
    case ParameterType::Vectors:
        return ValueText(parameter, value);
    case ParameterType::Lut:
        if (value.table.path.empty()) return {};
        return value.table.path;
    case ParameterType::Number:
    case ParameterType::Integer:
        break;
    }
    return NumberRecord(parameter, value.x);
}

std::vector<std::pair<std::string, std::string>> DescribeClip(const host::VideoInfo& info)
{
    std::vector<std::pair<std::string, std::string>> rows = {
        {"container", info.container},
        {"video", info.codec + " " + info.pixelFormat + ", " + std::to_string(info.depth) + " bits"},
        {"size", SizeText(info.width, info.height)},
        {"rate", RatioText(info.rate) + " frames a second"},
        {"pixel aspect", RatioText(info.aspect)},
        {"frames", info.frames ? std::to_string(*info.frames) : "not stated"},
        {"matrix", StatedText(info.matrix, MatrixName)},
        {"range", StatedText(info.range, RangeName)},
        {"fields", StatedText(info.fieldOrder, FieldOrderText)},
        {"alpha", StatedText(info.alpha, AlphaName)},
        {"read as", catalogue::FormatName(info.format)}};
    for (const std::string& stream : info.otherStreams)
        rows.emplace_back("beside it", stream);
    for (const std::string& remark : info.remarks)
        rows.emplace_back("remark", remark);
    return rows;
}

nlohmann::ordered_json Record(const std::string& path, const host::VideoInfo& info)
{
    nlohmann::ordered_json record = {{"file", path},
                                     {"type", info.container},
                                     {"codec", info.codec},
                                     {"pixelFormat", info.pixelFormat},
                                     {"width", info.width},
                                     {"height", info.height},
                                     {"format", catalogue::FormatName(info.format)},
                                     {"depth", info.depth},
                                     {"rate", {info.rate.numerator, info.rate.denominator}},
                                     {"aspect", {info.aspect.numerator, info.aspect.denominator}}};
    if (info.frames) record["frames"] = *info.frames;
    record["matrix"] = StatedRecord(info.matrix, MatrixName);
    record["range"] = StatedRecord(info.range, RangeName);
    record["fieldOrder"] = StatedRecord(info.fieldOrder, FieldOrderName);
    record["alpha"] = StatedRecord(info.alpha, AlphaName);
    record["otherStreams"] = info.otherStreams;
    record["remarks"] = info.remarks;
    return record;
}

void PrintRecord(const nlohmann::ordered_json& record, std::ostream& out)
{
    out << record.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) << '\n';
}

} // namespace vfil::tool

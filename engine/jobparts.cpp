/// \file
/// Sources and sinks, from texts.
#include "engine/jobparts.h"
#include "engine/failure.h"
#include "engine/values.h"

namespace vfil::engine {

namespace {

std::vector<std::pair<std::string, std::string>> CodecOptions(const Values& values)
{
    std::vector<std::pair<std::string, std::string>> options;
    for (const std::string& text : values.All("codec-option")) {
        const std::size_t equals = text.find('=');
        if (equals == 0 || equals == std::string::npos)
            RefuseValue(Named("codec-option"), text, "NAME=VALUE, such as crf=18");
        options.emplace_back(text.substr(0, equals), text.substr(equals + 1));
    }
    return options;
}

} // namespace

host::ReadOptions RawOptions(const Values& values)
{
    host::ReadOptions options;
    options.format = Format(values, "in-format");
    const vfILVector2l size = Size(values, "in-size").value_or(vfILVector2l());
    options.width = size[0];
    options.height = size[1];
    return options;
}

host::VideoOverrides Overrides(const Values& values)
{
    host::VideoOverrides overrides;
    overrides.matrix = OneOf<host::Matrix>(values, Named("matrix"),
                                           {{"601", host::Matrix::Bt601}, {"709", host::Matrix::Bt709}});
    overrides.range = OneOf<host::Range>(values, Named("range"),
                                         {{"studio", host::Range::Studio}, {"full", host::Range::Full}});
    overrides.fieldOrder = OneOf<host::FieldOrder>(values, Named("field-order"),
                                                   {{"top", host::FieldOrder::TopFirst},
                                                    {"bottom", host::FieldOrder::BottomFirst},
                                                    {"progressive", host::FieldOrder::Progressive}});
    overrides.premultiplied = YesOrNo(values, Named("premultiplied"));
    return overrides;
}

Source MakeSource(const std::string& name, const std::string& path, const Values& values)
{
    return {.name = name,
            .path = path,
            .format = Format(values, "format"),
            .rawOptions = RawOptions(values),
            .overrides = Overrides(values),
            .where = ""};
}

Sink MakeSink(const std::string& path, const std::string& result, const Values& values)
{
    return {.path = path,
            .result = result,
            .to = Format(values, "to"),
            .codec = values.Get("codec").value_or(""),
            .container = values.Get("container").value_or(""),
            .codecOptions = CodecOptions(values),
            .where = ""};
}

} // namespace vfil::engine

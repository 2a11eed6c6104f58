/// \file
/// Texts understood.
#include "engine/values.h"
#include "catalogue/names.h"
#include "engine/failure.h"
#include <vfil/host/picturefile.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace vfil::engine {

void RefuseValue(const SettingName& setting, const std::string& text, const Message& right)
{
    throw RequestError(setting + " '" + text + "' is not " + right);
}

std::string ReadText(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path)) throw RequestError(path + ": cannot be read");
    constexpr std::size_t kMost = std::size_t{1} << 24; // a device may never end
    std::string text(kMost + 1, '\0');
    file.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(file.gcount()));
    if (text.size() > kMost) throw RequestError(path + ": is too large for a text");
    return text;
}

std::optional<vfILVector2l> Offset(const Values& values, const std::string& name)
{
    const auto text = values.Get(name);
    if (!text) return std::nullopt;
    const auto numbers = ParseIntegers(*text, ',', 2);
    if (!numbers) RefuseValue(Named(name), *text, "two whole numbers X,Y, such as 12,3");
    return vfILVector2l((*numbers)[0], (*numbers)[1]);
}

std::optional<vfILVector2l> Size(const Values& values, const std::string& name)
{
    const auto text = values.Get(name);
    if (!text) return std::nullopt;
    const auto n = ParseIntegers(*text, 'x', 2);
    if (!n) RefuseValue(Named(name), *text, "a size WxH, such as 720x576");
    if ((*n)[0] < 1 || (*n)[1] < 1)
        RefuseValue(Named(name), *text, "a size: width and height are at least 1");
    if (std::max((*n)[0], (*n)[1]) > host::kMaxFileSide) {
        throw RequestError(Named(name) + " " + *text + " is too large: a side has at most " +
                           std::to_string(host::kMaxFileSide) + " pixels");
    }
    return vfILVector2l((*n)[0], (*n)[1]);
}

namespace {

// The names of formats that a setting takes: few, or all.
const std::vector<std::string>& FormatsOf(const std::string& name)
{
    for (const std::vector<Setting>* settings : {&SourceSettings(), &SinkSettings()}) {
        for (const Setting& setting : *settings)
            if (setting.name == name) return setting.choices;
    }
    throw std::logic_error("no setting " + name);
}

} // namespace

std::optional<GUID> Format(const Values& values, const std::string& name)
{
    const auto text = values.Get(name);
    if (!text) return std::nullopt;
    const std::vector<std::string>& names = FormatsOf(name);
    if (std::find(names.begin(), names.end(), *text) == names.end()) {
        // The long list of raw formats would not be read: help has it.
        const Message right = names.size() > 4 ? "a format (" + HelpOn{"copy"} + " names them)"
                                               : Message("one of " + Join(names, ", "));
        RefuseValue(Named(name), *text, right + DidYouMean(*text, names));
    }
    return catalogue::FindFormat(*text)->id;
}

std::optional<bool> YesOrNo(const Values& values, const SettingName& setting)
{
    return values.Has(setting.name) ? std::optional(values.Flag(setting)) : std::nullopt;
}

} // namespace vfil::engine

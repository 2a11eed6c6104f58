/// \file
/// Values of options.
#include "tools/vfil/values.h"
#include "catalogue/names.h"
#include "tools/vfil/failure.h"
#include "tools/vfil/text.h"
#include <vfil/host/picturefile.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

namespace vfil::tool {

void RefuseValue(const std::string& option, const std::string& text, const std::string& right)
{
    throw RequestError("--" + option + " '" + text + "' is not " + right);
}

std::string ReadText(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path)) throw RequestError(path + ": cannot be read");
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

std::optional<vfILVector2l> Offset(const Arguments& arguments, const std::string& name)
{
    const auto text = arguments.Get(name);
    if (!text) return std::nullopt;
    const auto numbers = ParseIntegers(*text, ',', 2);
    if (!numbers) RefuseValue(name, *text, "two whole numbers X,Y, such as 12,3");
    return vfILVector2l((*numbers)[0], (*numbers)[1]);
}

std::optional<vfILVector2l> Size(const Arguments& arguments, const std::string& name)
{
    const auto text = arguments.Get(name);
    if (!text) return std::nullopt;
    const auto n = ParseIntegers(*text, 'x', 2);
    if (!n) RefuseValue(name, *text, "a size WxH, such as 720x576");
    if ((*n)[0] < 1 || (*n)[1] < 1) RefuseValue(name, *text, "a size: width and height are at least 1");
    if (std::max((*n)[0], (*n)[1]) > host::kMaxFileSide) {
        throw RequestError("--" + name + " " + *text + " is too large: a side has at most " +
                           std::to_string(host::kMaxFileSide) + " pixels");
    }
    return vfILVector2l((*n)[0], (*n)[1]);
}

std::optional<GUID> Format(const Arguments& arguments, const std::string& name)
{
    const auto text = arguments.Get(name);
    if (!text) return std::nullopt;
    const auto option = std::find_if(SharedOptions().begin(), SharedOptions().end(),
                                     [&](const Option& o) { return o.name == name; });
    const std::vector<std::string>& names = option->choices;
    if (std::find(names.begin(), names.end(), *text) == names.end()) {
        // The long list of raw formats would not be read: help has it.
        const std::string right =
            names.size() > 4 ? "a format ('vfil help copy' names them)" : "one of " + Join(names, ", ");
        RefuseValue(name, *text, right + DidYouMean(*text, names));
    }
    return catalogue::FindFormat(*text)->id;
}

} // namespace vfil::tool

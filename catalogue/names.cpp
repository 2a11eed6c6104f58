/// \file
/// Names by rule.
#include <catalogue/names.h>

#include <cctype>
#include <cstddef>

namespace vfil::catalogue {

namespace {

bool IsUpper(char c)
{
    return std::isupper(static_cast<unsigned char>(c)) != 0;
}

bool IsDigit(char c)
{
    return std::isdigit(static_cast<unsigned char>(c)) != 0;
}

char Lower(char c)
{
    return static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
}

// A capital starts a word, unless it stands inside a run of capitals: the A of "ImgAPremultiplied" and the P
// behind it both start one, the G of "RGB" does not. Behind a digit nothing starts: that holds two words
// together.
bool StartsWord(std::string_view text, std::size_t i)
{
    if (i == 0 || !IsUpper(text[i]) || IsDigit(text[i - 1])) return false;
    const bool lowerFollows = i + 1 < text.size() && !IsUpper(text[i + 1]) && !IsDigit(text[i + 1]);
    return !IsUpper(text[i - 1]) || lowerFollows;
}

std::string_view WithoutStart(std::string_view text, std::string_view start)
{
    return text.starts_with(start) ? text.substr(start.size()) : text;
}

std::string_view WithoutEnd(std::string_view text, std::string_view end)
{
    return text.ends_with(end) ? text.substr(0, text.size() - end.size()) : text;
}

} // namespace

std::string KebabCase(std::string_view camelCase)
{
    std::string name;
    for (std::size_t i = 0; i < camelCase.size(); ++i) {
        if (StartsWord(camelCase, i)) name += '-';
        name += Lower(camelCase[i]);
    }
    return name;
}

std::string CommandName(std::string_view className)
{
    return KebabCase(WithoutEnd(WithoutEnd(WithoutStart(className, "vfIL"), "Image"), "Img"));
}

std::string ParameterName(std::string_view setter)
{
    return KebabCase(WithoutEnd(WithoutStart(setter, "Set"), "Flag"));
}

std::string FormatName(const GUID& format)
{
    const vfILFormatInfo* info = vfILFindFormat(format);
    if (!info) return "unknown";
    std::string name;
    for (const char c : std::string_view(info->name))
        name += c == '_' ? '-' : Lower(c);
    return name;
}

const vfILFormatInfo* FindFormat(std::string_view name)
{
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
        if (FormatName(info->id) == name) return info;
    }
    return nullptr;
}

} // namespace vfil::catalogue

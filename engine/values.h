/// \file
/// Texts that are given for settings, understood.
#pragma once

#include "engine/settings.h"
#include "engine/text.h"

#include <vfil/geometry.h>
#include <vfil/guid.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <utility>

namespace vfil::engine {

/// What a colour is, for RefuseValue.
inline constexpr const char* kRightColour =
    "a colour: R,G,B or R,G,B,A of 0 .. 1, such as 1,0.5,0, or #rrggbb";

/// \throws RequestError "SETTING 'text' is not right"
[[noreturn]] void RefuseValue(const SettingName& setting, const std::string& text, const Message& right);

/// The whole of a file.
///
/// \throws RequestError when it cannot be read
std::string ReadText(const std::string& path);

/// "X,Y"
std::optional<vfILVector2l> Offset(const Values& values, const std::string& name);
/// "WxH"
std::optional<vfILVector2l> Size(const Values& values, const std::string& name);
/// The name of a format, among those that the setting of a source or a sink takes.
std::optional<GUID> Format(const Values& values, const std::string& name);
/// Yes or no, when given.
std::optional<bool> YesOrNo(const Values& values, const SettingName& setting);

/// One of a few words, and what it stands for.
template <class T>
std::optional<T> OneOf(const Values& values, const SettingName& setting,
                       std::initializer_list<std::pair<const char*, T>> meanings)
{
    const auto text = values.Get(setting.name);
    if (!text) return std::nullopt;
    std::vector<std::string> words;
    for (const auto& [word, meaning] : meanings) {
        if (*text == word) return meaning;
        words.emplace_back(word);
    }
    RefuseValue(setting, *text, "one of " + Join(words, ", ") + DidYouMean(*text, words));
}

} // namespace vfil::engine

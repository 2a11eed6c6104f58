/// \file
/// Messages without a face.
#include "engine/message.h"

namespace vfil::engine {

namespace {

struct PlainText {
    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(const SettingName& setting) const { return setting.name; }
    std::string operator()(OutputFile) const { return "the output"; }
    std::string operator()(const OperatorUse& use) const
    {
        return use.name + " with " + use.setting + " " + use.value;
    }
    std::string operator()(const HelpOn& help) const { return "the help on " + help.name; }
};

} // namespace

Message& Message::operator+=(const Message& other)
{
    m_parts.insert(m_parts.end(), other.m_parts.begin(), other.m_parts.end());
    return *this;
}

std::string Message::Subject() const
{
    const auto* setting = m_parts.empty() ? nullptr : std::get_if<SettingName>(&m_parts.front());
    return setting ? setting->name : "";
}

std::string Message::Plain() const
{
    std::string text;
    for (const Part& part : m_parts)
        text += std::visit(PlainText(), part);
    return text;
}

} // namespace vfil::engine

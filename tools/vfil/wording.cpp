/// \file
/// Messages as lines.
#include "tools/vfil/wording.h"

namespace vfil::tool {

namespace {

struct Words {
    Wording wording;

    std::string operator()(const std::string& text) const { return text; }
    std::string operator()(const engine::SettingName& setting) const
    {
        const bool entry = wording == Wording::Entries && !setting.ofRun;
        return (entry ? "" : "--") + setting.name;
    }
    std::string operator()(engine::OutputFile) const { return "-o"; }
    std::string operator()(const engine::OperatorUse& use) const
    {
        if (wording == Wording::Entries)
            return "a step of '" + use.name + "' with " + use.setting + " = [" + use.value + "]";
        return "'vfil " + use.name + " IN -o OUT --" + use.setting + " " + use.value + "'";
    }
    std::string operator()(const engine::HelpOn& help) const { return "'vfil help " + help.name + "'"; }
};

} // namespace

std::string LineOf(const engine::Message& message, Wording wording)
{
    std::string line;
    for (const engine::Message::Part& part : message.Parts())
        line += std::visit(Words{wording}, part);
    return line;
}

std::string LineOf(const engine::Fault& fault, Wording wording)
{
    return fault.where + LineOf(fault.text, wording);
}

} // namespace vfil::tool

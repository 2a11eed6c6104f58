/// \file
/// The manual page, from the help's data.
#include "tools/vfil/commands.h"
#include "tools/vfil/help.h"
#include "tools/vfil/text.h"

namespace vfil::tool {

namespace {

// Dashes are minus signs, so that they can be copied; a line must not begin with a control character.
std::string Roff(const std::string& text)
{
    std::string escaped;
    for (const char c : text) {
        if (c == '\\')
            escaped += "\\e";
        else if (c == '-')
            escaped += "\\-";
        else
            escaped += c;
    }
    return escaped.starts_with('.') || escaped.starts_with('\'') ? "\\&" + escaped : escaped;
}

std::string Rows(const HelpSection& section)
{
    std::string text;
    for (const auto& [term, meaning] : section.rows) {
        text += term.empty() ? ".PP\n" : ".TP\n.B " + Roff(term) + "\n";
        text += Roff(meaning) + "\n";
    }
    return text;
}

std::string Section(const HelpSection& section)
{
    return ".SH " + UpperCase(section.title) + "\n" + Rows(section);
}

std::string OperatorSection(const catalogue::Entry& entry)
{
    const HelpPage page = OperatorHelp(entry);
    std::string text =
        ".SS " + entry.name + "\n.B " + Roff(page.usage) + "\n.PP\n" + Roff(page.summary) + "\n";
    for (const HelpSection& section : page.sections)
        text += ".PP\n.I " + section.title + "\n" + Rows(section);
    return text;
}

} // namespace

std::string ManPage()
{
    const HelpPage general = GeneralHelp();
    std::string text = ".TH VFIL 1 \"\" \"vfil " VFIL_VERSION "\" \"User Commands\"\n"
                       ".SH NAME\nvfil \\- image processing for video and compositing\n"
                       ".SH SYNOPSIS\n.B " +
                       Roff(general.usage) + "\n";
    for (const HelpSection& section : general.sections)
        text += Section(section);
    text += ".SH THE OPERATORS IN DETAIL\n";
    for (const catalogue::Entry& entry : catalogue::Entries())
        text += OperatorSection(entry);
    return text;
}

} // namespace vfil::tool

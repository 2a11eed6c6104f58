/// \file
/// The help texts, as data that the terminal and the man page render each in its way.
#pragma once

#include "catalogue/catalogue.h"
#include "tools/vfil/options.h"

#include <string>
#include <utility>
#include <vector>

namespace vfil::tool {

/// A titled list of terms and what they mean. A term may be empty: then the text stands alone.
struct HelpSection {
    std::string title;
    std::vector<std::pair<std::string, std::string>> rows;
};

/// The help of one command.
struct HelpPage {
    std::string usage;
    std::string summary;
    std::vector<HelpSection> sections;
};

/// The command as a whole.
HelpPage GeneralHelp();

/// An operator with everything that holds for it alone.
HelpPage OperatorHelp(const catalogue::Entry& entry);

/// A command that is no operator.
HelpPage CommandHelp(const Command& command);

/// The options that all operators share.
HelpSection SharedOptionHelp();
/// Those of them that an operator takes.
HelpSection SharedOptionHelp(const catalogue::Entry& entry);

/// Coordinates, exit statuses: what help ends with.
std::vector<HelpSection> ClosingHelp();

/// "vfil over BACK FRONT -o FILE [options]"
std::string UsageLine(const catalogue::Entry& entry);

/// The title of a family: "Layer operators".
std::string FamilyTitle(const std::string& family);

/// Text for a terminal of 100 columns.
std::string RenderText(const HelpPage& page);

} // namespace vfil::tool

/// \file
/// What can be set of the parts of a job, by name, and the texts that are given for it. Chain files hold
/// these names, and faces offer them.
#pragma once

#include "catalogue/catalogue.h"
#include "engine/message.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vfil::engine {

/// Something that can be set.
struct Setting {
    std::string name;
    std::string form;                      ///< of the text: "X,Y", "WxH"; "" for yes or no
    std::vector<std::string> choices = {}; ///< the words that it takes, when these are few
    bool repeats = false;                  ///< may be given more than once
};

/// The forms of a size and of a table of numbers, which chains write in other ways too, and of a colour.
inline constexpr const char* kSizeForm = "WxH";
inline constexpr const char* kTableForm = "TABLE";
inline constexpr const char* kColourForm = "COLOUR";
inline constexpr const char* kCanvasForm = "WxH|same|fit";

inline constexpr const char* kStopsForm = "WEIGHT:COLOUR...";

/// The setting of an operator that moves its picture, or makes one of nothing, for the size of what it makes.
inline constexpr const char* kCanvasSetting = "size";
/// The setting of an operator that splits frames into their fields: a clip keeps its rate.
inline constexpr const char* kSameRateSetting = "same-rate";
/// Of one that weaves them: which field is the earlier one. Elsewhere it is a source's.
inline constexpr const char* kFieldOrderSetting = "field-order";
/// The setting of an operator that makes a picture of nothing, for the format.
inline constexpr const char* kFormatSetting = "format";
/// Settings of an operator that makes video legal: the file that tells of it, and by which chroma.
inline constexpr const char* kReportSetting = "report";
inline constexpr const char* kReportChromaSetting = "report-chroma";

/// How a picture or clip is read.
const std::vector<Setting>& SourceSettings();
/// How an operator works, beside its parameters.
const std::vector<Setting>& StepSettings();
/// How a result is written.
const std::vector<Setting>& SinkSettings();
/// The parameters of an operator; a table or curve has a second setting, of a file that holds it, and the
/// colour of a key one of the place where the first picture has it. What moves its picture has one for the
/// size of the result; what makes one of nothing, for size and format; what makes video legal, for reports.
std::vector<Setting> ParameterSettings(const catalogue::Entry& entry);
/// Everything that a step of an operator may say.
std::vector<Setting> SettingsOfStep(const catalogue::Entry& entry);

/// The setting that takes the value of a parameter, which is a table or a curve, from a file.
std::string FileSettingOf(const catalogue::Parameter& parameter);
/// The setting that takes the value of a parameter, which is the colour of a key, from a picture.
std::string PlaceSettingOf(const catalogue::Parameter& parameter);

/// The texts that are given for settings.
struct Values {
    std::map<std::string, std::vector<std::string>> given;

    bool Has(const std::string& name) const { return given.contains(name); }
    /// The text of a setting that is given once.
    std::optional<std::string> Get(const std::string& name) const;
    /// All texts of a setting that repeats.
    std::vector<std::string> All(const std::string& name) const;
    /// Yes or no; no when nothing is given.
    ///
    /// \throws RequestError for another text
    bool Flag(const SettingName& setting) const;
};

} // namespace vfil::engine

/// \file
/// How pictures are described to the user.
#pragma once

#include "catalogue/catalogue.h"
#include <vfil/host/video.h>

#include <nlohmann/json_fwd.hpp>

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

namespace vfil::tool {

/// "progressive", "top" or "bottom"
const char* FieldOrderName(host::FieldOrder order);
/// "stream", "frame", "override" or "default"
const char* OriginName(host::Origin origin);
/// "none", "straight" or "premultiplied"
const char* AlphaName(host::AlphaState alpha);

/// "PNG 451x300, rgba32, 8 bits, 3 channels, no alpha"
std::string Describe(const host::PictureInfo& info);

/// The same as a record, with the file's name.
nlohmann::ordered_json Record(const std::string& path, const host::PictureInfo& info);

/// A component of a parameter's value: a whole number unless the parameter is a Number.
nlohmann::ordered_json NumberRecord(const catalogue::Parameter& parameter, double number);

/// A parameter's value. Numbers and flags stay such, so that a program need not parse them; a choice is its
/// name.
nlohmann::ordered_json ValueRecord(const catalogue::Parameter& parameter, const catalogue::Value& value);

/// What a clip says of itself: terms and what holds for each, with who says it.
std::vector<std::pair<std::string, std::string>> DescribeClip(const host::VideoInfo& info);

/// The same as a record.
nlohmann::ordered_json Record(const std::string& path, const host::VideoInfo& info);

/// Writes a record. Bytes of file names that are no UTF-8 are replaced.
void PrintRecord(const nlohmann::ordered_json& record, std::ostream& out);

} // namespace vfil::tool

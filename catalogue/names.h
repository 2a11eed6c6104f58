/// \file
/// The names by which a user knows processors, parameters and formats. They follow from the library's by
/// rule.
#pragma once

#include <vfil/pxformat.h>

#include <string>
#include <string_view>

namespace vfil::catalogue {

/// Words in lower case, joined by "-": "AddNoClip" gives "add-no-clip", "ImgAPremultiplied"
/// "img-a-premultiplied", "RGBA2YCCA" "rgba2ycca".
std::string KebabCase(std::string_view camelCase);

/// The command of a class: the name without "vfIL" and the ending "Img" or "Image".
std::string CommandName(std::string_view className);

/// The option of a setter: the name without "Set", and without the ending "Flag".
std::string ParameterName(std::string_view setter);

/// The name of a format: its identifier's in lower case with "-" for "_". "unknown" for an identifier that is
/// no format.
std::string FormatName(const GUID& format);

/// The format of a name, or null.
const vfILFormatInfo* FindFormat(std::string_view name);

} // namespace vfil::catalogue

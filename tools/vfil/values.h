/// \file
/// Values of options that several parts of a request have. Private to the making of requests.
#pragma once

#include "tools/vfil/arguments.h"

#include <vfil/geometry.h>
#include <vfil/guid.h>

#include <optional>
#include <string>

namespace vfil::tool {

/// \throws RequestError "--option 'text' is not right"
[[noreturn]] void RefuseValue(const std::string& option, const std::string& text, const std::string& right);

/// The whole of a file.
///
/// \throws RequestError when it cannot be read
std::string ReadText(const std::string& path);

/// "X,Y"
std::optional<vfILVector2l> Offset(const Arguments& arguments, const std::string& name);
/// "WxH"
std::optional<vfILVector2l> Size(const Arguments& arguments, const std::string& name);
/// The name of a format, among those that the shared option \p name takes.
std::optional<GUID> Format(const Arguments& arguments, const std::string& name);

} // namespace vfil::tool

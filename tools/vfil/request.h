/// \file
/// What the user asked of an operator, understood but not yet held against the pictures.
#pragma once

#include "catalogue/catalogue.h"
#include "host/picturefile.h"
#include "tools/vfil/arguments.h"

#include <vfil/color.h>
#include <vfil/geometry.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vfil::tool {

/// A mask picture.
struct MaskRequest {
    std::string path;
    std::optional<PXImageChannel> channel; ///< absent: by the picture's kind
    vfILVector2l offset;
};

/// A run of an operator.
struct Request {
    const catalogue::Entry* entry = nullptr;
    std::vector<std::string> inputs;
    std::string output;
    std::vector<std::pair<const catalogue::Parameter*, catalogue::Value>> parameters; ///< those given
    std::optional<vfILBbox2l> roi;
    std::optional<vfILVector2l> outputOffset;
    std::optional<vfILVector2l> outputSize;
    std::optional<MaskRequest> mask;
    unsigned long mode = 0;
    vfILColor defaultColor{0, 0, 0, 0};
    std::optional<GUID> format;   ///< to which the pictures are converted
    host::ReadOptions rawOptions; ///< format and size of .raw pictures, when given
    bool plain = false;
    bool json = false;
    bool quiet = false;
};

/// \throws RequestError for a wrong count of pictures and for a value that does not make sense.
Request MakeRequest(const catalogue::Entry& entry, const Arguments& arguments);

/// Format and size of .raw pictures from --in-format and --in-size.
host::ReadOptions RawOptions(const Arguments& arguments);

/// Whether the name is that of a raw picture.
bool IsRaw(const std::string& path);

} // namespace vfil::tool

/// \file
/// A request held against the pictures: what is run on which regions.
#pragma once

#include "tools/vfil/request.h"

#include <optional>

namespace vfil::tool {

/// The mask of a run.
struct MaskPlan {
    GUID format{}; ///< in which it is read
    PXImageChannel channel = PXImageChannel_MONO;
    vfILBbox2l box; ///< in the first picture
};

/// A run whose pictures, regions and output have been checked, as far as this goes without reading pixels.
struct Plan {
    Request request;
    std::vector<host::PictureInfo> inputs;
    GUID format{};            ///< of inputs and output
    std::size_t dominant = 0; ///< index of the input that shows where two do not overlap
    vfILBbox2l dominantBox;   ///< on the plane of the region
    vfILBbox2l roi;
    vfILVector2l outputOffset;
    vfILVector2l outputSize;
    std::optional<MaskPlan> mask;
};

/// \throws RequestError, host::FileError
Plan MakePlan(Request request);

/// How input \p path is read.
host::ReadOptions ReadingOf(const Request& request, const std::string& path);

} // namespace vfil::tool

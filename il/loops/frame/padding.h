/// \file
/// Reading a part of a picture that may reach past its edges.
#pragma once

#include "il/loops/frame/colourpixel.h"
#include "il/loops/frame/imageview.h"

#include <vfil/spatial.h>

namespace vfil {

/// What lies outside of a picture. An unknown mode counts as VFIL_EDGE_COLOR.
struct EdgeRule {
    vfILEdgeMode mode;
    ColourPixel colour; ///< in the picture's format
};

/// The rule of a filter for the input of its run.
EdgeRule EdgeRuleOf(const vfILMonadicSpatialProc& filter, const vfILWindowRun& run);

/// What a filter that reads its input itself is to read, in the format of its input.
ImageView InputOf(const vfILWindowRun& run);

/// Which of \p size samples of an axis the place \p at shows; -1 for the edge colour.
std::int64_t PlaceAt(vfILEdgeMode mode, std::int64_t at, std::int64_t size);

/// Copies \p window, in the picture's coordinates, to rows without gaps. The picture has pixels and is not
/// where the rows are.
///
/// \param useVectors  As in MoveRow.
void ReadWindow(const ImageView& picture, const vfILBbox2l& window, const EdgeRule& edge, bool useVectors,
                unsigned char* to);

} // namespace vfil

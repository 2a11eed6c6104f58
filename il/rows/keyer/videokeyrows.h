/// \file
/// Row kernels of the 4:2:2 keyers. As in comprows.h a run finds its kernel once.
#pragma once

#include "il/rows/keyer/videokeyparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(VideoKeyRows)

const VideoKeyRows& VideoKeyRowsAt(Level level);

/// Which of a keyer's kernels a run takes.
struct VideoKeyCase {
    KeyResult result;
    bool chromaFirst;
    bool useVectors; ///< else the plain form
    bool streaming;  ///< see kStreamingBytes
};

// Parameters that the lanes of the vector forms do not hold get the plain form: none that Verify takes, but
// for a tolerance near 359 degrees, and windows and coefficients far beyond what any picture needs.

VideoKeyRow<ChromaKeyParams> FindVideoKeyRow(const VideoKeyCase& which, const ChromaKeyParams& params);
VideoKeyRow<ChannelKeyParams> FindVideoKeyRow(const VideoKeyCase& which, const ChannelKeyParams& params);
VideoKeyRow<FoldedKeyParams> FindVideoKeyRow(const VideoKeyCase& which, const FoldedKeyParams& params);
VideoKeyRow<VideoLumaKeyParams> FindVideoKeyRow(const VideoKeyCase& which, const VideoLumaKeyParams& params);

/// True when the vector forms take the parameters.
bool FitsLanes(const ChromaKeyParams& params);
bool FitsLanes(const ChannelKeyParams& params);
bool FitsLanes(const FoldedKeyParams& params);
bool FitsLanes(const VideoLumaKeyParams& params);

/// Which pixel of a macropixel is keyed, where a crop divides it.
enum class KeptHalf { Second, First };

/// One macropixel of which only one pixel is keyed: the other's luma is that of B, and chroma is mixed half
/// and half with B's; in a matte the other is black.
///
/// With spill correction two samples are not what one expects, and meant so. Of a second half, the corrected
/// luma takes the place of Cb, and its own place has the spill's luma alone. A first half takes the spill's
/// luma from the luma of the second.
void KeyHalf(const VideoKeyCase& which, KeptHalf half, const std::uint8_t* a, const std::uint8_t* b,
             std::uint8_t* out, const ChromaKeyParams& params);

} // namespace vfil

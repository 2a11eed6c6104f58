/// \file
/// What deinterlacing is measured on: frames of noise upon a slope, with their neighbours in time, and two
/// pictures to write.
#pragma once

#include "filters.h"

namespace bench {

inline constexpr char kDuplicate[] = "deinterlace duplicate";
inline constexpr char kInterpolate[] = "deinterlace interpolate";
inline constexpr char kAdaptive[] = "deinterlace adaptive";
inline constexpr char kDeinterlace[] = "deinterlace";
/// Of the results of these, by their layout.
inline constexpr char kLimitSplit[] = "limit: read one, write two, ";

inline constexpr Layout kVideo{"4:2:2", PXFormat_YCC422_601};
inline constexpr std::array kFieldLayouts = {kVideo, kRgba8, kRgba16, kMono8};

struct FieldFrame {
    PicturePtr in, before, behind, outA, outB;
};

/// Hands out frames in turn, so many that none is still in a cache when it comes again.
const FieldFrame& NextFieldFrame(const Layout& layout);

} // namespace bench

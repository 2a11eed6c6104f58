/// \file
/// How much fields comb that are woven, block by block.
#pragma once

#include "fieldscan/narrowluma.h"

#include <vector>

namespace vfil::fieldscan {

/// The side of a block, in samples across and in rows.
inline constexpr long kBlockColumns = 8;
inline constexpr long kBlockRows = 16;

/// A figure of each block, in 8-bit levels. Blocks at the right and the bottom that are not whole are left
/// out.
using BlockFigures = std::vector<float>;

/// How far rows lie from the mean of their neighbours, when the top field of one frame is woven with the
/// bottom field of another. The frames have the same size.
BlockFigures CombsOf(const NarrowLuma& top, const NarrowLuma& bottom);

/// How far the samples of two frames lie from each other.
BlockFigures ChangesOf(const NarrowLuma& one, const NarrowLuma& other);

} // namespace vfil::fieldscan

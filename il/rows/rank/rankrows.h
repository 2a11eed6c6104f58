/// \file
/// Row kernels of rank filters and morphology. As in comprows.h a run finds its kernels once.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/rank/rankparams.h"

namespace vfil {

VFIL_DECLARE_FILL(RankRows)

const RankRows& RankRowsAt(Level level);

template <class Sample>
const RankCases<Sample>& FindRankCases(bool useVectors);
PickRow FindPickRow(bool useVectors);

} // namespace vfil

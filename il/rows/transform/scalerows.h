/// \file
/// Row kernels of sampling along the axes: bit for bit what samplerows.h gives at the same places.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/transform/scaleparams.h"

#include <type_traits>

namespace vfil {

VFIL_DECLARE_FILL(ScaleRows)

const ScaleRows& ScaleRowsAt(Level level);

/// The kernels of a run.
template <class Sample>
const ScaleRowsOf<Sample>& FindScaleRows(bool useVectors)
{
    const ScaleRows& rows = ScaleRowsAt(useVectors ? BestLevel() : Level::Plain);
    if constexpr (std::is_same_v<Sample, std::uint8_t>) {
        return rows.bytes;
    } else {
        return rows.words;
    }
}

} // namespace vfil

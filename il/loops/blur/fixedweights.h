/// \file
/// When weights of 15 fraction bits may stand in for those of a kernel.
#pragma once

#include "il/rows/pixarith.h"

#include <cstdint>

namespace vfil {

/// 15 fraction bits, rounded half away from zero. Weights just below 1 would round to it.
inline std::int16_t FixedWeight(float weight)
{
    return RoundSaturated<std::int16_t>(double{weight} * 32768);
}

/// One pass by fixed weights gives no sample that is more than one off the sums in float: each weight fits,
/// and together they miss a sum by less than one. Not so the many small weights of a large kernel, whose
/// roundings add up.
bool AreFixedWeightsExact(const float* weights, long count);

/// The same of a pass by a row of weights and one by a column.
bool AreFixedPassesExact(const float* row, long width, const float* column, long height);

} // namespace vfil

/// \file
/// Row kernels that composite RGBA pixels by a colour difference, and correct spill. As in comprows.h a run
/// finds its kernel once.
#pragma once

#include "il/rows/keyer/rgbcompositeparams.h"
#include "il/rows/levels.h"

namespace vfil {

VFIL_DECLARE_FILL(RgbCompositeRows)

const RgbCompositeRows& RgbCompositeRowsAt(Level level);

/// Sets the softness and what follows from it.
void SetSoftness(RgbSpillParams& spill, std::int32_t softness);

/// \param useVectors  Else the plain form, as for coefficients whose sums outgrow 32 bits.
/// \param streaming  See kStreamingBytes.
RgbCompositeRow FindRgbCompositeRow(KeyResult result, bool useVectors, bool streaming,
                                    const RgbCompositeParams& params);

} // namespace vfil

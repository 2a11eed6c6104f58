/// \file
/// Sampling of a picture at places of any mapping. As in comprows.h a run finds its kernels once.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/transform/sampleparams.h"

namespace vfil {

VFIL_DECLARE_FILL(SampleRows)

const SampleRows& SampleRowsAt(Level level);

SampleRow FindSampleRow(bool useVectors, SampleForm form, SamplePixel pixel);

/// Mixes two rows of samples by an amount of 0 .. 1, rounded to nearest: \p from is written.
void MixSamples(std::uint8_t* from, const std::uint8_t* to, double amount, std::size_t samples);
void MixSamples(std::uint16_t* from, const std::uint16_t* to, double amount, std::size_t samples);

} // namespace vfil

/// \file
/// Sampling of a picture at places of any mapping. As in comprows.h a run finds its kernels once.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/transform/sampleparams.h"

namespace vfil {

VFIL_DECLARE_FILL(SampleRows)

const SampleRows& SampleRowsAt(Level level);

/// Steps first .. behind - 1 of a line.
struct SampleSpan {
    std::int64_t first, behind;
};

/// Sampling of one form and kind of pixels: a kernel that knows of edges, and one that does not.
class SampleRow {
public:
    SampleRow(const SampleRows& rows, SampleForm form, SamplePixel pixel);
    /// Writes \p count pixels, sampled at (u[i], v[i]). Any coordinates will do: without a source, as NaN has
    /// none, a pixel is the default one.
    void operator()(const SampleSource& source, const double* u, const double* v, std::size_t count,
                    unsigned char* out) const;
    /// The same at places on a line, all of them within 2 to the power of 22 pixels, as are eight steps. As
    /// doubles they are whole multiples of the unit.
    void operator()(const SampleSource& source, const SampleSteps& steps, std::size_t count,
                    unsigned char* out) const;

private:
    void FillDefault(const SampleSource& source, const SampleSpan& span, unsigned char* out) const;
    void SampleEdge(const SampleSource& source, const SampleSteps& steps, const SampleSpan& span,
                    unsigned char* out) const;

    SampleForm m_form;
    std::size_t m_pixelBytes;
    SampleKernel m_sample, m_inside;
    StepKernel m_steps;
    CountInside m_countInside;
};

SampleRow FindSampleRow(bool useVectors, SampleForm form, SamplePixel pixel);

/// Mixes two rows of samples by an amount of 0 .. 1, rounded to nearest: \p from is written.
void MixSamples(std::uint8_t* from, const std::uint8_t* to, double amount, std::size_t samples);
void MixSamples(std::uint16_t* from, const std::uint16_t* to, double amount, std::size_t samples);

} // namespace vfil

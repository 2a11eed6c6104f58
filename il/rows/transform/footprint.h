/// \file
/// Footprints: what an output pixel of a mapping covers of its input, as a convex polygon, and the mean of
/// the input over it by exact areas. Included by the transforms' line functions.
///
/// Pixel i of the input reaches from i - 0.5 to i + 0.5 on each axis.
#pragma once

#include "il/rows/pixarith.h"

#include <cstddef>
#include <cstdint>

namespace vfil {

/// The planes that footprints are cut by, a x + b y + c w + d >= 0 each: the first set, and behind it the one
/// for mappings that turn the sign of w, which is tried when the first leaves nothing.
struct FootprintPlanes {
    static constexpr long kMost = 8; ///< of each set
    const double (*planes)[4] = nullptr;
    long first = 0;
    long second = 0;
};

/// The polygon that an output pixel covers in the input.
struct Footprint {
    static constexpr long kCapacity = 4 + FootprintPlanes::kMost;

    long count = 0;    ///< of vertices; fewer than 3 for a pixel that sees nothing
    double inside = 0; ///< the share of the footprint that cutting has left
    double x[kCapacity];
    double y[kCapacity];
};

/// Whether a footprint has to be cut by any of the first set's planes. Asked once for the footprint of a
/// whole line: when that one needs no cut, none of its pixels does.
bool NeedsCut(const double x[4], const double y[4], const double w[4], const FootprintPlanes& planes);

/// Makes the footprint whose mapped corners are (x, y, w), in order around it; w is 1 for mappings without a
/// perspective.
///
/// \param planes  Null when the footprint needs no cut.
void MakeFootprint(const double x[4], const double y[4], const double w[4], const FootprintPlanes* planes,
                   Footprint& footprint);

/// The picture that is summed. Samples of bottom-up pictures have a negative step.
template <class SampleType, int channels>
struct FootprintSource {
    using Sample = SampleType;
    static constexpr int kChannels = channels; ///< 1 or 4

    const std::uint8_t* base;       ///< pixel (0, 0)
    std::ptrdiff_t rowBytes;        ///< from a row to the next
    std::int32_t left, top;         ///< the first column and row that count, 0 or more
    std::int32_t right, bottom;     ///< the last ones
    Sample defaultPixel[kChannels]; ///< where the input ends
};

/// Footprints that one call sums at most.
constexpr std::size_t kMostFootprints = 64;

/// Sums of footprints, of kMostFootprints at most.
///
/// \param sums   kChannels samples a footprint: the mean over it. Not written for an area of 0.5 or less.
/// \param areas  The area of each footprint, with what cutting took away, in input pixels; -1 for one that
///               sees nothing, whose sum is the default pixel.
template <class Source>
void SumFootprints(const Footprint* footprints, std::size_t count, const Source& source, bool useVectors,
                   typename Source::Sample* sums, double* areas);

/// Output pixels from their footprints: the mean over a footprint of an input pixel or more, a sample at the
/// pixel's centre for half a pixel or less, and between them a mix of both.
///
/// \param samplePoint  samplePoint(i, Sample* pixel) writes the sample at the centre of footprint i; called
///                     where the output depends on it.
/// \param out          count * kChannels samples; count is any number.
template <class Source, class SamplePoint>
void FootprintPixels(const Footprint* footprints, std::size_t count, const Source& source, bool useVectors,
                     SamplePoint&& samplePoint, typename Source::Sample* out)
{
    using Sample = typename Source::Sample;
    using Rules = Arith<Sample>;
    constexpr int kChannels = Source::kChannels;
    double areas[kMostFootprints];
    for (std::size_t start = 0; start < count; start += kMostFootprints) {
        const std::size_t block = count - start < kMostFootprints ? count - start : kMostFootprints;
        Sample* const sums = out + start * kChannels;
        SumFootprints(footprints + start, block, source, useVectors, sums, areas);
        for (std::size_t i = 0; i < block; ++i) {
            const double area = areas[i];
            // With the full amount the mix is the sum.
            const double amount = (area - 0.5) * (Rules::kFull / 0.5) + 0.5;
            if (area < 0 || amount >= Rules::kFull) continue;
            Sample sample[kChannels];
            samplePoint(start + i, sample);
            Sample* const pixel = sums + i * kChannels;
            for (int c = 0; c < kChannels; ++c)
                pixel[c] =
                    area <= 0.5 ? sample[c] : Rules::Blend(pixel[c], sample[c], static_cast<Sample>(amount));
        }
    }
}

} // namespace vfil

/// \file
/// The colours of a ramp: along a run between two of them, and along all stops.
#pragma once

#include "il/rows/treat/ramprows.h"

#include <vfil/color.h>

#include <cstddef>

namespace vfil {

/// The components of a colour, limited to 0 .. 1.
struct RampColour {
    RampColour() = default;
    explicit RampColour(const vfILColor& color);

    double channels[4] = {0, 0, 0, 1};
};

struct RampStop {
    long weight; ///< 0 .. 99, hundredths of the run
    RampColour colour;
};

/// The run of \p pixels from one colour to another.
RampSpan SpanOf(const RampColour& first, const RampColour& last, std::size_t pixels, std::size_t channels);

/// What lies \p place of \p places steps from one colour to another.
RampColour Between(const RampColour& first, const RampColour& last, long place, long places);

/// As FindRampRow takes them.
struct RampStores {
    bool useVectors;
    bool streaming = false;
};

/// Four samples a pixel.
template <class Sample>
void Fill2ColorsRGBA(const RampColour& first, const RampColour& last, std::size_t pixels, RampStores stores,
                     Sample* out);
/// The first channel.
template <class Sample>
void Fill2ColorsMONO(const RampColour& first, const RampColour& last, std::size_t pixels, RampStores stores,
                     Sample* out);

/// A run of \p pixels through stops of ascending weights, of which there is one at least. Before the first
/// and behind the last the colour is theirs.
template <class Sample>
void FillMultiColorsRGBA(const RampStop* stops, std::size_t count, std::size_t pixels, RampStores stores,
                         Sample* out);
template <class Sample>
void FillMultiColorsMONO(const RampStop* stops, std::size_t count, std::size_t pixels, RampStores stores,
                         Sample* out);

} // namespace vfil

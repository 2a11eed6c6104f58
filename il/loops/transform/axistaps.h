/// \file
/// Where the outputs of one axis come from, and with which weights: the tables of the two-pass resampler.
#pragma once

#include "il/loops/frame/runarray.h"
#include "il/rows/transform/resampleparams.h"

#include <cstdint>

namespace vfil {

/// The mapping of an axis, from output to input.
struct AxisMap {
    double scale = 1;
    double offset = 0;
};

/// Pixels first .. last of a line, none where last < first.
struct Span {
    std::int64_t first = 0;
    std::int64_t last = -1;

    bool IsEmpty() const { return last < first; }
    std::size_t Count() const { return IsEmpty() ? 0 : static_cast<std::size_t>(last - first + 1); }
};

/// The outputs of an axis that see its source, and what of the source they need.
struct AxisTaps {
    /// The weights of a whole output are 16384, in whole numbers. Those of a shrinking axis are differences
    /// of one rounded running sum: they add up to a whole, and no output strays, however small a share is.
    ///
    /// \param source  The pixels that count; whatever lies outside has no weight.
    /// \param wanted  The outputs to look at.
    /// \return False when memory is short.
    bool CreateRowWeightLookup(const AxisMap& map, const Span& source, const Span& wanted);

    bool IsList() const { return pairs == 0; }
    LineTaps Line() const { return {starts.Data(), weights.Data(), sums.Data(), pitch, pairs}; }

    Span outputs; ///< those that see the source
    Span needed;  ///< the pixels that they need
    /// The first pixel of each output, counted from needed.first. Pixels without weight follow, up to 2 pairs
    /// behind the last that is needed.
    RunArray<std::int32_t> starts;
    RunArray<std::int16_t> weights; ///< as in LineTaps
    RunArray<std::int32_t> sums;
    std::size_t pitch = 0;
    std::size_t pairs = 0; ///< 0 for a plain list: an output is the pixel `starts` has

private:
    void FindOutputs(const AxisMap& map, const Span& source, const Span& wanted);
    bool Allocate();
    void Weigh(const AxisMap& map, const Span& source, std::int64_t output);
    std::int16_t& Weight(std::size_t output, std::int64_t tap);
};

} // namespace vfil

/// \file
/// Which parameters the lanes of the vector forms of the 4:2:2 keyers hold.
#include "il/rows/keyer/videokeyrows.h"

#include <algorithm>
#include <cstdlib>

namespace vfil {

namespace {

bool IsBetween(std::int64_t low, std::int64_t value, std::int64_t high)
{
    return low <= value && value <= high;
}

bool FitsLanes(const KeySector& sector)
{
    return std::abs(std::int64_t{sector.slope}) <= INT16_MAX &&
           std::abs(std::int64_t{sector.lift}) <= INT16_MAX && IsBetween(256, sector.gain, UINT16_MAX) &&
           IsBetween(0, sector.mapLow, 255) && sector.mapGain >= 256;
}

/// The sum of a product and an offset that is cut to what counts stays in 16 signed bits.
bool FitsLanes(const SpillLuma& luma)
{
    return IsBetween(0, luma.gain, 32000);
}

/// The mattes between the ends are of `least` .. `most`: a line is there when its ends are.
bool FitsLanes(const MatteWindow& window, std::int64_t least, std::int64_t most)
{
    if (!(0 <= window.low && window.low < window.high && window.high <= 255)) return false;
    const auto matte = [&](std::int64_t value) { return (value * window.gain - window.offset) >> 16; };
    return window.high - window.low == 1 ||
           (window.gain >= 0 && matte(window.low + 1) >= least && matte(window.high - 1) <= most);
}

/// The sums of a form of two samples and a constant stay in 32 bits.
bool FitsLanes(const YccForm& form, std::int64_t limit)
{
    const auto magnitude = [](std::int32_t v) { return std::abs(std::int64_t{v}); };
    return 255 * (magnitude(form.y) + magnitude(form.cb) + magnitude(form.cr)) + magnitude(form.constant) <
           limit;
}

} // namespace

bool FitsLanes(const ChromaKeyParams& params)
{
    return IsBetween(-256, params.cosine, 256) && IsBetween(-256, params.sine, 256) &&
           FitsLanes(params.key) && FitsLanes(params.spill) && FitsLanes(params.luma);
}

bool FitsLanes(const ChannelKeyParams& params)
{
    return FitsLanes(params.window, 0, 255) && FitsLanes(params.luma);
}

bool FitsLanes(const FoldedKeyParams& params)
{
    const MatteWindow& window = params.window;
    // Of a line's products and mattes the ends are the largest.
    constexpr std::int64_t most = 2'000'000'000;
    const auto endFits = [&](std::int64_t key) {
        const std::int64_t product = (key >> 16) * window.gain;
        return std::abs(product) < most && std::abs(product - window.offset) < most;
    };
    return FitsLanes(params.below, most) && FitsLanes(params.above, most) && FitsLanes(params.test, most) &&
           window.low < window.high && endFits(window.low) && endFits(window.high);
}

bool FitsLanes(const VideoLumaKeyParams& params)
{
    // With ends of 1 and 254 the matte alone tells what is wholly one of the pictures.
    return FitsLanes(params.window, 1, 254) && IsBetween(0, params.gain, 64 << 16) &&
           IsBetween(-8192, params.offset, 8192);
}

} // namespace vfil

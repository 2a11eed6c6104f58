/// \file
/// The weights of a key by a difference.
#include "il/loops/keyer/differencekey.h"

#include "il/rows/pixarith.h"

#include <algorithm>

namespace vfil {

DifferenceKey DifferenceKeyOf(const KeyChannels& channels, double c0, double c1, double c2,
                              std::int32_t limit)
{
    std::int32_t weights[3];
    weights[channels.key] = RoundHalfAway(-c0 * 65536);
    weights[channels.p] = RoundHalfAway(c0 * c1 * 65536);
    weights[channels.q] = RoundHalfAway(c2 * 65536);
    std::int64_t constant = 0xFF0000;
    if (limit < 0) {
        constant += std::int64_t{weights[channels.key]} * limit;
        weights[channels.key] = 0;
    }
    const auto most = static_cast<std::uint32_t>(std::clamp<std::int32_t>(limit, 0, 255));
    const int shift = 8 * channels.key;
    return {{weights[0], weights[1], weights[2]}, ~(0xFFU << shift) | most << shift, constant};
}

} // namespace vfil

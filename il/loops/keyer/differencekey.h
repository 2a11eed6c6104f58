/// \file
/// The weights of a key by the difference of the screen's channel to the others.
#pragma once

#include "il/rows/keyer/keyparams.h"

#include <cstdint>

namespace vfil {

/// What the key takes of which channel, 0 for red, 1 for green, 2 for blue.
struct KeyChannels {
    int key, p, q;
};

inline constexpr KeyChannels kGreenScreen{1, 0, 2};
inline constexpr KeyChannels kBlueScreen{2, 1, 0};

/// 255 + c2 Q + c0 (c1 P - min(key, limit)). A limit below 0 stands for every pixel's key.
DifferenceKey DifferenceKeyOf(const KeyChannels& channels, double c0, double c1, double c2,
                              std::int32_t limit);

} // namespace vfil

/// \file
/// What the plain forms of the RGBA keyers have in common: weighted sums of a pixel's channels, and the way
/// to YCC and back. Included by the sources beside it.
#pragma once

#include "il/rows/convert/yccparams.h"
#include "il/rows/keyer/keyparams.h"
#include "il/rows/pixarith.h"

#include <algorithm>
#include <cstdlib>

namespace vfil {

inline std::uint8_t Limit(std::int64_t value)
{
    return static_cast<std::uint8_t>(std::clamp<std::int64_t>(value, 0, 255));
}

inline std::int64_t Sum(const KeyWeights& weights, const std::uint8_t* pixel)
{
    return std::int64_t{weights.red} * pixel[0] + std::int64_t{weights.green} * pixel[1] +
           std::int64_t{weights.blue} * pixel[2];
}

inline std::int64_t Sum(const DifferenceKey& key, const std::uint8_t* pixel)
{
    std::uint8_t limited[3];
    for (int c = 0; c < 3; ++c)
        limited[c] = std::min(pixel[c], static_cast<std::uint8_t>(key.limits >> (8 * c)));
    return Sum(key.weights, limited) + key.constant;
}

/// 32 bits hold the sum and what is added to it, of 0 .. `added`.
inline bool FitsVectors(const KeyWeights& weights, std::int64_t added)
{
    return 255 * (std::abs(std::int64_t{weights.red}) + std::abs(std::int64_t{weights.green}) +
                  std::abs(std::int64_t{weights.blue})) <=
           INT32_MAX - added;
}

inline bool FitsVectors(const DifferenceKey& key)
{
    return std::abs(key.constant) <= INT32_MAX && FitsVectors(key.weights, std::abs(key.constant));
}

inline std::uint8_t Encode(const std::uint8_t* rgb, const EncodeWeights& weights, int offset)
{
    const std::int32_t sum = weights.red * rgb[0] + weights.green * rgb[1] + weights.blue * rgb[2];
    return static_cast<std::uint8_t>(((sum + 0x8000) >> 16) + offset);
}

struct YccBytes {
    std::uint8_t y, cb, cr;
};

/// Studio range.
inline YccBytes Encode(const std::uint8_t* rgb, YccWeights weights)
{
    const EncodeTable& table = kEncode[static_cast<int>(YccArithmetic::Exact)][static_cast<int>(weights)];
    return {Encode(rgb, table.y, 16), Encode(rgb, table.cb, 128), Encode(rgb, table.cr, 128)};
}

inline std::uint8_t Decode(const YccBytes& ycc, const DecodeWeights& weights)
{
    const std::int32_t sum = weights.y * ycc.y + weights.cb * ycc.cb + weights.cr * ycc.cr + weights.constant;
    return Limit(sum >> weights.shift);
}

/// Writes red, green and blue.
inline void Decode(const YccBytes& ycc, YccWeights weights, std::uint8_t* rgb)
{
    const DecodeTable& table = kDecode[static_cast<int>(YccArithmetic::Exact)][static_cast<int>(weights)];
    rgb[0] = Decode(ycc, table.red);
    rgb[1] = Decode(ycc, table.green);
    rgb[2] = Decode(ycc, table.blue);
}

} // namespace vfil

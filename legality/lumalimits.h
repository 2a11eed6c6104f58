/// \file
/// The colours that broadcast allows, exactly. Private to the room.
///
/// Samples are studio range. With y = (Y - 16) / 219, b = (Cb - 128) / 224 and r = (Cr - 128) / 224, red is
/// y + kr r, green y + gb b + gr r and blue y + kb b; 0 .. 1 is 0 .. 255. The products are whole numbers of
/// 64 bits, so that nothing is rounded.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace vfil::legality {

inline constexpr std::int64_t kScale = 100000000; ///< of the terms kr, gb, gr and kb

inline constexpr int kLumaLow = 16;
inline constexpr int kLumaHigh = 235;
inline constexpr int kChromaLow = 16;
inline constexpr int kChromaHigh = 240;

/// How much of a code is in the numbers below.
inline constexpr std::int64_t kCode = std::int64_t{219} * 224 * kScale;

/// What luma adds to red, green and blue, in 1/kCode.
constexpr std::int64_t LumaPart(int luma)
{
    return std::int64_t{255} * 224 * kScale * (luma - kLumaLow);
}

/// The most and the least that a pair of chroma samples adds to red, green and blue.
struct ChromaPart {
    std::int64_t least;
    std::int64_t most;
};

/// The luma that is legal beside a pair of chroma samples: none where `low` is above `high`.
struct LumaLimits {
    std::uint8_t low;
    std::uint8_t high;
};

/// Both of every pair.
class LimitTable {
public:
    explicit LimitTable(bool is709);

    const LumaLimits& LumaBeside(int cb, int cr) const { return m_limits[IndexOf(cb, cr)]; }
    const ChromaPart& PartOf(int cb, int cr) const { return m_parts[IndexOf(cb, cr)]; }

private:
    static std::size_t IndexOf(int cb, int cr)
    {
        return static_cast<std::size_t>(cb) << 8 | static_cast<std::size_t>(cr);
    }

    std::array<LumaLimits, 65536> m_limits;
    std::array<ChromaPart, 65536> m_parts;
};

/// The table of BT.709, or of BT.601. Made at the first call.
const LimitTable& Limits(bool is709);

} // namespace vfil::legality

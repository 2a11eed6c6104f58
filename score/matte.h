/// \file
/// The coverage that a picture holds.
#pragma once

#include <vfil/host/video.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vfil::score {

/// Which channel of a picture is the matte.
enum class Channel {
    Any, ///< alpha where some pixel is not opaque, else luma
    Alpha,
    Luma, ///< of grey and of YCC, its own; of RGB, by the weights of BT.709
};

/// Coverage of a full pixel.
inline constexpr std::uint16_t kSolid = 65535;

/// How much of each pixel a subject covers.
struct Matte {
    long width = 0; ///< in pixels
    long height = 0;
    Channel channel = Channel::Luma;     ///< what it was read from: Alpha or Luma
    std::vector<std::uint16_t> coverage; ///< 0 .. kSolid, rows from the top

    const std::uint16_t* Row(long y) const
    {
        return coverage.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width);
    }
};

/// Whether MatteOf takes pictures of a format: all but HLS and Dib24.
bool HoldsMatte(const vfILGuid& format);

/// Reads the matte in a picture. A byte v becomes v * 257; luma of studio range is stretched, black to 0 and
/// white to kSolid, and what lies beyond is cut.
///
/// \param channel    Alpha of a picture that has none is solid everywhere.
/// \param greyRange  Of grey pictures; YCC is of studio range and RGB of full range always.
/// \throws std::invalid_argument for a format that holds none
Matte MatteOf(const host::Picture& picture, Channel channel = Channel::Any,
              host::Range greyRange = host::Range::Full);

} // namespace vfil::score

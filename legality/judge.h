/// \file
/// How far a picture keeps to what broadcast allows.
///
/// A pixel is legal when luma lies in 16 .. 235, both chroma samples in 16 .. 240, and the red, green and
/// blue that they stand for in 0 .. 255: exactly, without rounding. Of colours that are legal as RGB the
/// nearest samples of 8 bits may be outside by up to 1.64 codes, so that figures tell apart what is outside
/// by more than a code.
#pragma once

#include <vfil/host/picture.h>

#include <array>
#include <cstddef>
#include <cstdint>

namespace vfil::legality {

/// What of a pixel is out of range.
enum class Kind {
    LumaLow,
    LumaHigh,
    Chroma,   ///< either sample
    RgbOver,  ///< red, green or blue above 255
    RgbUnder, ///< below 0
};
inline constexpr std::size_t kKinds = 5;

/// By which chroma the right pixel of a pair is judged. The left one has that of the pair.
enum class RightChroma {
    Own,  ///< that of its pair, as it is stored
    Mean, ///< the mean with that of the next pair, (C + next + 1) / 2; in the last pair its own
};

/// How far a pixel is outside.
struct Excursion {
    double codes = 0; ///< of 8 bits, above or below the range; 0 where all is legal
    Kind kind = Kind::LumaLow;
    long x = 0; ///< to the right
    long y = 0; ///< up, from the bottom row
};

/// What judging adds up to, of one frame or of many.
struct Legality {
    std::uint64_t pixels = 0;
    std::uint64_t outside = 0;                 ///< that are not legal
    std::uint64_t beyond = 0;                  ///< that are outside by more than a code
    std::array<std::uint64_t, kKinds> kinds{}; ///< by kind; a pixel may count in several
    Excursion worst; ///< of equal ones the first from the top and the left, and the first kind

    /// The other frame's worst is taken where it is worse.
    Legality& operator+=(const Legality& other);
};

/// Judges a picture. Of the formats of 4:2:2 the samples count; in all others every colour is legal.
Legality Judge(const host::Picture& picture, RightChroma right);

} // namespace vfil::legality

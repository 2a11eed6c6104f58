/// \file
/// What the converters make of a picture, pixel by pixel: the models that the library's kernels are compared
/// with. A picture is the bytes of its pixel array.
#pragma once

#include "support/formats.h"
#include "support/randommodel.h"

#include <vector>

namespace vfil::test {

using Bytes = std::vector<std::uint8_t>;
/// R G B, or Y Cb Cr.
using Triple = std::array<int, 3>;
using RealTriple = std::array<double, 3>;

struct ConvertSetup {
    bool filter = false;
    bool dither = false;
    bool fast = false; ///< the processor's fast arithmetic is on
};

struct Conversion {
    const FormatCase& from;
    const FormatCase& to;
    long width;
    long height;
    ConvertSetup setup;
};

/// Two pixels to Y0 Cb Y1 Cr, along a row.
class PairEncoder {
public:
    PairEncoder(bool is709, const ConvertSetup& setup) : m_709(is709), m_setup(setup) {}
    /// Draws the first residues of a row.
    void StartRow(RandomModel& random);
    std::array<int, 4> Encode(const Triple& left, const Triple& right);

private:
    int Quantise(std::size_t sample, int sum, int shift);

    bool m_709;
    ConvertSetup m_setup;
    std::array<int, 3> m_residue{};
};

/// One R G B to Y Cb Cr, by 16 bits of fraction.
Triple EncodePixel(bool is709, const Triple& rgb);
/// One Y Cb Cr to R G B.
Triple DecodePixel(bool is709, bool fast, const Triple& ycc);

/// The same two ways in real numbers of 0 .. 255, from the standards' luma weights.
RealTriple EncodeExactly(bool is709, const Triple& rgb);
RealTriple DecodeExactly(bool is709, const Triple& ycc);

/// The memory rows of a 4:2:2 picture from the bottom row of the picture to the top one.
std::vector<long> RowsFromBottom(const FormatCase& format, long height);
/// The position of red in a pixel.
std::size_t RedIndex(const FormatCase& format);

/// RGB to YCC and YCC to RGB. \p output has the bytes from before the run, of which some may stay.
Bytes ToYcc(const Conversion& conversion, const Bytes& input, Bytes output);
Bytes ToRgb(const Conversion& conversion, const Bytes& input, Bytes output);
/// Pixel by pixel through vfILColor, memory rows in order.
Bytes ThroughColor(const FormatCase& from, const FormatCase& to, const Bytes& input);

} // namespace vfil::test

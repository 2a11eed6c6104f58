/// \file
/// Rows of samples between frames of a stream and pictures: how numbers stand for light on either side, and
/// the loops that copy. Private to the host.
#pragma once

#include "host/video/pixelkind.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace vfil::host {

/// What a component holds. Full stands for RGB, gray and alpha, whose codes run from 0 to the greatest.
enum class Role { Luma, Chroma, Full };

/// How the codes of a component stand for light: code = offset + scale * v, with v = 0 .. 1 from black to
/// white (luma, full), or -0.5 .. 0.5 (chroma).
struct Coding {
    int bits = 8;
    double offset = 0;
    double scale = 255;

    bool operator==(const Coding&) const = default;
};

/// The coding of a stream. Studio range of n bits is that of 8 bits times 2^(n - 8), full range is 0 .. 2^n -
/// 1 with chroma around 2^(n - 1) (ITU-T H.273, 8.3).
Coding StreamCoding(Role role, int bits, Range range);
/// The coding of our pictures: studio range, that of 16 bits being 257 times that of 8.
Coding PictureCoding(Role role, int bytes);
/// The same codes in the high bits of 16.
Coding InHighBits(const Coding& coding);

/// Takes codes to codes, rounded to the nearest and kept within the bits there are.
class SampleMap {
public:
    SampleMap(const Coding& from, const Coding& to);

    bool Identity() const { return m_table.empty(); }
    /// Wants a code that fits the bits of the source's coding.
    std::uint16_t operator()(unsigned code) const { return m_table[code]; }

private:
    std::vector<std::uint16_t> m_table;
};

/// The samples of one component in one row.
template <class Byte>
struct SampleLine {
    Byte* first = nullptr;
    std::ptrdiff_t stepBytes = 1;
    int bits = 8;
    int shift = 0;        ///< bits below the sample in its byte or word
    bool wide = false;    ///< samples lie in words of 16 bits
    bool swapped = false; ///< the words are big-endian
};
using SourceLine = SampleLine<const std::uint8_t>;
using TargetLine = SampleLine<std::uint8_t>;

/// A component of a row of a frame, 0 <= row < rows of that component. Not for bit streams and palettes.
TargetLine LineOf(const AVFrame& frame, const PixelKind& kind, int component, int row);

void CopyLine(const SourceLine& from, const TargetLine& to, long count, const SampleMap& map);
void FillLine(const TargetLine& to, long count, unsigned code);

/// Three planes of 4:2:2 to a packed row of \p pairs pairs, and back; in the packed row the even bytes are
/// chroma when \p chromaFirst.
struct PlanarRow {
    std::uint8_t* luma;
    std::uint8_t* cb;
    std::uint8_t* cr;
};
void PackRow(const PlanarRow& from, std::uint8_t* to, long pairs, bool chromaFirst, const SampleMap& luma,
             const SampleMap& chroma);
void UnpackRow(const std::uint8_t* from, const PlanarRow& to, long pairs, bool chromaFirst,
               const SampleMap& luma, const SampleMap& chroma);

} // namespace vfil::host

/// \file
/// The crop of a keyer as numbers.
#include "il/loops/keyer/crop.h"

#include <algorithm>

namespace vfil {

namespace {

constexpr unsigned long kFieldBits = VFIL_MODE_ODD_ROWS | VFIL_MODE_EVEN_ROWS;

/// Saturates at 32 bits: a box may hang over the picture by any distance.
long Narrow(std::int64_t value)
{
    return static_cast<long>(std::clamp<std::int64_t>(value, INT32_MIN, INT32_MAX));
}

/// Both intervals, before the field bits choose.
struct Intervals {
    std::int64_t a;
    std::int64_t b;
    std::int64_t c;
    std::int64_t d;
};

// Halves are arithmetic shifts, so that what hangs over by an odd number is rounded to one side.

Intervals OfFrame(std::int64_t y, std::int64_t above, std::int64_t height, bool topDown)
{
    if (topDown) return {above, height - y, -1, -1};
    return {y, height - above, -1, -1};
}

/// \param above  rows above the box; the blocks are top-down.
Intervals OfSplitFields(std::int64_t y, std::int64_t above, std::int64_t height, bool evenFirst)
{
    // The lowest row is even, so the field of the highest depends on the height.
    const bool evenHeight = (height & 1) == 0;
    const std::int64_t larger = (above + 1) >> 1;
    const std::int64_t smaller = above >> 1;
    if (evenFirst) {
        const std::int64_t block = (height + 1) / 2;
        return {evenHeight ? smaller : larger, block - ((y + 1) >> 1),
                (evenHeight ? larger : smaller) + block, height - (y >> 1)};
    }
    const std::int64_t block = height / 2;
    return {evenHeight ? larger : smaller, block - (y >> 1), (evenHeight ? smaller : larger) + block,
            height - ((y + 1) >> 1)};
}

} // namespace

vfILKeyerCrop CropOf(const vfILBbox2l& box, long width, long height, const vfILFormatInfo& format,
                     unsigned long mode)
{
    const bool none =
        box.GetSizeX() == 0 && box.GetSizeY() == 0 && box.GetOffsetX() == 0 && box.GetOffsetY() == 0;
    const std::int64_t x = box.GetOffsetX();
    const std::int64_t y = box.GetOffsetY();
    const std::int64_t w = none ? width : std::int64_t{box.GetSizeX()};
    const std::int64_t h = none ? height : std::int64_t{box.GetSizeY()};
    const std::int64_t above = height - (y + h);
    Intervals rows = format.splitField ? OfSplitFields(y, above, height, format.evenFieldFirst)
                                       : OfFrame(y, above, height, format.topDown);

    const Intervals all = rows;
    const bool odd = (mode & VFIL_MODE_ODD_ROWS) != 0;
    const bool even = (mode & VFIL_MODE_EVEN_ROWS) != 0;
    if (odd && even) {
        rows = {-1, -1, -1, -1};
    } else if (odd || even) {
        if (!format.splitField) {
            rows = {all.a >> 1, all.b >> 1, all.c, all.d};
        } else if (even == format.evenFieldFirst) {
            rows = {all.a, all.b, -1, -1};
        } else {
            const std::int64_t block = format.evenFieldFirst ? (height + 1) / 2 : height / 2;
            rows = {-1, -1, all.c - block, all.d - block};
        }
    }
    return {Narrow(x),      Narrow(width - (x + w)), Narrow(rows.a),
            Narrow(rows.b), Narrow(rows.c),          Narrow(rows.d)};
}

KeptRows::KeptRows(const vfILKeyerCrop& crop, long rows, const vfILFormatInfo& format, unsigned long mode)
{
    // A run of one field walks one block, and its rows begin at 0 whichever it is.
    const bool bothBlocks = format.splitField && (mode & kFieldBits) == 0;
    const long block = format.evenFieldFirst ? (rows + 1) / 2 : rows / 2;
    const long firstEnd = bothBlocks ? block : rows;
    const long secondStart = bothBlocks ? block : 0;
    m_first = {std::max(crop.firstStart, 0L), std::min(crop.firstEnd, firstEnd)};
    m_second = {std::max(crop.secondStart, secondStart), std::min(crop.secondEnd, rows)};
}

bool KeptRows::Has(long row) const
{
    return (row >= m_first.start && row < m_first.end) || (row >= m_second.start && row < m_second.end);
}

} // namespace vfil

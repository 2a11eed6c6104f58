/// \file
/// The plain forms of the kernels of colour correction in RGBA, and the table of their levels.
#include "il/rows/treat/correctrows.h"

#include "il/rows/treat/correctsums.h"

#include <algorithm>
#include <limits>

namespace vfil {

namespace {

using Byte = std::uint8_t;

/// A byte as a sample: the upper byte of one is the index of tables, and their numbers fill both.
template <class Sample>
constexpr int kUnit = Arith<Sample>::kFull / 255;

template <class Sample>
Byte UpperByte(Sample v)
{
    return static_cast<Byte>(v >> (8 * (sizeof(Sample) - 1)));
}

template <class Sample, bool lut, bool tables>
void PlainCorrect(const Sample* in, Sample* out, std::size_t pixels, const Correction& correction,
                  unsigned channels)
{
    for (; pixels != 0; --pixels, in += 4, out += 4) {
        CorrectedColour colour = ThroughMatrix(correction.matrix, {in[0], in[1], in[2]});
        std::int64_t alpha = AlphaThroughMatrix(correction.matrix, in[3]);
        if constexpr (lut) {
            const LumaIncrements& more = correction.lut[UpperByte(ClampToSample<Sample>(colour[0]))];
            colour = ThroughMatrix(correction.behindLut,
                                   {colour[0] + kUnit<Sample> * more.y, colour[1] + kUnit<Sample> * more.cb,
                                    colour[2] + kUnit<Sample> * more.cr});
            alpha += kUnit<Sample> * more.alpha;
        }
        const std::int64_t corrected[] = {colour[0], colour[1], colour[2], alpha};
        for (int c = 0; c < 4; ++c) {
            auto result = ClampToSample<Sample>(corrected[c]);
            if constexpr (tables)
                result = static_cast<Sample>(kUnit<Sample> * correction.tables[c][UpperByte(result)]);
            out[c] = (channels >> c & 1U) != 0 ? result : in[c];
        }
    }
}

template <class Sample>
void PlainMix(const Sample* in, const Sample* corrected, const Sample* mask, Sample* out, std::size_t pixels,
              unsigned channels)
{
    for (; pixels != 0; --pixels, ++mask, in += 4, corrected += 4, out += 4) {
        const Sample m = *mask;
        for (int c = 0; c < 4; ++c)
            out[c] = (channels >> c & 1U) != 0 ? Arith<Sample>::Blend(corrected[c], in[c], m) : in[c];
    }
}

template <class Sample, bool lut, bool tables>
void PlainCase(CorrectRow<Sample> (&rows)[2][2][2])
{
    std::fill_n(rows[lut][tables], 2, PlainCorrect<Sample, lut, tables>);
}

template <bool lut, bool tables>
void PlainCases(CorrectRows& rows)
{
    PlainCase<Byte, lut, tables>(rows.correct8);
    PlainCase<std::uint16_t, lut, tables>(rows.correct16);
}

const LevelTables<CorrectRows>& Tables()
{
    static const LevelTables<CorrectRows> tables(
        [] {
            CorrectRows rows;
            PlainCases<false, false>(rows);
            PlainCases<false, true>(rows);
            PlainCases<true, false>(rows);
            PlainCases<true, true>(rows);
            std::fill_n(rows.mix8, 2, PlainMix<Byte>);
            std::fill_n(rows.mix16, 2, PlainMix<std::uint16_t>);
            return rows;
        }(),
        VFIL_FILLS);
    return tables;
}

std::int64_t Size(std::int64_t v)
{
    return v < 0 ? -v : v;
}

constexpr std::int64_t kMost16 = std::numeric_limits<std::int16_t>::max();
constexpr std::int64_t kMost32 = std::numeric_limits<std::int32_t>::max();

bool HasWideFactors(const CorrectionMatrix& matrix)
{
    const auto isWide = [](std::int32_t v) { return Size(v) > kMost16; };
    return isWide(matrix.at[0][3]) || std::any_of(matrix.at, matrix.at + 3, [&](const auto& row) {
               return std::any_of(row, row + 3, isWide);
           });
}

/// The largest size of a sum, before its shift.
std::int64_t LargestSum(const CorrectionMatrix& matrix, std::size_t column, const CorrectedColour& most)
{
    std::int64_t sum = Size(matrix.at[3][column]);
    for (std::size_t i = 0; i < 3; ++i)
        sum += Size(matrix.at[i][column]) * most[i];
    return sum;
}

} // namespace

bool FitsVectors(const Correction& correction, std::int32_t most)
{
    if (HasWideFactors(correction.matrix)) return false;
    std::array<std::int64_t, 4> sums{};
    for (std::size_t k = 0; k < 3; ++k)
        sums[k] = LargestSum(correction.matrix, k, {most, most, most});
    sums[3] = Size(correction.matrix.at[0][3]) * most + Size(correction.matrix.at[3][3]);
    if (*std::max_element(sums.begin(), sums.end()) > kMost32) return false;
    if (!correction.hasLut) return true;

    std::array<std::int64_t, 4> additions{};
    for (const auto& [cb, cr, y, alpha] : correction.lut) {
        const std::array<std::int64_t, 4> sizes{Size(y), Size(cb), Size(cr), Size(alpha)};
        for (std::size_t k = 0; k < 4; ++k)
            additions[k] = std::max(additions[k], sizes[k]);
    }
    const std::int64_t unit = most / 255;
    for (std::size_t k = 0; k < 4; ++k) {
        sums[k] = (sums[k] >> 8) + 1 + unit * additions[k];
        if (sums[k] > (unit == 1 ? kMost16 : kMost32)) return false;
    }
    if (HasWideFactors(correction.behindLut)) return false;
    for (std::size_t k = 0; k < 3; ++k) {
        if (LargestSum(correction.behindLut, k, {sums[0], sums[1], sums[2]}) > kMost32) return false;
    }
    return true;
}

const CorrectRows& CorrectRowsAt(Level level)
{
    return Tables().At(level);
}

const CorrectRows& FindCorrectRows(bool useVectors)
{
    return CorrectRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace vfil

/// \file
/// The plain forms of the kernels of colour correction in 4:2:2, and the table of their levels.
#include "il/rows/treat/correctpairrows.h"

#include "il/rows/treat/correctsums.h"

#include <algorithm>

namespace vfil {

namespace {

using Byte = std::uint8_t;

struct Bytes3 {
    Byte red, green, blue;
};

Bytes3 ThroughTables(const Correction& correction, const CorrectedColour& colour)
{
    const auto replaced = [&](std::size_t c) { return correction.tables[c][ClampToSample<Byte>(colour[c])]; };
    return {replaced(0), replaced(1), replaced(2)};
}

/// \param middle  The sample that stands for none.
Byte Encode(const Bytes3& rgb, const EncodeWeights& weights, int middle)
{
    const int sum = weights.red * rgb.red + weights.green * rgb.green + weights.blue * rgb.blue;
    return static_cast<Byte>(((sum + 128) >> 8) + middle);
}

template <bool chromaFirst, bool lut, bool tables>
void PlainCorrectPairs(const Byte* in, Byte* out, std::size_t macropixels, const Correction& correction,
                       const EncodeTable& back)
{
    constexpr int luma = chromaFirst ? 1 : 0;
    constexpr int chroma = 1 - luma;
    const CorrectionMatrix& last = lut ? correction.behindLut : correction.matrix;
    for (; macropixels != 0; --macropixels, in += 4, out += 4) {
        CorrectedColour left{in[luma], in[chroma], in[chroma + 2]};
        std::int64_t rightLuma = in[luma + 2];
        if constexpr (lut) {
            rightLuma = ThroughMatrix(correction.matrix, {rightLuma, left[1], left[2]})[0];
            rightLuma += correction.lut[ClampToSample<Byte>(rightLuma)].y;
            left = ThroughMatrix(correction.matrix, left);
            const LumaIncrements& more = correction.lut[ClampToSample<Byte>(left[0])];
            left = {left[0] + more.y, left[1] + more.cb, left[2] + more.cr};
        }
        const CorrectedColour right = ThroughMatrix(last, {rightLuma, left[1], left[2]});
        left = ThroughMatrix(last, left);
        if constexpr (tables) {
            const Bytes3 rgb = ThroughTables(correction, left);
            out[luma] = Encode(rgb, back.y, 16);
            out[luma + 2] = Encode(ThroughTables(correction, right), back.y, 16);
            out[chroma] = Encode(rgb, back.cb, 128);
            out[chroma + 2] = Encode(rgb, back.cr, 128);
        } else {
            out[luma] = ClampToSample<Byte>(left[0]);
            out[luma + 2] = ClampToSample<Byte>(right[0]);
            out[chroma] = ClampToSample<Byte>(left[1]);
            out[chroma + 2] = ClampToSample<Byte>(left[2]);
        }
    }
}

void PlainReplace(const Byte* in, Byte* out, std::size_t bytes, const Byte* table)
{
    std::transform(in, in + bytes, out, [table](Byte v) { return table[v]; });
}

template <bool chromaFirst>
void PlainCases(CorrectPairRow (&rows)[2][2][2])
{
    std::fill_n(rows[false][false], 2, PlainCorrectPairs<chromaFirst, false, false>);
    std::fill_n(rows[false][true], 2, PlainCorrectPairs<chromaFirst, false, true>);
    std::fill_n(rows[true][false], 2, PlainCorrectPairs<chromaFirst, true, false>);
    std::fill_n(rows[true][true], 2, PlainCorrectPairs<chromaFirst, true, true>);
}

const LevelTables<CorrectPairRows>& Tables()
{
    static const LevelTables<CorrectPairRows> tables(
        [] {
            CorrectPairRows rows;
            PlainCases<false>(rows.pairs[false]);
            PlainCases<true>(rows.pairs[true]);
            std::fill_n(rows.replace, 2, PlainReplace);
            return rows;
        }(),
        VFIL_FILLS);
    return tables;
}

} // namespace

void MakeAlphaTable(const Correction& correction, std::uint8_t (&table)[256])
{
    for (int alpha = 0; alpha < 256; ++alpha) {
        const auto corrected = ClampToSample<Byte>(AlphaThroughMatrix(correction.matrix, alpha));
        table[alpha] = correction.hasTables ? correction.tables[3][corrected] : corrected;
    }
}

const CorrectPairRows& CorrectPairRowsAt(Level level)
{
    return Tables().At(level);
}

const CorrectPairRows& FindCorrectPairRows(bool useVectors)
{
    return CorrectPairRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace vfil

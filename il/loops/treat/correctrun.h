/// \file
/// The loops of colour correction: whole rows, rows under a mask, and rows of 4:2:2 with their alpha.
#pragma once

#include "il/loops/frame/rowcopy.h"
#include "il/loops/frame/rowloop.h"
#include "il/rows/treat/correctpairrows.h"
#include "il/rows/treat/correctrows.h"

#include <type_traits>

namespace vfil {

/// What is corrected, and how.
struct CorrectionRun {
    const vfILProcessor& processor;
    const vfILPixelRun& run;
    const vfILRowWalk& input;
    const Correction& correction;
    bool vectors;

    std::size_t Width() const { return static_cast<std::size_t>(run.processBox.GetSizeX()); }
    /// Whether vectors may be used, and have room for the correction of samples up to so much.
    bool FitsVectorsTo(std::int32_t most) const { return vectors && FitsVectors(correction, most); }
};

/// The kernel of a run over RGBA.
template <class Sample>
CorrectRow<Sample> FindCorrectRow(const CorrectionRun& of, bool streaming)
{
    const CorrectRows& rows = FindCorrectRows(of.FitsVectorsTo(Arith<Sample>::kFull));
    if constexpr (std::is_same_v<Sample, std::uint8_t>) {
        return rows.correct8[of.correction.hasLut][of.correction.hasTables][streaming];
    } else {
        return rows.correct16[of.correction.hasLut][of.correction.hasTables][streaming];
    }
}

template <class Sample>
MixCorrectedRow<Sample> FindMixCorrectedRow(bool useVectors, bool streaming)
{
    const CorrectRows& rows = FindCorrectRows(useVectors);
    if constexpr (std::is_same_v<Sample, std::uint8_t>) {
        return rows.mix8[streaming];
    } else {
        return rows.mix16[streaming];
    }
}

/// RGBA without a mask.
template <class Format>
void CorrectWholeRows(const CorrectionRun& of)
{
    using Sample = typename Format::Sample;
    const auto correct = FindCorrectRow<Sample>(of, of.run.streaming);
    const unsigned channels = Format::Channels(of.processor);
    ForEachRow(of.processor, of.run.rows, [&](long row) {
        correct(RowOf<const Sample>(of.input, row), RowOf<Sample>(of.run.output, row), of.Width(),
                of.correction, channels);
    });
}

/// RGBA under a mask: piece by piece, which stays in the nearest cache, the corrected pixels are made and
/// mixed with those of before.
template <class Format>
void CorrectUnderMask(const CorrectionRun& of)
{
    using Sample = typename Format::Sample;
    constexpr std::size_t kPiece = 512;
    Sample corrected[4 * kPiece];
    Sample masks[kPiece];
    const auto correct = FindCorrectRow<Sample>(of, false);
    const auto mix = FindMixCorrectedRow<Sample>(of.vectors, of.run.streaming);
    const unsigned channels = Format::Channels(of.processor);
    ForEachRow(of.processor, of.run.rows, [&](long row) {
        const auto* in = RowOf<const Sample>(of.input, row);
        auto* out = RowOf<Sample>(of.run.output, row);
        const MaskRow<Sample> mask(of.run, row);
        for (std::size_t x = 0; x < of.Width(); x += kPiece) {
            const std::size_t pixels = std::min(kPiece, of.Width() - x);
            const Sample* together = mask.samples + x;
            if (mask.step != 1) {
                for (std::size_t i = 0; i < pixels; ++i)
                    masks[i] = mask[static_cast<long>(x + i)];
                together = masks;
            }
            correct(in + 4 * x, corrected, pixels, of.correction, VFIL_MODE_RGBA);
            mix(in + 4 * x, corrected, together, out + 4 * x, pixels, channels);
        }
    });
}

inline void ColorCorrectionRGBA32(const CorrectionRun& of)
{
    if (of.run.mask.first == nullptr) {
        CorrectWholeRows<Rgba8>(of);
    } else {
        CorrectUnderMask<Rgba8>(of);
    }
}

inline void ColorCorrectionRGBA64(const CorrectionRun& of)
{
    if (of.run.mask.first == nullptr) {
        CorrectWholeRows<Rgba16>(of);
    } else {
        CorrectUnderMask<Rgba16>(of);
    }
}

/// One row of 4:2:2. A last pixel without a second is a pair with itself, whose Cr is the middle.
inline void CorrectVideoRow(CorrectPairRow correct, const CorrectionRun& of, const EncodeTable& back,
                            long row)
{
    const auto* in = RowOf<const std::uint8_t>(of.input, row);
    auto* out = RowOf<std::uint8_t>(of.run.output, row);
    const std::size_t pairs = of.Width() / 2;
    correct(in, out, pairs, of.correction, back);
    if (of.Width() % 2 == 0) return;
    const std::uint8_t* lone = in + 4 * pairs;
    const bool chromaFirst = of.run.picture.format->chromaFirst;
    std::uint8_t pair[4] = {lone[0], lone[1], chromaFirst ? std::uint8_t{128} : lone[0],
                            chromaFirst ? lone[1] : std::uint8_t{128}};
    correct(pair, pair, 1, of.correction, back);
    std::copy_n(pair, 2, out + 4 * pairs);
}

/// The alpha planes of both pictures, where they have one.
class ColorCorrectionAlpha8 {
public:
    explicit ColorCorrectionAlpha8(const CorrectionRun& of)
        : m_of(of), m_replace(FindCorrectPairRows(of.vectors).replace[of.run.streaming])
    {
        MakeAlphaTable(of.correction, m_table);
    }
    void operator()(long row) const
    {
        if (m_of.input.plane == nullptr || m_of.run.output.plane == nullptr) return;
        const auto* in = m_of.input.plane + row * m_of.input.planeStep;
        auto* out = m_of.run.output.plane + row * m_of.run.output.planeStep;
        if (m_of.processor.IsAlphaChannelProcessed() != 0) {
            m_replace(in, out, m_of.Width(), m_table);
        } else {
            MoveRow(m_of.vectors, in, out, m_of.Width(), m_of.run.streaming);
        }
    }

private:
    const CorrectionRun& m_of;
    ReplaceBytes m_replace;
    std::uint8_t m_table[256];
};

/// 4:2:2 formats take no mask.
///
/// \param back  From RGB, where there are tables.
inline void ColorCorrectionYCC422(const CorrectionRun& of, const EncodeTable& back)
{
    const bool chromaFirst = of.run.picture.format->chromaFirst;
    const CorrectPairRows& rows = FindCorrectPairRows(of.FitsVectorsTo(255));
    const auto& cases = rows.pairs[chromaFirst][of.correction.hasLut][of.correction.hasTables];
    const CorrectPairRow correct = cases[of.run.streaming];
    const ColorCorrectionAlpha8 correctAlpha(of);
    ForEachRow(of.processor, of.run.rows, [&](long row) {
        CorrectVideoRow(correct, of, back, row);
        correctAlpha(row);
    });
}

} // namespace vfil

/// \file
/// Clear pixels in the chroma of the key colour.

#include "il/loops/frame/rowloop.h"
#include "il/rows/keyer/tablekeyrows.h"

#include <vfil/tablekeyer.h>

#include <algorithm>

using namespace vfil;

const wchar_t* const vfILChromaReplace::m_ClassName = L"vfILChromaReplace";

const wchar_t* vfILChromaReplace::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILChromaReplace::Verify()
{
    if (vfILKeyerBase::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (OutputFormat() != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    const bool offsetFits = m_lumaOffset >= -1.0 && m_lumaOffset <= 1.0;
    const bool gainFits = m_lumaGain >= 0.0 && m_lumaGain <= 2.0;
    // One of them alone may be anything: a luma is limited in the end.
    if (!offsetFits && !gainFits) return Fail(0x10011, GetClassNameW());
    if (m_colorModel != PXColorModel_YCC && m_colorModel != PXColorModel_YCC709)
        return Fail(0x1006A, GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILChromaReplace::SetLuma(double offset, double gain)
{
    m_lumaOffset = offset;
    m_lumaGain = gain;
}

void vfILChromaReplace::GetLuma(double* offset, double* gain) const
{
    if (offset != nullptr) *offset = m_lumaOffset;
    if (gain != nullptr) *gain = m_lumaGain;
}

void vfILChromaReplace::SetColorModel(PXColorModel model)
{
    m_colorModel = model;
}

PXColorModel vfILChromaReplace::GetColorModel() const
{
    return m_colorModel;
}

namespace {

ChromaReplacement ReplacementOf(const vfILChromaReplace& processor)
{
    double offset = 0;
    double gain = 0;
    processor.GetLuma(&offset, &gain);
    const std::int64_t offset8 = RoundHalfAway(255 * offset);
    const std::int64_t gain16 = RoundHalfAway(65536 * gain);
    ChromaReplacement replacement{};
    for (std::int64_t y = 0; y < 256; ++y) {
        const std::int64_t luma = ((gain16 * y) >> 16) + offset8;
        replacement.lumaOf[y] = static_cast<std::uint8_t>(std::clamp<std::int64_t>(luma, 0, 255));
    }
    std::uint8_t ycc[4] = {};
    processor.GetKeyColor().GetColorAs32(ycc, processor.GetColorModel());
    replacement.cb = ycc[1];
    replacement.cr = ycc[2];
    const bool is709 = processor.GetColorModel() == PXColorModel_YCC709;
    replacement.weights = is709 ? YccWeights::Bt709 : YccWeights::Bt601;
    return replacement;
}

} // namespace

vfILStatus vfILChromaReplace::DoEffect()
{
    if (FormatOf(Run()) != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    const ChromaReplacement replacement = ReplacementOf(*this);
    const vfILLayerRun layers = Layers();
    const ReplaceRow replace = FindTableKeyRows(m_simdAvailable != 0).replace[Run().streaming];
    const auto pixels = static_cast<std::size_t>(Run().processBox.GetSizeX());
    ForEachRow(*this, Run().rows, [&](long row) {
        replace(RowOf<const std::uint8_t>(layers.back, row), RowOf<const std::uint8_t>(layers.front, row),
                RowOf<std::uint8_t>(Run().output, row), pixels, replacement);
    });
    return VFIL_SUCCESS;
}

/// \file
/// The keyer of video by a colour difference, with spill correction.

#include "il/loops/frame/imageview.h"
#include "il/loops/keyer/videokey.h"
#include "il/loops/keyer/yuvkeysetup.h"
#include "il/rows/keyer/rgbcompositerows.h"

#include <vfil/videokeyer.h>

using namespace vfil;

const wchar_t* const vfILYUVKeyer::m_ClassName = L"vfILYUVKeyer";

vfILYUVKeyer::~vfILYUVKeyer() = default;

const wchar_t* vfILYUVKeyer::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILYUVKeyer::Verify()
{
    if (vfILKeyerBase::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    const GUID format = OutputFormat();
    const bool rgb = format == PXFormat_RGBA32;
    if (!rgb && !IsKeyableVideo(format)) return Fail(0x1000D, GetClassNameW());
    const bool fits = (m_colorModel == PXColorModel_UNKNOWN && IsFormatYCC(format) != 0) ||
                      (m_colorModel == PXColorModel_YCC && (rgb || IsFormat601(format) != 0)) ||
                      (m_colorModel == PXColorModel_YCC709 && (rgb || IsFormat709(format) != 0));
    return fits ? VFIL_SUCCESS : Fail(0x1006A, GetClassNameW());
}

vfILStatus vfILYUVKeyer::DoEffect()
{
    const GUID input = vfil::FormatOf(GetInputImgA());
    if (input == PXFormat_RGBA32) return RGBKey8();
    if (VideoFormatOf(GetInputImgA()) == nullptr) return Fail(0x1000D, GetClassNameW());
    const int is709 = IsFormat709(input);
    const int isAlternate = IsFormatAlternateYUV(input);
    return m_simdAvailable != 0 && m_outputMatte == 0 ? YCC422Key8_MMX(is709, isAlternate)
                                                      : YCC422Key8_NoMMX(is709, isAlternate);
}

vfILYUVKeySettings vfILYUVKeyer::Settings() const
{
    return {m_c0,
            m_c1,
            m_c2,
            m_clipLow,
            m_clipHigh,
            GetKeyColor(),
            m_spillColor,
            m_spillLumaFactor,
            m_spillLumaTerm,
            m_spillThreshold,
            m_spillSoftness,
            m_colorModel};
}

vfILStatus vfILYUVKeyer::YCC422Key8_MMX(int is709, int isAlternate)
{
    m_colorModel = is709 != 0 ? PXColorModel_YCC709 : PXColorModel_YCC;
    if (m_clipHigh <= m_clipLow) SetClipValues(0, 1);
    RunWholeVideoKey(*this, Layers(), Crop(), ChannelKeyOf(Settings()),
                     m_applySpill != 0 ? KeyResult::SpillCorrected : KeyResult::Composite, isAlternate != 0,
                     KeyPoll::Never);
    return VFIL_SUCCESS;
}

vfILStatus vfILYUVKeyer::YCC422Key8_NoMMX(int is709, int isAlternate)
{
    m_colorModel = is709 != 0 ? PXColorModel_YCC709 : PXColorModel_YCC;
    RunWholeVideoKey(*this, Layers(), Crop(), FoldedKeyOf(Settings()),
                     m_outputMatte != 0 ? KeyResult::Matte : KeyResult::Composite, isAlternate != 0,
                     KeyPoll::Never);
    return VFIL_SUCCESS;
}

vfILStatus vfILYUVKeyer::RGBKey8()
{
    const RgbCompositeParams params = RgbCompositeOf(Settings());
    const KeyResult colour = m_applySpill != 0 ? KeyResult::SpillCorrected : KeyResult::Composite;
    const vfILLayerRun layers = Layers();
    const RgbCompositeRow composite = FindRgbCompositeRow(m_outputMatte != 0 ? KeyResult::Matte : colour,
                                                          layers.fast, layers.run.streaming, params);
    const auto pixels = static_cast<std::size_t>(layers.run.processBox.GetSizeX());
    for (long row = 0; row < layers.run.rows; ++row)
        composite(RowOf<const std::uint8_t>(layers.back, row), RowOf<const std::uint8_t>(layers.front, row),
                  RowOf<std::uint8_t>(layers.run.output, row), pixels, params);
    return VFIL_SUCCESS;
}

void vfILYUVKeyer::SetCoefficients(double c0, double c1, double c2)
{
    m_c0 = c0;
    m_c1 = c1;
    m_c2 = c2;
}

void vfILYUVKeyer::GetCoefficients(double* c0, double* c1, double* c2) const
{
    if (c0 != nullptr) *c0 = m_c0;
    if (c1 != nullptr) *c1 = m_c1;
    if (c2 != nullptr) *c2 = m_c2;
}

void vfILYUVKeyer::SetClipValues(double low, double high)
{
    m_clipLow = low;
    m_clipHigh = high;
}

void vfILYUVKeyer::GetClipValues(double* low, double* high) const
{
    if (low != nullptr) *low = m_clipLow;
    if (high != nullptr) *high = m_clipHigh;
}

void vfILYUVKeyer::SetOutputMatteFlag(int output)
{
    m_outputMatte = output;
}

int vfILYUVKeyer::GetOutputMatteFlag() const
{
    return m_outputMatte;
}

void vfILYUVKeyer::SetApplySpillCorrectionFlag(int apply)
{
    m_applySpill = apply;
}

int vfILYUVKeyer::GetApplySpillCorrectionFlag() const
{
    return m_applySpill;
}

void vfILYUVKeyer::SetSpillColor(const vfILColor& color)
{
    m_spillColor = color;
}

const vfILColor& vfILYUVKeyer::GetSpillColor() const
{
    return m_spillColor;
}

void vfILYUVKeyer::SetSpillThresholdAndSoftness(double threshold, double softness)
{
    m_spillThreshold = threshold;
    m_spillSoftness = softness;
}

void vfILYUVKeyer::GetSpillThresholdAndSoftness(double* threshold, double* softness) const
{
    if (threshold != nullptr) *threshold = m_spillThreshold;
    if (softness != nullptr) *softness = m_spillSoftness;
}

void vfILYUVKeyer::SetSpillLuminanceOffsetAndGain(double factor, double term)
{
    m_spillLumaFactor = factor;
    m_spillLumaTerm = term;
}

void vfILYUVKeyer::GetSpillLuminanceOffsetAndGain(double* factor, double* term) const
{
    if (factor != nullptr) *factor = m_spillLumaFactor;
    if (term != nullptr) *term = m_spillLumaTerm;
}

void vfILYUVKeyer::SetColorModel(PXColorModel model)
{
    m_colorModel = model;
}

PXColorModel vfILYUVKeyer::GetColorModel() const
{
    return m_colorModel;
}

/// \file
/// Hue, saturation, gain, offset, and tables behind them.

#include "il/loops/treat/correctrun.h"

#include <vfil/treat.h>

#include <cstring>

using namespace vfil;

const wchar_t* const vfILColorCorrectionImg::m_ClassName = L"vfILColorCorrectionImg";

vfILColorCorrectionImg::~vfILColorCorrectionImg() = default;

const wchar_t* vfILColorCorrectionImg::GetClassNameW() const
{
    return m_ClassName;
}

namespace {

bool IsVideo(const GUID& format)
{
    const vfILFormatInfo* info = vfILFindFormat(format);
    return info != nullptr && info->subsampled;
}

} // namespace

vfILStatus vfILColorCorrectionImg::Verify()
{
    if (vfILMonadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    const GUID format = OutputFormat();
    if (!RgbaFormats::Contains(format) && !IsVideo(format)) return Fail(0x1000D, GetClassNameW());
    if (!IsVideo(format) && m_colorModel != PXColorModel_YCC && m_colorModel != PXColorModel_YCC709)
        return Fail(0x1006A, GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILColorCorrectionImg::StartFrom(const HmTransfo4& tail)
{
    m_transfo = tail;
    if (m_lut == nullptr) return;
    m_transfoLut = tail;
    m_transfo.ResetToIdentity();
}

void vfILColorCorrectionImg::Adjust(double gain, double offset)
{
    const double saturation = m_saturation * 0.01;
    m_transfo.Translate(offset, 0, 0).Scale(gain, gain, gain).Scale(1, saturation, saturation);
    m_transfo.Rotate(m_hue, 1, 0, 0);
}

vfILStatus vfILColorCorrectionImg::PrepareData()
{
    if (vfILMonadicPixelProc::PrepareData() != VFIL_SUCCESS) return VFIL_FAILURE;
    const vfILFormatInfo& format = *Run().picture.format;
    const double gain = m_gain * 0.01;
    const double offset = m_offset * (format.sampleBytes == 2 ? 655.35 : 2.55);
    const bool asks = format.ycc && m_colorModel == PXColorModel_UNKNOWN;
    m_is601 = asks ? IsFormat601(format.id) != 0 : m_colorModel == PXColorModel_YCC;
    const HmTransfo4& toRgb = m_is601 ? s_HmTransfoYCC2RGB : s_HmTransfoYCC7092RGB;
    if (!format.ycc) {
        StartFrom(toRgb);
        Adjust(gain, offset);
        m_transfo.PostMultiply(m_is601 ? s_HmTransfoRGB2YCC : s_HmTransfoRGB2YCC709);
    } else {
        // From studio range to the full one, with chroma around 0; and back, unless the tables ask for RGB.
        HmTransfo4 toStudio;
        toStudio.Translate(16, 16, 16).Scale(0.858823529, 0.878431373, 0.878431373).Translate(0, 128, 128);
        StartFrom(m_rgbaLut != nullptr ? toRgb : toStudio);
        Adjust(gain, offset);
        m_transfo.Translate(0, -128, -128).Scale(1.16438356, 1.13839286, 1.13839286);
        m_transfo.Translate(-16, -16, -16);
    }
    // Colour has no use for these two cells: they are alpha's.
    m_transfo.GetMatrixPtr()[3] = gain;
    m_transfo.GetMatrixPtr()[15] = offset;
    return VFIL_SUCCESS;
}

namespace {

CorrectionMatrix To256ths(const HmTransfo4& transfo)
{
    const double* elements = transfo.GetMatrixPtr();
    CorrectionMatrix matrix;
    for (auto& row : matrix.at)
        for (std::int32_t& element : row)
            element = RoundHalfAway(256 * *elements++);
    return matrix;
}

/// \param lut, tables  The host's, of any alignment; null for none.
Correction MakeCorrection(const HmTransfo4& transfo, const HmTransfo4& behindLut, const void* lut,
                          const void* tables)
{
    Correction correction{};
    correction.matrix = To256ths(transfo);
    correction.hasLut = lut != nullptr;
    if (lut != nullptr) {
        correction.behindLut = To256ths(behindLut);
        std::int16_t rows[256][4];
        std::memcpy(rows, lut, sizeof rows);
        for (std::size_t i = 0; i < 256; ++i)
            correction.lut[i] = {rows[i][1], rows[i][2], rows[i][0], rows[i][3]};
    }
    correction.hasTables = tables != nullptr;
    if (tables != nullptr) std::memcpy(correction.tables, tables, sizeof correction.tables);
    return correction;
}

/// The matrix from RGB to studio range, in 256ths.
EncodeTable EncodeTableOf(bool is601)
{
    const vfILColorMatrix& matrix = is601 ? s_dfArrayRGBAtoYCCAOffset : s_dfArrayRGBAtoYCCA709Offset;
    const auto weights = [&](std::size_t k) {
        return EncodeWeights{RoundHalfAway(256 * matrix[k]), RoundHalfAway(256 * matrix[4 + k]),
                             RoundHalfAway(256 * matrix[8 + k])};
    };
    return {weights(0), weights(1), weights(2)};
}

} // namespace

vfILStatus vfILColorCorrectionImg::DoEffect()
{
    const GUID& format = FormatOf(Run());
    const Correction correction = MakeCorrection(m_transfo, m_transfoLut, m_lut, m_rgbaLut);
    const CorrectionRun run{*this, Run(), InputWalk(), correction, m_simdAvailable != 0};
    if (IsVideo(format)) {
        ColorCorrectionYCC422(run, EncodeTableOf(m_is601));
    } else if (format == PXFormat_RGBA64) {
        ColorCorrectionRGBA64(run);
    } else if (format == PXFormat_RGBA32) {
        ColorCorrectionRGBA32(run);
    } else {
        return Fail(0x1000D, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

double vfILColorCorrectionImg::GetHue() const
{
    return m_hue;
}

void vfILColorCorrectionImg::SetHue(double hue)
{
    m_hue = hue;
}

double vfILColorCorrectionImg::GetSaturation() const
{
    return m_saturation;
}

void vfILColorCorrectionImg::SetSaturation(double saturation)
{
    m_saturation = saturation;
}

double vfILColorCorrectionImg::GetGain() const
{
    return m_gain;
}

void vfILColorCorrectionImg::SetGain(double gain)
{
    m_gain = gain;
}

double vfILColorCorrectionImg::GetOffset() const
{
    return m_offset;
}

void vfILColorCorrectionImg::SetOffset(double offset)
{
    m_offset = offset;
}

void vfILColorCorrectionImg::SetLut(void* lut)
{
    m_lut = lut;
}

void* vfILColorCorrectionImg::GetLut() const
{
    return m_lut;
}

void vfILColorCorrectionImg::SetRGBALut(void* lut)
{
    m_rgbaLut = lut;
}

void* vfILColorCorrectionImg::GetRGBALut() const
{
    return m_rgbaLut;
}

PXColorModel vfILColorCorrectionImg::GetColorModel() const
{
    return m_colorModel;
}

void vfILColorCorrectionImg::SetColorModel(PXColorModel model)
{
    m_colorModel = model;
}

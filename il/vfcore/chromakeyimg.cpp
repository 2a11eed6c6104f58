/// \file
/// Alpha by hue, lightness and saturation.

#include "il/loops/keyer/tablekey.h"

#include <vfil/tablekeyer.h>

using namespace vfil;

const wchar_t* const vfILChromaKeyImg::m_ClassName = L"vfILChromaKeyImg";

const wchar_t* vfILChromaKeyImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILChromaKeyImg::Verify()
{
    if (vfILMonadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (OutputFormat() != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    if (m_hueMap == nullptr || m_lightnessMap == nullptr || m_saturationMap == nullptr)
        return Fail(0x10018, "%s ERROR Verify: Invalid input LUT\n", GetClassNameW());
    return VFIL_SUCCESS;
}

void vfILChromaKeyImg::SetMatteMapLUT(void* const lut)
{
    m_matteMap = lut;
}

void* vfILChromaKeyImg::GetMatteMapLUT() const
{
    return m_matteMap;
}

void vfILChromaKeyImg::SetHueMapLUT(void* const lut)
{
    m_hueMap = lut;
}

void* vfILChromaKeyImg::GetHueMapLUT() const
{
    return m_hueMap;
}

void vfILChromaKeyImg::SetLightnessMapLUT(void* const lut)
{
    m_lightnessMap = lut;
}

void* vfILChromaKeyImg::GetLightnessMapLUT() const
{
    return m_lightnessMap;
}

void vfILChromaKeyImg::SetSaturationMapLUT(void* const lut)
{
    m_saturationMap = lut;
}

void* vfILChromaKeyImg::GetSaturationMapLUT() const
{
    return m_saturationMap;
}

void vfILChromaKeyImg::KeepOriginalAlpha(int keep)
{
    m_keepOriginalAlpha = keep;
}

int vfILChromaKeyImg::IsKeepOriginalAlpha() const
{
    return m_keepOriginalAlpha;
}

void vfILChromaKeyImg::SetConversionFactors(double, double, double)
{}

void vfILChromaKeyImg::GetConversionFactors(double*, double*, double*) const
{}

void vfILChromaKeyImg::SetKeyType(long)
{}

void vfILChromaKeyImg::SetFgSurValue(double)
{}

void vfILChromaKeyImg::SetForegoundSurpress(int)
{}

void vfILChromaKeyImg::InvertKey(int)
{}

vfILStatus vfILChromaKeyImg::DoEffect()
{
    const vfILFormatInfo& format = *Run().picture.format;
    if (format.id == PXFormat_RGBA64) return Process16();
    if (format.id != PXFormat_RGBA32) return Fail(0x1000D, GetClassNameW());
    if (m_hueMap == nullptr || m_lightnessMap == nullptr || m_saturationMap == nullptr)
        return Fail(0x10018, "%s ERROR Verify: Invalid input LUT\n", GetClassNameW());
    const vfILStatus status = Process8();
    TellAlphaIsNew(GetOutputImg());
    return status;
}

vfILStatus vfILChromaKeyImg::Process16()
{
    return Fail(0x1000D, GetClassNameW());
}

unsigned short vfILChromaKeyImg::ChromaKey16(unsigned short value)
{
    return static_cast<unsigned short>(value ^ 0xFFFF);
}

vfILStatus vfILChromaKeyImg::Process8()
{
    const bool mask = Run().mask.first != nullptr;
    const bool keep = m_keepOriginalAlpha != 0;
    if (m_matteMap != nullptr && mask)
        return keep ? ProcessMatteMapMaskKeepAlpha8() : ProcessMatteMapMaskNoKeepAlpha8();
    if (m_matteMap != nullptr)
        return keep ? ProcessMatteMapNoMaskKeepAlpha8() : ProcessMatteMapNoMaskNoKeepAlpha8();
    if (mask) return keep ? ProcessNoMatteMapMaskKeepAlpha8() : ProcessNoMatteMapMaskNoKeepAlpha8();
    return keep ? ProcessNoMatteMapNoMaskKeepAlpha8() : ProcessNoMatteMapNoMaskNoKeepAlpha8();
}

template <bool matteMap, bool mask, bool keepAlpha>
vfILStatus vfILChromaKeyImg::Key8()
{
    const void* const matte = matteMap ? m_matteMap : nullptr;
    HlsKeyTables tables{};
    MapAlphas(m_hueMap, matte, tables.alphaOfHue);
    CollectFull(m_lightnessMap, tables.outsideLightnesses);
    CollectFull(m_saturationMap, tables.outsideSaturations);
    tables.outsideAlpha = MatteOf(matte, 255);
    const HlsKeyRow key = FindTableKeyRows(m_simdAvailable != 0).hlsKey[keepAlpha][Run().streaming];
    RunKeyedRows<mask>(
        *this, Run(), InputWalk(),
        [&](const std::uint8_t* in, std::uint8_t* out, std::size_t pixels) { key(in, out, pixels, tables); });
    return VFIL_SUCCESS;
}

vfILStatus vfILChromaKeyImg::ProcessMatteMapMaskKeepAlpha8()
{
    return Key8<true, true, true>();
}

vfILStatus vfILChromaKeyImg::ProcessMatteMapMaskNoKeepAlpha8()
{
    return Key8<true, true, false>();
}

vfILStatus vfILChromaKeyImg::ProcessMatteMapNoMaskKeepAlpha8()
{
    return Key8<true, false, true>();
}

vfILStatus vfILChromaKeyImg::ProcessMatteMapNoMaskNoKeepAlpha8()
{
    return Key8<true, false, false>();
}

vfILStatus vfILChromaKeyImg::ProcessNoMatteMapMaskKeepAlpha8()
{
    return Key8<false, true, true>();
}

vfILStatus vfILChromaKeyImg::ProcessNoMatteMapMaskNoKeepAlpha8()
{
    return Key8<false, true, false>();
}

vfILStatus vfILChromaKeyImg::ProcessNoMatteMapNoMaskKeepAlpha8()
{
    return Key8<false, false, true>();
}

vfILStatus vfILChromaKeyImg::ProcessNoMatteMapNoMaskNoKeepAlpha8()
{
    return Key8<false, false, false>();
}

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
    return CheckTables(OutputFormat(), HasTables(), GetClassNameW());
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

void vfILChromaKeyImg::SetKeyType(long)
{}

void vfILChromaKeyImg::SetFgSurValue(double)
{}

void vfILChromaKeyImg::SetForegoundSurpress(int)
{}

bool vfILChromaKeyImg::HasTables() const
{
    return m_hueMap != nullptr && m_lightnessMap != nullptr && m_saturationMap != nullptr;
}

vfILStatus vfILChromaKeyImg::DoEffect()
{
    const GUID& format = FormatOf(Run());
    if (format == PXFormat_RGBA64) return Process16();
    if (CheckTables(format, HasTables(), GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
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

vfILStatus vfILChromaKeyImg::Key8(const void* matteMap, bool mask, bool keepAlpha)
{
    HlsKeyTables tables{};
    MapAlphas(m_hueMap, matteMap, tables.alphaOfHue);
    CollectFull(m_lightnessMap, tables.outsideLightnesses);
    CollectFull(m_saturationMap, tables.outsideSaturations);
    tables.outsideAlpha = MatteOf(matteMap, 255);
    const HlsKeyRow key = FindTableKeyRows(m_simdAvailable != 0).hlsKey[keepAlpha][Run().streaming];
    RunKeyedRows(
        *this, Run(), InputWalk(), mask,
        [&](const std::uint8_t* in, std::uint8_t* out, std::size_t pixels) { key(in, out, pixels, tables); });
    return VFIL_SUCCESS;
}

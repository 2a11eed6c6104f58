/// \file
/// Two pictures become the fields of one.

#include "il/loops/field/fieldrows.h"

#include "il/rows/field/weaverows.h"

using namespace vfil;

const wchar_t* const vfILInterlace::m_ClassName = L"vfILInterlace";

vfILInterlace::~vfILInterlace() = default;

const wchar_t* vfILInterlace::GetClassNameW() const
{
    return m_ClassName;
}

IPXImage* vfILInterlace::GetInputImgA() const
{
    return m_inputImgA;
}

void vfILInterlace::SetInputImgA(IPXImage* image)
{
    m_inputImgA = image;
}

IPXImage* vfILInterlace::GetInputImgB() const
{
    return m_inputImgB;
}

void vfILInterlace::SetInputImgB(IPXImage* image)
{
    m_inputImgB = image;
}

vfILStatus vfILInterlace::Verify()
{
    if (VerifyMode(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (VerifyPixels(m_inputImgA, GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (VerifyPixels(m_inputImgB, GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    const ImageView a(m_inputImgA);
    if (!IsFieldFormat(*a.format)) return Fail(0x1000D, GetClassNameW());
    if (VerifyOutput(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!(FormatOf(m_inputImgA) == FormatOf(m_inputImgB))) return Fail(0x1000E, GetClassNameW());
    if (!(a.Box() == ImageView(m_inputImgB).Box())) return Fail(0x1003D, GetClassNameW());
    const bool isWhole =
        GetROI() == ImageView(GetOutputImg()).Box() && GetOutputOffset() == vfILVector2l(0, 0);
    if (a.format->topDown && !isWhole) return Fail(0x10060, GetClassNameW());
    if (GetDefaultColor().Verify() != 1) return Fail(0x10004, GetClassNameW());
    return VerifyRegion(GetClassNameW());
}

vfILStatus vfILInterlace::DoEffect()
{
    const RegionRows inputs[2] = {RegionRows(Run().a), RegionRows(Run().b)};
    const RegionRows output(Run().output);
    const WeaveRow weave = FindWeaveRow(m_simdAvailable != 0, Run().streaming);
    const auto rowFrom = [&](long row) { return inputs[(Run().validBox.GetOffsetY() + row) & 1][row]; };
    ForEachFieldRow(*this, Run(), [&](long row, long next) {
        const unsigned char* const from = rowFrom(row);
        if (from != output[row]) weave(from, rowFrom(next), output[row], Run().rowBytes);
    });
    return VFIL_SUCCESS;
}

long vfILInterlaceFields(IPXImage* a, IPXImage* b, IPXImage* out)
{
    vfILInterlace interlace;
    interlace.SetInputImgA(a);
    interlace.SetInputImgB(b);
    interlace.SetOutputImg(out);
    constexpr auto kFailed = static_cast<std::int32_t>(0x80004005);
    return interlace.Execute() == VFIL_SUCCESS ? 0 : kFailed;
}

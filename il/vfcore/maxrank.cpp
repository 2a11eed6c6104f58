/// \file
/// The brightest pixel of a window.

#include "il/loops/rank/rankextreme.h"

#include <vfil/rank.h>

using namespace vfil;

const wchar_t* const vfILMaxRankImg::m_ClassName = L"vfILMaxRankImg";

vfILMaxRankImg::vfILMaxRankImg()
{
    SetRadius(1.0F);
    AllowBands();
}

const wchar_t* vfILMaxRankImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMaxRankImg::Verify()
{
    return VerifyFrame(GetClassNameW());
}

vfILStatus vfILMaxRankImg::PrepareData()
{
    WindowShape shape;
    return FindExtremeShape(*this, ViewInput(), shape) ? PrepareWindows(shape.Radius()) : OutOfMemory();
}

vfILStatus vfILMaxRankImg::DoEffect()
{
    return MaxRank8() && MaxRank16() ? VFIL_SUCCESS : OutOfMemory();
}

vfILStatus vfILMaxRankImg::OutOfMemory()
{
    return Fail(0x10001, "%s ERROR: insufficient memory space\n", GetClassNameW());
}

bool vfILMaxRankImg::MaxRank8()
{
    return RunRankExtremes<ByteFormats>(*this, Run(), true, m_simdAvailable != 0);
}

bool vfILMaxRankImg::MaxRank16()
{
    return RunRankExtremes<WordFormats>(*this, Run(), true, m_simdAvailable != 0);
}

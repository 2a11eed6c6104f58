/// \file
/// The brightest pixel of a window.

#include "il/loops/rank/rankextreme.h"

#include <vfil/rank.h>

#include <new>

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

vfILStatus vfILMaxRankImg::DoEffect()
try {
    MaxRank8();
    MaxRank16();
    return VFIL_SUCCESS;
} catch (const std::bad_alloc&) {
    return Fail(0x10001, "%s ERROR: insufficient memory space\n", GetClassNameW());
}

void vfILMaxRankImg::MaxRank8()
{
    RunRankExtremes<ByteFormats>(*this, Run(), true, m_simdAvailable != 0);
}

void vfILMaxRankImg::MaxRank16()
{
    RunRankExtremes<WordFormats>(*this, Run(), true, m_simdAvailable != 0);
}

/// \file
/// The darkest pixel of a window.

#include "il/loops/rank/rankextreme.h"

#include <vfil/rank.h>

#include <new>

using namespace vfil;

const wchar_t* const vfILMinRankImg::m_ClassName = L"vfILMinRankImg";

vfILMinRankImg::vfILMinRankImg()
{
    SetRadius(1.0F);
    AllowBands();
}

const wchar_t* vfILMinRankImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMinRankImg::Verify()
{
    return VerifyFrame(GetClassNameW());
}

vfILStatus vfILMinRankImg::DoEffect()
try {
    MinRank8();
    MinRank16();
    return VFIL_SUCCESS;
} catch (const std::bad_alloc&) {
    return Fail(0x10001, "%s ERROR: insufficient memory space\n", GetClassNameW());
}

void vfILMinRankImg::MinRank8()
{
    RunRankExtremes<ByteFormats>(*this, Run(), false, m_simdAvailable != 0);
}

void vfILMinRankImg::MinRank16()
{
    RunRankExtremes<WordFormats>(*this, Run(), false, m_simdAvailable != 0);
}

/// \file
/// The darkest pixel of a window.

#include "il/loops/rank/rankextreme.h"

#include <vfil/rank.h>

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

vfILStatus vfILMinRankImg::PrepareData()
{
    WindowShape shape;
    return FindExtremeShape(*this, ViewInput(), shape) ? PrepareWindows(shape.Radius()) : OutOfMemory();
}

vfILStatus vfILMinRankImg::DoEffect()
{
    return MinRank8() && MinRank16() ? VFIL_SUCCESS : OutOfMemory();
}

vfILStatus vfILMinRankImg::OutOfMemory()
{
    return Fail(0x10001, "%s ERROR: insufficient memory space\n", GetClassNameW());
}

bool vfILMinRankImg::MinRank8()
{
    return RunRankExtremes<ByteFormats>(*this, Run(), false, m_simdAvailable != 0);
}

bool vfILMinRankImg::MinRank16()
{
    return RunRankExtremes<WordFormats>(*this, Run(), false, m_simdAvailable != 0);
}

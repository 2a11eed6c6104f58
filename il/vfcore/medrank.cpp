/// \file
/// The pixel of middle brightness of a window.

#include "il/loops/rank/rankmedian.h"

#include <vfil/rank.h>

using namespace vfil;

const wchar_t* const vfILMedianRankImg::m_ClassName = L"vfILMedianRankImg";

vfILMedianRankImg::vfILMedianRankImg()
{
    SetRadius(1.0F);
    AllowBands();
}

const wchar_t* vfILMedianRankImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMedianRankImg::Verify()
{
    return VerifyFrame(GetClassNameW());
}

vfILStatus vfILMedianRankImg::DoEffect()
{
    if (MedianRank8() && MedianRank16()) return VFIL_SUCCESS;
    return Fail(0x10001, "%s ERROR Median Rank: insufficient memory space\n", GetClassNameW());
}

bool vfILMedianRankImg::MedianRank8()
{
    return RunMedians<ByteFormats>(*this, Run(), {-1, m_simdAvailable != 0});
}

bool vfILMedianRankImg::MedianRank16()
{
    return RunMedians<WordFormats>(*this, Run(), {-1, m_simdAvailable != 0});
}

/// \file
/// The median of pixels that differ from it by more than a threshold.

#include "il/loops/rank/rankmedian.h"

#include <vfil/rank.h>

using namespace vfil;

const wchar_t* const vfILSelectiveRankImg::m_ClassName = L"vfILSelectiveRankImg";

vfILSelectiveRankImg::vfILSelectiveRankImg()
{
    SetRadius(1.0F);
    AllowBands();
}

const wchar_t* vfILSelectiveRankImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILSelectiveRankImg::Verify()
{
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!(m_threshold >= 0 && m_threshold <= 1)) {
        return Fail(0x10046, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

void vfILSelectiveRankImg::SetThreshold(double threshold)
{
    m_threshold = threshold;
}

double vfILSelectiveRankImg::GetThreshold() const
{
    return m_threshold;
}

vfILStatus vfILSelectiveRankImg::DoEffect()
{
    if (Process8() && Process16()) return VFIL_SUCCESS;
    return Fail(0x10001, "%s ERROR: insufficient memory space\n", GetClassNameW());
}

bool vfILSelectiveRankImg::Process8()
{
    return RunMedians<ByteFormats>(*this, Run(), {RoundHalfAway(m_threshold * 255.0), m_simdAvailable != 0});
}

bool vfILSelectiveRankImg::Process16()
{
    return RunMedians<WordFormats>(*this, Run(),
                                   {RoundHalfAway(m_threshold * 65535.0), m_simdAvailable != 0});
}

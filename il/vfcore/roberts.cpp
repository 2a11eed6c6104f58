/// \file
/// The edge detector Roberts.

#include "il/loops/edge/edgerun.h"

using namespace vfil;

const wchar_t* const vfILRobertsImg::m_ClassName = L"vfILRobertsImg";

const wchar_t* vfILRobertsImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILRobertsImg::DoEffect()
{
    const EdgeRun run{*this, Run(), FormatOf(Run()), m_simdAvailable != 0};
    if (GetType() == VFIL_EDGE_ANGLE) return RunAngle(run, AngleOp::Roberts);
    return RunEdges(run, {{EdgeOp::Roberts}}, GetEdgeSensitivity(), GetBias());
}

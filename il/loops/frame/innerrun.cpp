/// \file
/// Processors that another one runs within its own run.

#include "il/loops/frame/innerrun.h"

#include <utility>

namespace vfil {

namespace {

thread_local const vfILProcessor* t_outer = nullptr;

/// An inner run may be the outer one of another, to which the question is passed on.
int AskOuter()
{
    return t_outer->MustInterrupt();
}

} // namespace

SharedInterruption::SharedInterruption(const vfILProcessor& outer, vfILProcessor& inner)
    : m_last(std::exchange(t_outer, &outer))
{
    inner.SetInterruptFct(AskOuter, nullptr);
}

SharedInterruption::~SharedInterruption()
{
    t_outer = m_last;
}

} // namespace vfil

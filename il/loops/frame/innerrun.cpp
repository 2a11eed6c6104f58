/// \file
/// Processors that another one runs within its own run.

#include "il/loops/frame/innerrun.h"

#include <utility>

namespace vfil {

thread_local const SharedInterruption* SharedInterruption::t_current = nullptr;

/// The outer processor may ask the one that is outer to it, by this same function.
int SharedInterruption::AskOuter()
{
    const SharedInterruption* const asked = std::exchange(t_current, t_current->m_last);
    const int stops = asked->m_outer.MustInterrupt();
    t_current = asked;
    return stops;
}

SharedInterruption::SharedInterruption(const vfILProcessor& outer, vfILProcessor& inner)
    : m_outer(outer), m_last(std::exchange(t_current, this))
{
    inner.SetInterruptFct(AskOuter, nullptr);
}

SharedInterruption::~SharedInterruption()
{
    t_current = m_last;
}

} // namespace vfil

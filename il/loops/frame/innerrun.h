/// \file
/// Processors that another one runs within its own run.
#pragma once

#include <vfil/frame.h>

#include <utility>

namespace vfil {

/// For its lifetime the inner processor stops when the outer one must. An interrupt function takes no
/// argument, so the outer processor waits here for it, once a thread.
class SharedInterruption {
public:
    SharedInterruption(const vfILProcessor& outer, vfILProcessor& inner)
        : m_last(std::exchange(s_outer, &outer))
    {
        inner.SetInterruptFct(AskOuter, nullptr);
    }
    ~SharedInterruption() { s_outer = m_last; }
    SharedInterruption(const SharedInterruption&) = delete;
    SharedInterruption& operator=(const SharedInterruption&) = delete;

private:
    /// An inner run may be the outer one of another, to which the question is passed on.
    static int AskOuter() { return s_outer->MustInterrupt(); }

    const vfILProcessor* m_last;
    static inline thread_local const vfILProcessor* s_outer = nullptr;
};

} // namespace vfil

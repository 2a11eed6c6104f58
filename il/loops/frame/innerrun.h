/// \file
/// Processors that another one runs within its own run.
#pragma once

#include <vfil/processor.h>

namespace vfil {

/// For its lifetime the inner processor stops when the outer one must. An interrupt function takes no
/// argument, so the outer processor waits for it in a variable of the thread. The outer one may be the inner
/// one of another.
class SharedInterruption {
public:
    SharedInterruption(const vfILProcessor& outer, vfILProcessor& inner);
    ~SharedInterruption();
    SharedInterruption(const SharedInterruption&) = delete;
    SharedInterruption& operator=(const SharedInterruption&) = delete;

private:
    static int AskOuter();

    const vfILProcessor& m_outer;
    const SharedInterruption* m_last;
    static thread_local const SharedInterruption* t_current;
};

} // namespace vfil

/// \file
/// The interrupt key.
#include "tools/vfil/interrupt.h"

#include <csignal>

namespace vfil::tool {

namespace {

volatile long g_interrupted = 0;

extern "C" void SetInterrupted(int)
{
    g_interrupted = 1;
}

} // namespace

void CatchInterrupts()
{
    std::signal(SIGINT, SetInterrupted);
    std::signal(SIGTERM, SetInterrupted);
    // Writing to a closed pipe is an error like any other.
    std::signal(SIGPIPE, SIG_IGN);
}

volatile long* InterruptFlag()
{
    return &g_interrupted;
}

} // namespace vfil::tool

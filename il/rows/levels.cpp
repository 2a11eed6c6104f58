/// \file
/// What the levels ask of the machine.
#include "il/rows/levels.h"

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace vfil {

namespace {

Level FindBestLevel()
{
#if defined(__x86_64__)
    __builtin_cpu_init();
    if (__builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
        __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq"))
        return Level::Avx512;
    return __builtin_cpu_supports("avx2") ? Level::Avx2 : Level::Sse2;
#else
    return Level::Plain;
#endif
}

} // namespace

void FinishStreaming()
{
#if defined(__x86_64__)
    _mm_sfence();
#endif
}

Level BestLevel()
{
    static const Level level = FindBestLevel();
    return level;
}

} // namespace vfil

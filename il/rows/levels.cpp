/// \file
/// Asks the machine once which level it has.
#include "il/rows/levels.h"

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

Level BestLevel()
{
    static const Level level = FindBestLevel();
    return level;
}

} // namespace vfil

/// \file
/// What the levels ask of the machine.
#include "il/rows/levels.h"

#include "il/rows/vecfence.h"

#include <cstdlib>
#include <cstring>

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
    FenceStores();
}

void RefuseNull(const void* pointers, std::size_t count)
{
    const auto* bytes = static_cast<const unsigned char*>(pointers);
    for (std::size_t i = 0; i < count; ++i) {
        void (*pointer)() = nullptr;
        std::memcpy(&pointer, bytes + i * sizeof pointer, sizeof pointer);
        if (pointer == nullptr) std::abort();
    }
}

Level BestLevel()
{
    static const Level level = FindBestLevel();
    return level;
}

} // namespace vfil

/// \file
/// The fence behind stores around the cache. Included by levels.cpp alone.
#pragma once

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace vfil {
namespace {

/// Makes what StoreStreaming stored on this thread be seen before anything that is stored later.
inline void FenceStores()
{
#if defined(__x86_64__)
    _mm_sfence();
#endif
}

} // namespace
} // namespace vfil

/// \file
/// How the vector forms of the kernels of the colour ramps store. Included by their *_simd.cpp sources alone.
#pragma once

#include "il/rows/vec.h"

namespace vfil {
namespace {

/// Fewer bytes than a vector.
inline void StorePart(std::uint8_t* out, U8 v, std::size_t bytes)
{
    std::uint8_t whole[kBytes];
    Store(whole, v);
    std::memcpy(out, whole, bytes);
}

template <bool streaming>
void StoreBlock(std::uint8_t* out, U8 v)
{
    if constexpr (streaming) {
        StoreStreaming(out, v);
    } else {
        Store(out, v);
    }
}

/// Bytes of a row before those that go around the cache; all where that cannot be.
template <bool streaming>
std::size_t BytesBefore(const std::uint8_t* out, std::size_t bytes, std::size_t pixelBytes)
{
    if constexpr (!streaming) return 0;
    const std::size_t head = BytesToAligned(out);
    return head % pixelBytes != 0 || head > bytes ? bytes : head;
}

} // namespace
} // namespace vfil

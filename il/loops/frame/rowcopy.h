/// \file
/// Copying and filling one row of bytes.
#pragma once

#include "il/rows/pixel/pointrows.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace vfil {

/// Copies a row; the ranges may overlap. Long rows that do not overlap go through the vector copy when it is
/// allowed.
///
/// \param streaming The row is part of a large copy: see kStreamingBytes.
inline void MoveRow(bool useVectors, const unsigned char* from, unsigned char* to, std::size_t bytes,
                    bool streaming = false)
{
    const auto distance = reinterpret_cast<std::uintptr_t>(to) - reinterpret_cast<std::uintptr_t>(from);
    const bool apart = distance >= bytes && std::uintptr_t{0} - distance >= bytes;
    constexpr std::size_t kShort = 256;
    if (useVectors && bytes > kShort && apart) {
        CopyBytes(true, from, to, bytes, streaming);
    } else if (bytes != 0) {
        std::memmove(to, from, bytes);
    }
}

/// Repeats a group of bytes over a row.
inline void FillRow(unsigned char* row, std::size_t bytes, const unsigned char* group, std::size_t groupBytes)
{
    std::size_t filled = std::min(bytes, groupBytes);
    std::memcpy(row, group, filled);
    while (filled < bytes && filled != 0) {
        const std::size_t more = std::min(filled, bytes - filled);
        std::memcpy(row + filled, row, more);
        filled += more;
    }
}

} // namespace vfil

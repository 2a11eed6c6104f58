/// \file
/// What the row kernels of the one-input point operators take, and the table of pointers. Types only, as in
/// compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// The output may be the input, exactly, but may not partly overlap it. Rows need no alignment; nothing past
/// the count is read or written.
///
/// \param select  a pixel's bytes, 0xFF in each channel to invert; the lowest byte is red.
using InvertRow8 = void (*)(const std::uint8_t* in, std::uint8_t* out, std::size_t pixels,
                            std::uint32_t select);
using InvertMono8 = void (*)(const std::uint8_t* in, std::uint8_t* out, std::size_t samples);
/// \param select  as in 8 bits, 0xFFFF in each channel to invert.
using InvertRow16 = void (*)(const std::uint16_t* in, std::uint16_t* out, std::size_t pixels,
                             std::uint64_t select);
using InvertMono16 = void (*)(const std::uint16_t* in, std::uint16_t* out, std::size_t samples);
using CopyKernel = void (*)(const void* in, void* out, std::size_t bytes);

/// The kernels of the one-input operators, for one level; each is [streaming].
struct PointRows {
    InvertRow8 invert8[2];
    InvertMono8 invertMono8[2];
    InvertRow16 invert16[2];
    InvertMono16 invertMono16[2];
    CopyKernel copy[2];
};

} // namespace vfil

/// \file
/// What the row kernels of the one-input point operators take, and the table of pointers. Types only, as in
/// compparams.h.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// The bits of a pixel of four samples.
template <class Sample>
struct PixelWord;
template <>
struct PixelWord<std::uint8_t> {
    using Bits = std::uint32_t;
};
template <>
struct PixelWord<std::uint16_t> {
    using Bits = std::uint64_t;
};
template <class Sample>
using PixelBits = typename PixelWord<Sample>::Bits;

/// The output may be the input, exactly, but may not partly overlap it. Rows need no alignment; nothing past
/// the count is read or written.
///
/// \param select  a pixel's bits, all ones in each channel to invert; the lowest are red.
template <class Sample>
using InvertRow = void (*)(const Sample* in, Sample* out, std::size_t pixels, PixelBits<Sample> select);
template <class Sample>
using InvertMono = void (*)(const Sample* in, Sample* out, std::size_t samples);
using CopyKernel = void (*)(const void* in, void* out, std::size_t bytes);

/// The kernels of the one-input operators, for one level; each is [streaming].
struct PointRows {
    InvertRow<std::uint8_t> invert8[2];
    InvertMono<std::uint8_t> invertMono8[2];
    InvertRow<std::uint16_t> invert16[2];
    InvertMono<std::uint16_t> invertMono16[2];
    CopyKernel copy[2];
};

} // namespace vfil

/// \file
/// The plain forms of the one-input kernels, and the table of their levels.
#include "il/rows/pixel/pointrows.h"

#include <cstring>

namespace vfil {

namespace {

/// A selected channel is all ones in select, and x ^ all ones is full - x.
template <class Sample>
void PlainInvert(const Sample* in, Sample* out, std::size_t pixels, PixelBits<Sample> select)
{
    for (std::size_t i = 0; i < 4 * pixels; ++i) {
        const auto channel = static_cast<Sample>(select >> (i % 4 * 8 * sizeof(Sample)));
        out[i] = static_cast<Sample>(in[i] ^ channel);
    }
}

template <class Sample>
void PlainInvertMono(const Sample* in, Sample* out, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i)
        out[i] = static_cast<Sample>(~in[i]);
}

void PlainCopy(const void* in, void* out, std::size_t bytes)
{
    if (bytes != 0) std::memcpy(out, in, bytes);
}

const LevelTables<PointRows>& Tables()
{
    static const LevelTables<PointRows> tables(
        {
            .invert8 = {PlainInvert<std::uint8_t>, PlainInvert<std::uint8_t>},
            .invertMono8 = {PlainInvertMono<std::uint8_t>, PlainInvertMono<std::uint8_t>},
            .invert16 = {PlainInvert<std::uint16_t>, PlainInvert<std::uint16_t>},
            .invertMono16 = {PlainInvertMono<std::uint16_t>, PlainInvertMono<std::uint16_t>},
            .copy = {PlainCopy, PlainCopy},
        },
        VFIL_FILLS);
    return tables;
}

const PointRows& Rows(bool useVectors)
{
    return PointRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace

const PointRows& PointRowsAt(Level level)
{
    return Tables().At(level);
}

template <>
InvertRow<std::uint8_t> FindInvertRow(bool useVectors, bool streaming)
{
    return Rows(useVectors).invert8[streaming];
}

template <>
InvertRow<std::uint16_t> FindInvertRow(bool useVectors, bool streaming)
{
    return Rows(useVectors).invert16[streaming];
}

template <>
InvertMono<std::uint8_t> FindInvertMono(bool useVectors, bool streaming)
{
    return Rows(useVectors).invertMono8[streaming];
}

template <>
InvertMono<std::uint16_t> FindInvertMono(bool useVectors, bool streaming)
{
    return Rows(useVectors).invertMono16[streaming];
}

void CopyBytes(bool useVectors, const void* in, void* out, std::size_t bytes, bool streaming)
{
    Rows(useVectors).copy[streaming](in, out, bytes);
}

} // namespace vfil

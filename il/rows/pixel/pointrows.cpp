/// \file
/// The plain forms of the one-input kernels, and the table of their levels.
#include "il/rows/pixel/pointrows.h"

#include <cstring>

namespace vfil {

namespace {

/// A selected channel is all ones in select, and x ^ all ones is full - x.
template <class Sample, class Pixel>
void PlainInvert(const Sample* in, Sample* out, std::size_t pixels, Pixel select)
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
            {PlainInvert<std::uint8_t, std::uint32_t>, PlainInvert<std::uint8_t, std::uint32_t>},
            {PlainInvertMono<std::uint8_t>, PlainInvertMono<std::uint8_t>},
            {PlainInvert<std::uint16_t, std::uint64_t>, PlainInvert<std::uint16_t, std::uint64_t>},
            {PlainInvertMono<std::uint16_t>, PlainInvertMono<std::uint16_t>},
            {PlainCopy, PlainCopy},
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

InvertRow8 FindInvertRow8(bool useVectors, bool streaming)
{
    return Rows(useVectors).invert8[streaming];
}

InvertMono8 FindInvertMono8(bool useVectors, bool streaming)
{
    return Rows(useVectors).invertMono8[streaming];
}

InvertRow16 FindInvertRow16(bool useVectors, bool streaming)
{
    return Rows(useVectors).invert16[streaming];
}

InvertMono16 FindInvertMono16(bool useVectors, bool streaming)
{
    return Rows(useVectors).invertMono16[streaming];
}

void CopyBytes(bool useVectors, const void* in, void* out, std::size_t bytes, bool streaming)
{
    Rows(useVectors).copy[streaming](in, out, bytes);
}

} // namespace vfil

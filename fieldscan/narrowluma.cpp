/// \file
/// Pictures to narrow luma.
#include "fieldscan/narrowluma.h"

#include <bit>

namespace vfil::fieldscan {

namespace {

// Pixels that become one sample: a divisor of kLevel.
long StepOf(long width)
{
    if (width >= 1280) return 8;
    if (width >= 320) return 4;
    return width >= 160 ? 2 : 1;
}

// The byte of a pixel that is looked at; of two bytes the higher one.
int ByteOf(const vfILFormatInfo& info)
{
    const bool first = info.model == PXColorModel_MONO || (info.ycc && !info.chromaFirst && !info.alphaPlane);
    const int high = std::endian::native == std::endian::little ? info.sampleBytes - 1 : 0;
    return (first ? 0 : info.sampleBytes) + high;
}

} // namespace

NarrowLuma NarrowLumaOf(const host::Picture& picture)
{
    const vfILFormatInfo& info = picture.FormatInfo();
    const long step = StepOf(picture.Width());
    const long pixel = info.subsampled ? 2 : info.pixelBytes;
    const int scale = kLevel / static_cast<int>(step);
    NarrowLuma luma{.columns = picture.Width() / step, .rows = picture.Height(), .samples = {}};
    luma.samples.resize(static_cast<std::size_t>(luma.columns) * static_cast<std::size_t>(luma.rows));
    std::int16_t* to = luma.samples.data();
    for (long y = luma.rows; y-- > 0;) {
        const std::uint8_t* from = picture.Row(y) + ByteOf(info);
        for (long x = 0; x < luma.columns; ++x) {
            int sum = 0;
            for (long i = 0; i < step; ++i, from += pixel)
                sum += *from;
            *to++ = static_cast<std::int16_t>(sum * scale);
        }
    }
    return luma;
}

} // namespace vfil::fieldscan

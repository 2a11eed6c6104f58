/// \file
/// A colour as one pixel of a format.

#include "il/loops/frame/colourpixel.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace vfil {

namespace {

void SetGroup(unsigned char* group, const vfILFormatInfo& format, const vfILColor& color)
{
    unsigned char ycca[4];
    color.GetColorAs32(ycca, format.model);
    const auto [y, cb, cr, alpha] = ycca;
    const unsigned char lumaFirst[5] = {y, cb, y, cr, alpha};
    const unsigned char chromaFirst[5] = {cb, y, cr, y, alpha};
    std::memcpy(group, format.chromaFirst ? chromaFirst : lumaFirst, 5);
}

} // namespace

bool ColourPixel::Set(const vfILFormatInfo& format, const vfILColor& color)
{
    if (format.pixelBytes == 0) return false;
    if (format.subsampled) {
        SetGroup(bytes, format, color);
        return true;
    }
    // Device-independent rows have no model of their own and hold RGB.
    const PXColorModel model = format.model == PXColorModel_UNKNOWN ? PXColorModel_RGB : format.model;
    std::uint16_t words[4] = {};
    switch (format.pixelBytes) {
    case 1:
        color.GetColorAs8(bytes, model);
        break;
    case 2:
        color.GetColorAs16(words, model);
        break;
    case 3:
        color.GetColorAs24(bytes, model);
        break;
    case 4:
        color.GetColorAs32(bytes, model);
        break;
    default:
        color.GetColorAs64(words, model);
        break;
    }
    if (format.sampleBytes == 2) std::memcpy(bytes, words, static_cast<std::size_t>(format.pixelBytes));
    if (format.blueFirst) std::swap(bytes[0], bytes[2]);
    return true;
}

} // namespace vfil

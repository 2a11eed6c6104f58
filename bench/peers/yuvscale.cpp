/// \file
/// Scales by libyuv. Its shrinking takes no mean of all that an output covers.
#include "bench/scales.h"

#include <libyuv.h>

namespace bench {

namespace {

constexpr int kRow = kWidth * 4;

void AddYuvScales()
{
    for (const Scale& scale : kScales) {
        if (scale.filter != ScaleFilter::Nearest && scale.filter != ScaleFilter::Bilinear) continue;
        const bool mixes = scale.filter == ScaleFilter::Bilinear;
        const libyuv::FilterMode mode = mixes ? libyuv::kFilterBilinear : libyuv::kFilterNone;
        Add(Named(scale.name, kRgba8), "libyuv", [scale, mode](const Frame& frame) {
            libyuv::ARGBScale(frame.Photo(PXFormat_RGBA32).Pixels(), kRow, scale.InWidth(), scale.InHeight(),
                              frame.out->Pixels(), kRow, scale.OutWidth(), scale.OutHeight(), mode);
        });
        Add(Named(scale.name, kMono8), "libyuv", [scale, mode](const Frame& frame) {
            libyuv::ScalePlane(frame.Photo(PXFormat_Mono8).Pixels(), kWidth, scale.InWidth(),
                               scale.InHeight(), frame.Out(PXFormat_Mono8).Pixels(), kWidth, scale.OutWidth(),
                               scale.OutHeight(), mode);
        });
    }
}

const Source s_source(AddYuvScales);

} // namespace
} // namespace bench

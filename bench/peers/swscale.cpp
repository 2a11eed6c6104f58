/// \file
/// Conversions by swscale, without resampling.
#include "bench/frames.h"

#include <memory>

extern "C" {
#include <libswscale/swscale.h>
}

namespace bench {

namespace {

struct Side {
    GUID format;
    AVPixelFormat pixels;
    int pixelBytes;
};

void AddCall(const char* operation, Side from, Side to, int weights)
{
    const int width = kWidth;
    const int height = kHeight;
    const std::shared_ptr<SwsContext> context(sws_getContext(width, height, from.pixels, width, height,
                                                             to.pixels, SWS_POINT, nullptr, nullptr, nullptr),
                                              sws_freeContext);
    if (!context) return;
    const int* coefficients = sws_getCoefficients(weights);
    sws_setColorspaceDetails(context.get(), coefficients, 0, coefficients, 0, 0, 1 << 16, 1 << 16);
    Add(operation, "swscale", [=](const Frame& frame) {
        const std::uint8_t* const in[] = {frame.In(from.format).Pixels(), nullptr, nullptr, nullptr};
        std::uint8_t* const out[] = {frame.Out(to.format).Pixels(), nullptr, nullptr, nullptr};
        const int inStride[] = {width * from.pixelBytes, 0, 0, 0};
        const int outStride[] = {width * to.pixelBytes, 0, 0, 0};
        sws_scale(context.get(), in, inStride, 0, height, out, outStride);
    });
}

void AddSwscale()
{
    const Side rgba{PXFormat_RGBA32, AV_PIX_FMT_RGBA, 4}, rgb{PXFormat_RGB24, AV_PIX_FMT_RGB24, 3};
    const Side uyvy{PXFormat_YUV422_601, AV_PIX_FMT_UYVY422, 2};
    const Side yuyv{PXFormat_YCC422_601, AV_PIX_FMT_YUYV422, 2};
    const Side uyvy709{PXFormat_YUV422_709, AV_PIX_FMT_UYVY422, 2};
    const Side deep{PXFormat_RGBA64, AV_PIX_FMT_RGBA64LE, 8};
    AddCall(kToUyvy601, rgba, uyvy, SWS_CS_ITU601);
    AddCall(kToUyvy709, rgba, uyvy709, SWS_CS_ITU709);
    AddCall(kToYuyv601, rgba, yuyv, SWS_CS_ITU601);
    AddCall(kRgb24ToUyvy, rgb, uyvy, SWS_CS_ITU601);
    AddCall(kFromUyvy601, uyvy, rgba, SWS_CS_ITU601);
    AddCall(kFromUyvy709, uyvy709, rgba, SWS_CS_ITU709);
    AddCall(kFromYuyv601, yuyv, rgba, SWS_CS_ITU601);
    AddCall(kUyvyToRgb24, uyvy, rgb, SWS_CS_ITU601);
    AddCall(k16To8, deep, rgba, SWS_CS_ITU601);
    AddCall(k8To16, rgba, deep, SWS_CS_ITU601);
    AddCall(kSwap, rgba, {PXFormat_BGRA32, AV_PIX_FMT_BGRA, 4}, SWS_CS_ITU601);
    AddCall(kExpand, rgb, rgba, SWS_CS_ITU601);
    AddCall(kDrop, rgba, rgb, SWS_CS_ITU601);
}

const Source s_source(AddSwscale);

} // namespace
} // namespace bench

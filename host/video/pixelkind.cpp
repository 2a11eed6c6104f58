/// \file
/// What a pixel format of FFmpeg is made of.

#include "host/video/pixelkind.h"

#include <algorithm>
#include <string_view>

namespace vfil::host {

namespace {

Model ModelOf(const AVPixFmtDescriptor& descriptor)
{
    if ((descriptor.flags & (AV_PIX_FMT_FLAG_RGB | AV_PIX_FMT_FLAG_PAL)) != 0) return Model::Rgb;
    return descriptor.nb_components <= 2 ? Model::Gray : Model::Ycc;
}

const char* Sampling(const PixelKind& kind)
{
    switch (kind.chromaShiftX * 4 + kind.chromaShiftY) {
    case 0:
        return "4:4:4";
    case 1:
        return "4:4:0";
    case 4:
        return "4:2:2";
    case 5:
        return "4:2:0";
    case 8:
        return "4:1:1";
    default:
        return "4:1:0";
    }
}

} // namespace

std::optional<PixelKind> KindOf(AVPixelFormat format)
{
    constexpr std::uint64_t kUnreadable =
        AV_PIX_FMT_FLAG_HWACCEL | AV_PIX_FMT_FLAG_BAYER | AV_PIX_FMT_FLAG_FLOAT;
    const AVPixFmtDescriptor* descriptor = av_pix_fmt_desc_get(format);
    if (descriptor == nullptr || (descriptor->flags & kUnreadable) != 0) return std::nullopt;
    const std::string_view name = descriptor->name;
    if (name.starts_with("xyz")) return std::nullopt;

    PixelKind kind;
    kind.format = format;
    kind.descriptor = descriptor;
    kind.model = ModelOf(*descriptor);
    kind.depth = 0;
    for (int c = 0; c < descriptor->nb_components; ++c) {
        kind.depth = std::max(kind.depth, descriptor->comp[c].depth);
    }
    if (kind.depth > 16) return std::nullopt;
    kind.alpha = (descriptor->flags & AV_PIX_FMT_FLAG_ALPHA) != 0;
    kind.chromaShiftX = descriptor->log2_chroma_w;
    kind.chromaShiftY = descriptor->log2_chroma_h;
    kind.fullRange = name.starts_with("yuvj");
    kind.palette = (descriptor->flags & AV_PIX_FMT_FLAG_PAL) != 0;
    return kind;
}

std::optional<PixelKind> KindOf(const vfILFormatInfo& format)
{
    const bool deep = format.sampleBytes == 2;
    if (format.alphaPlane) return KindOf(AV_PIX_FMT_YUVA422P);
    if (format.subsampled) return KindOf(format.chromaFirst ? AV_PIX_FMT_UYVY422 : AV_PIX_FMT_YUYV422);
    if (format.ycc) return KindOf(deep ? AV_PIX_FMT_YUVA444P16 : AV_PIX_FMT_YUVA444P);
    if (format.model == PXColorModel_MONO) return KindOf(deep ? AV_PIX_FMT_GRAY16 : AV_PIX_FMT_GRAY8);
    if (format.id == PXFormat_RGBA32) return KindOf(AV_PIX_FMT_RGBA);
    if (format.id == PXFormat_RGBA64) return KindOf(AV_PIX_FMT_RGBA64);
    return std::nullopt;
}

AVPixelFormat PlanarYcc(bool deep, bool alpha, int chromaShiftX)
{
    if (chromaShiftX == 0) {
        if (deep) return alpha ? AV_PIX_FMT_YUVA444P16 : AV_PIX_FMT_YUV444P16;
        return alpha ? AV_PIX_FMT_YUVA444P : AV_PIX_FMT_YUV444P;
    }
    if (deep) return alpha ? AV_PIX_FMT_YUVA422P16 : AV_PIX_FMT_YUV422P16;
    return alpha ? AV_PIX_FMT_YUVA422P : AV_PIX_FMT_YUV422P;
}

AVPixelFormat WithoutRange(AVPixelFormat format)
{
    switch (format) {
    case AV_PIX_FMT_YUVJ411P:
        return AV_PIX_FMT_YUV411P;
    case AV_PIX_FMT_YUVJ420P:
        return AV_PIX_FMT_YUV420P;
    case AV_PIX_FMT_YUVJ422P:
        return AV_PIX_FMT_YUV422P;
    case AV_PIX_FMT_YUVJ440P:
        return AV_PIX_FMT_YUV440P;
    case AV_PIX_FMT_YUVJ444P:
        return AV_PIX_FMT_YUV444P;
    default:
        return format;
    }
}

std::string Describe(const PixelKind& kind)
{
    const std::string depth = std::to_string(kind.depth) + "-bit ";
    if (kind.model == Model::Gray) return depth + "gray";
    return depth + (kind.model == Model::Rgb ? std::string("RGB") : std::string("YCC ") + Sampling(kind));
}

} // namespace vfil::host

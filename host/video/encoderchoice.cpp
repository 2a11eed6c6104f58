/// \file
/// Which container, codec and pixel format a clip is written in.

#include "host/video/encoderchoice.h"

#include "host/video/otherstreams.h"

#include <algorithm>
#include <limits>
#include <span>
#include <string_view>

namespace vfil::host {

namespace {

namespace fs = std::filesystem;

using Kinds = std::vector<PixelKind>;

std::string Quoted(const std::string& name)
{
    return "'" + name + "'";
}

const AVOutputFormat& ContainerFor(const fs::path& path, const VideoSettings& settings)
{
    SilenceLibav();
    if (!settings.container.empty()) {
        const AVOutputFormat* named = av_guess_format(settings.container.c_str(), nullptr, nullptr);
        // "y4m" and "mkv" are endings of names, and nobody calls their containers otherwise.
        if (named == nullptr)
            named = av_guess_format(nullptr, ("clip." + settings.container).c_str(), nullptr);
        if (named == nullptr)
            throw FileError(path, "no kind of clip is called " + Quoted(settings.container) +
                                      "; there are nut, yuv4mpegpipe, matroska, mov, mp4, avi and more");
        return *named;
    }
    const std::string name = path == "-" ? "-.nut" : path.string();
    const AVOutputFormat* guessed = av_guess_format(nullptr, name.c_str(), nullptr);
    // Numbered pictures and the like are no single file.
    if (guessed == nullptr || (guessed->flags & AVFMT_NOFILE) != 0 ||
        guessed->video_codec == AV_CODEC_ID_NONE)
        throw FileError(path, "no known kind of clip; name it .mov, .mp4, .mkv, .avi, .nut, .mpg or .y4m");
    return *guessed;
}

const AVCodec* NamedCodec(const fs::path& path, const std::string& name)
{
    const AVCodec* codec = avcodec_find_encoder_by_name(name.c_str());
    if (codec == nullptr) {
        const AVCodecDescriptor* descriptor = avcodec_descriptor_get_by_name(name.c_str());
        if (descriptor != nullptr) codec = avcodec_find_encoder(descriptor->id);
    }
    if (codec == nullptr || codec->type != AVMEDIA_TYPE_VIDEO)
        throw FileError(path,
                        "no video codec that can be written is called " + Quoted(name) +
                            "; there are ffv1, libx264, mpeg2video, prores_ks, qtrle, rawvideo and more");
    return codec;
}

/// The pixel formats of uncompressed video that players of a container know.
std::span<const AVPixelFormat> RawFormats(std::string_view container)
{
    static constexpr std::array kAvi{AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUYV422, AV_PIX_FMT_YUV420P,
                                     AV_PIX_FMT_BGR24, AV_PIX_FMT_BGRA};
    static constexpr std::array kMov{AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUYV422, AV_PIX_FMT_RGB24,
                                     AV_PIX_FMT_ARGB};
    static constexpr std::array kY4m{AV_PIX_FMT_YUV422P,   AV_PIX_FMT_YUV420P,   AV_PIX_FMT_YUV444P,
                                     AV_PIX_FMT_YUV411P,   AV_PIX_FMT_GRAY8,     AV_PIX_FMT_GRAY16,
                                     AV_PIX_FMT_YUV422P10, AV_PIX_FMT_YUV420P10, AV_PIX_FMT_YUV444P10,
                                     AV_PIX_FMT_YUV422P12, AV_PIX_FMT_YUV444P12, AV_PIX_FMT_YUV444P16};
    static constexpr std::array kAny{
        AV_PIX_FMT_UYVY422,   AV_PIX_FMT_YUYV422,   AV_PIX_FMT_YUV422P,   AV_PIX_FMT_YUVA422P,
        AV_PIX_FMT_YUV444P,   AV_PIX_FMT_YUVA444P,  AV_PIX_FMT_YUV420P,   AV_PIX_FMT_YUVA420P,
        AV_PIX_FMT_YUV411P,   AV_PIX_FMT_GRAY8,     AV_PIX_FMT_RGB24,     AV_PIX_FMT_RGBA,
        AV_PIX_FMT_YUV422P10, AV_PIX_FMT_YUV420P10, AV_PIX_FMT_YUV444P16, AV_PIX_FMT_YUVA444P16,
        AV_PIX_FMT_RGB48,     AV_PIX_FMT_RGBA64,    AV_PIX_FMT_GRAY16};
    if (container == "avi") return kAvi;
    if (container == "mov") return kMov;
    if (container == "yuv4mpegpipe") return kY4m;
    return kAny;
}

/// The kinds of frames that an encoder takes, as far as they can be written.
Kinds KindsOf(const AVOutputFormat& container, const AVCodec& codec)
{
    std::vector<AVPixelFormat> formats;
    if (codec.id == AV_CODEC_ID_RAWVIDEO || codec.id == AV_CODEC_ID_WRAPPED_AVFRAME) {
        const auto raw = RawFormats(container.name);
        formats.assign(raw.begin(), raw.end());
    } else {
        for (const AVPixelFormat* format = codec.pix_fmts; format != nullptr && *format != AV_PIX_FMT_NONE;
             ++format) {
            formats.push_back(*format);
        }
    }
    // Motion JPEG is of full range; others state their range apart from the pixel format.
    const bool fullRange = codec.id == AV_CODEC_ID_MJPEG;
    Kinds kinds;
    for (const AVPixelFormat format : formats) {
        const std::optional<PixelKind> kind = KindOf(format);
        if (kind && (kind->model != Model::Ycc || kind->fullRange == fullRange) && IsWritable(*kind))
            kinds.push_back(*kind);
    }
    return kinds;
}

bool HoldsAlpha(const Kinds& kinds)
{
    return std::ranges::any_of(kinds, &PixelKind::alpha);
}

bool Suits(const AVOutputFormat& container, const AVCodec* codec, const VideoSettings& settings)
{
    if (codec == nullptr || (codec->capabilities & AV_CODEC_CAP_EXPERIMENTAL) != 0) return false;
    const Kinds kinds = KindsOf(container, *codec);
    return Holds(container, codec->id) && !kinds.empty() &&
           (settings.alpha == AlphaState::None || HoldsAlpha(kinds));
}

const AVCodec& CodecFor(const fs::path& path, const AVOutputFormat& container, const VideoSettings& settings,
                        const ClipInput* like)
{
    const std::string_view name = container.name;
    // Y4M is uncompressed, and its writer makes the bytes itself.
    if (name == "yuv4mpegpipe" && (settings.codec.empty() || settings.codec == "rawvideo"))
        return *NamedCodec(path, "wrapped_avframe");
    if (!settings.codec.empty()) {
        const AVCodec* codec = NamedCodec(path, settings.codec);
        if (avformat_query_codec(&container, codec->id, FF_COMPLIANCE_NORMAL) == 0)
            throw FileError(path, "a file of kind " + std::string(name) + " does not hold " + settings.codec +
                                      "; choose another codec or name the file .mkv or .mov");
        return *codec;
    }
    if (path == "-") return *NamedCodec(path, "rawvideo");
    if (like != nullptr) {
        const AVCodec* same = avcodec_find_encoder(like->Parameters().codec_id);
        if (Suits(container, same, settings)) return *same;
    }
    if (name == "nut") return *NamedCodec(path, "ffv1");
    const AVCodec* usual = avcodec_find_encoder(container.video_codec);
    if (usual == nullptr || KindsOf(container, *usual).empty())
        throw FileError(path, "files of kind " + std::string(name) + " need a codec to be named");
    return *usual;
}

/// How much is lost, and needlessly stored, from one kind to another.
int Loss(const PixelKind& from, const PixelKind& to, bool needsAlpha)
{
    int loss = 0;
    loss += 100 * std::max(0, from.depth - to.depth) + 2 * std::max(0, to.depth - from.depth);
    for (const auto shift : {&PixelKind::chromaShiftX, &PixelKind::chromaShiftY}) {
        loss += 50 * std::max(0, to.*shift - from.*shift) + 20 * std::max(0, from.*shift - to.*shift);
    }
    if (needsAlpha && !to.alpha) loss += 100000;
    if (from.model != Model::Gray && to.model == Model::Gray) loss += 10000;
    if (!needsAlpha && to.alpha) loss += 10;
    if ((to.descriptor->flags & AV_PIX_FMT_FLAG_BE) != 0) loss += 1;
    if (to.format != from.format) loss += 3;
    if (to.model == Model::Ycc && (to.descriptor->flags & AV_PIX_FMT_FLAG_PLANAR) == 0) loss += 1;
    return loss;
}

int LossOfBest(const Kinds& kinds, const PixelKind& from, bool needsAlpha)
{
    int best = std::numeric_limits<int>::max();
    for (const PixelKind& kind : kinds) {
        if (kind.model == from.model) best = std::min(best, Loss(from, kind, needsAlpha));
    }
    return best;
}

bool IsOfMatrix(const vfILFormatInfo& format, Matrix matrix)
{
    return !format.ycc || (format.model == PXColorModel_YCC) == (matrix == Matrix::Bt601);
}

/// All that decides about the formats of a writer's frames.
struct Offer {
    const AVOutputFormat* container;
    const AVCodec* codec;
    const ClipInput* like;
    Kinds kinds;
};

Offer OfferOf(const fs::path& path, const VideoSettings& settings, const ClipInput* like)
{
    const AVOutputFormat& container = ContainerFor(path, settings);
    const AVCodec& codec = CodecFor(path, container, settings, like);
    Kinds kinds = KindsOf(container, codec);
    if (kinds.empty())
        throw FileError(path, std::string("frames cannot be made for the codec ") + codec.name);
    return {&container, &codec, like, std::move(kinds)};
}

std::vector<GUID> FormatsOf(const Offer& offer, const VideoSettings& settings)
{
    const vfILFormatInfo* wanted = vfILFindFormat(settings.format);
    const std::optional<PixelKind> start = wanted == nullptr ? std::nullopt : KindOf(*wanted);
    const bool needsAlpha = settings.alpha != AlphaState::None && HoldsAlpha(offer.kinds);
    std::vector<std::pair<int, GUID>> ranked;
    for (std::size_t i = 0; const vfILFormatInfo* format = vfILFormatAt(i); ++i) {
        const std::optional<PixelKind> kind = KindOf(*format);
        const bool own = format->id == settings.format;
        if (!kind || (!own && (format->splitField || !IsOfMatrix(*format, settings.matrix)))) continue;
        if (needsAlpha && !kind->alpha) continue;
        const int loss = LossOfBest(offer.kinds, *kind, needsAlpha);
        if (loss == std::numeric_limits<int>::max()) continue;
        // Between formats that lose the same, 4:2:2 is what our operators are fastest with, and in the order
        // in which clips arrive.
        const int change = own || !start ? 0
                                         : Loss(*start, *kind, needsAlpha) + (format->subsampled ? 0 : 5) +
                                               (format->chromaFirst ? 0 : 1);
        ranked.emplace_back(own ? -1 : loss + change, format->id);
    }
    std::ranges::stable_sort(ranked, {}, &std::pair<int, GUID>::first);
    std::vector<GUID> formats;
    formats.reserve(ranked.size());
    for (const auto& [loss, format] : ranked) {
        formats.push_back(format);
    }
    return formats;
}

[[noreturn]] void ThrowModel(const fs::path& path, const Offer& offer, const VideoSettings& settings)
{
    const vfILFormatInfo* format = vfILFindFormat(settings.format);
    std::string names;
    for (const GUID& other : FormatsOf(offer, settings)) {
        names += (names.empty() ? "" : ", ") + std::string(vfILFindFormat(other)->name);
    }
    throw FileError(path, std::string(offer.codec->name) + " does not take frames in " +
                              (format == nullptr ? "an unknown format" : format->name) +
                              "; convert them to one of " + names);
}

} // namespace

EncoderChoice ChooseEncoder(const fs::path& path, const VideoSettings& settings)
{
    const ClipInput* like = settings.likeInput == nullptr ? nullptr : &settings.likeInput->Input();
    const Offer offer = OfferOf(path, settings, like);
    const vfILFormatInfo* format = vfILFindFormat(settings.format);
    const std::optional<PixelKind> from = format == nullptr ? std::nullopt : KindOf(*format);
    const bool needsAlpha = settings.alpha != AlphaState::None && from && from->alpha;
    if (settings.alpha != AlphaState::None && !HoldsAlpha(offer.kinds))
        throw FileError(path, std::string(offer.codec->name) + " in " + offer.container->name +
                                  " cannot hold alpha; ffv1 (.mkv), prores_ks or qtrle (.mov) and png can");
    if (!from || LossOfBest(offer.kinds, *from, needsAlpha) == std::numeric_limits<int>::max())
        ThrowModel(path, offer, settings);
    const auto fits = [&](const PixelKind& kind) {
        return kind.model == from->model && (!needsAlpha || kind.alpha);
    };
    const auto loss = [&](const PixelKind& kind) {
        if (!fits(kind)) return std::numeric_limits<int>::max();
        const bool likeInput = like != nullptr && settings.likeSampling && kind.alpha == needsAlpha &&
                               WithoutRange(like->Kind().format) == WithoutRange(kind.format);
        return Loss(*from, kind, needsAlpha) - (likeInput ? 10000 : 0);
    };
    const PixelKind& best = *std::ranges::min_element(offer.kinds, {}, loss);
    if (!fits(best)) ThrowModel(path, offer, settings);
    return {offer.container, offer.codec, best};
}

std::vector<GUID> FormatsOfVideo(const fs::path& path, const VideoSettings& settings)
{
    try {
        const ClipInput* like = settings.likeInput == nullptr ? nullptr : &settings.likeInput->Input();
        return FormatsOf(OfferOf(path, settings, like), settings);
    } catch (const FileError&) {
        return {};
    }
}

} // namespace vfil::host
